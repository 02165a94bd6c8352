// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/backgrounds/BackView.h"
#include "views/backgrounds/FlatView.h"
#include "views/backgrounds/GradientView.h"

namespace starbloom {

/// The grounds that windows and panels choose from. Each is a widget that an interface file can name; what it paints is
/// all that tells it from the others.

/// Amber to dark red, rising to the upper right.
class BackgroundView1 final : public GradientView {
public:
    explicit BackgroundView1(QWidget* parent = nullptr);
};

/// Black, with a grey that shows at the top and the bottom edge.
class BackgroundView10 final : public GradientView {
public:
    explicit BackgroundView10(QWidget* parent = nullptr);
};

/// Orange to yellow from left to right: a strip of fixed width.
class BackgroundView11 final : public GradientView {
public:
    explicit BackgroundView11(QWidget* parent = nullptr);
};

/// Grey to black from top to bottom: a band wider than any window.
class BackgroundView12 final : public GradientView {
public:
    explicit BackgroundView12(QWidget* parent = nullptr);
};

/// Light green to dark green from top to bottom.
class BackgroundView13 final : public GradientView {
public:
    explicit BackgroundView13(QWidget* parent = nullptr);
};

/// A pale blue sheet of fixed size, long enough to scroll over.
class BackgroundView14 final : public GradientView {
public:
    explicit BackgroundView14(QWidget* parent = nullptr);
};

/// Light grey.
class BackgroundView0 final : public FlatView {
public:
    explicit BackgroundView0(QWidget* parent = nullptr);
};

/// Blue grey.
class BackgroundView2 final : public FlatView {
public:
    explicit BackgroundView2(QWidget* parent = nullptr);
};

/// Pale blue, the colour of panels.
class BackgroundView3 final : public FlatView {
public:
    explicit BackgroundView3(QWidget* parent = nullptr);
};

/// Dark olive.
class BackgroundView4 final : public FlatView {
public:
    explicit BackgroundView4(QWidget* parent = nullptr);
};

/// Dark grey.
class BackgroundView5 final : public FlatView {
public:
    explicit BackgroundView5(QWidget* parent = nullptr);
};

/// The three boxes look the same; the names tell interface files which panel they are the ground of.
class BackView1 final : public BackView {
public:
    explicit BackView1(QWidget* parent = nullptr);
};

class BackView2 final : public BackView {
public:
    explicit BackView2(QWidget* parent = nullptr);
};

class BackView3 final : public BackView {
public:
    explicit BackView3(QWidget* parent = nullptr);
};

} // namespace starbloom
