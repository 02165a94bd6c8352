// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/model/EmitterLayer.h"

#include <memory>

namespace starbloom {

/// Where the show is seen, as FireworksController sees it: a widget, or a size alone.
class Stage {
public:
    virtual ~Stage() = default;

    /// The stage's present size in points.
    virtual Size size() const = 0;

    /// Takes the layer tree to show; called once, when the tree has been built. Shared with the controller.
    virtual void setRootLayer(std::shared_ptr<const RootLayer> rootLayer) = 0;

    /// Something in the layer tree has changed: numbers, the speed, the background.
    virtual void layerChanged() = 0;
};

/// A stage without a screen: nothing but its size.
class SizeStage final : public Stage {
public:
    explicit SizeStage(Size size)
        : m_size(size) {}

    Size size() const override { return m_size; }

    void setRootLayer(std::shared_ptr<const RootLayer>) override {}

    void layerChanged() override {}

private:
    Size m_size;
};

} // namespace starbloom
