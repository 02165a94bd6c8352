// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/files/Presets.h"
#include "persistence/stores/Stores.h"

namespace starbloom {

/// The preferences store as the place of the preset. The stores must outlive it.
class StorePresets final : public PresetStore {
public:
    explicit StorePresets(Stores& stores)
        : m_stores(stores) {}

    std::string preferenceAt(int position) const override {
        return m_stores.preferenceValue(static_cast<std::size_t>(position));
    }

    void saveData1(std::string_view value, std::string_view key) override {
        m_stores.saveData1(std::string(value), std::string(key));
    }

    void reloadOnlyDB1() override { m_stores.reloadOnlyDB1(); }

private:
    Stores& m_stores;
};

} // namespace starbloom
