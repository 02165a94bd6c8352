// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace starbloom {

// The symbols as numbers, which make_symbols.py writes from their drawings when the application is built. Lengths are
// in the drawing's own units, with y growing downwards; colours are 0xAARRGGBB, not premultiplied.

/// A colour along a gradient, at an offset of 0 to 1.
struct SymbolStop {
    double offset;
    std::uint32_t argb;
};

/// What an area or a stroke is painted with.
struct SymbolPaint {
    enum class Kind : std::uint8_t { None, Current, Plain, Linear, Radial };

    Kind kind = Kind::None;
    std::uint32_t argb = 0; ///< Of a plain colour.
    /// Of a linear gradient: its two ends, in parts of the shape's bounding box. Of a radial one: centre and radius.
    std::array<double, 4> place{};
    std::span<const SymbolStop> stops{};
};

/// One shape, filled and then stroked; strokes have round ends and corners.
struct SymbolShape {
    enum class Form : std::uint8_t { Path, Ellipse, Rectangle };

    Form form = Form::Path;
    /// Of a path: M and L take a point of the numbers, C two control points and a point, Z none.
    std::string_view steps{};
    /// The coordinates of a path; x, y, width and height of the other forms, and a rectangle's corner radius.
    std::span<const double> numbers{};
    SymbolPaint fill{};
    SymbolPaint stroke{};
    double strokeWidth = 1.0;
    double strokeOpacity = 1.0;
};

/// A drawing of width x height, the shapes from back to front.
struct Symbol {
    std::string_view name;
    double width;
    double height;
    std::span<const SymbolShape> shapes;
};

/// All symbols. Any thread may read them.
std::span<const Symbol> symbolTable();

} // namespace starbloom
