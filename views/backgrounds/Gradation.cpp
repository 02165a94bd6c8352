// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/backgrounds/Gradation.h"

#include <QPointF>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <numbers>
#include <vector>

namespace starbloom {

namespace {

/// The number that a text begins with.
template <typename Number>
Number leadingNumber(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    Number number{};
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

float part(std::string_view text, float whole) {
    return static_cast<float>(leadingNumber<int>(text)) / whole;
}

/// Exact where the axes are: the sine of 180 degrees is not 0 in floating point.
QPointF direction(double angle) {
    const double quarters = angle / 90.0;
    if (quarters == std::floor(quarters)) {
        constexpr std::array<QPointF, 4> axes{QPointF(1.0, 0.0), {0.0, 1.0}, {-1.0, 0.0}, {0.0, -1.0}};
        return axes[static_cast<std::size_t>(quarters - 4.0 * std::floor(quarters / 4.0))];
    }
    const double radians = angle * std::numbers::pi / 180.0;
    return {std::cos(radians), std::sin(radians)};
}

class Gradient {
public:
    explicit Gradient(std::span<const ColorStop> stops) {
        std::ranges::transform(stops, std::back_inserter(m_stops), numbersOf);
        std::ranges::stable_sort(m_stops, {}, &GradientStop::position);
    }

    QRgb premultiplied(double place) const {
        const auto [red, green, blue, alpha] = colorAt(place);
        const auto byte = [](float value) { return static_cast<int>(std::lround(value * 255.0F)); };
        return qPremultiply(qRgba(byte(red), byte(green), byte(blue), byte(alpha)));
    }

private:
    std::array<float, 4> colorAt(double place) const {
        if (m_stops.empty()) {
            return {};
        }
        const auto after = std::ranges::upper_bound(m_stops, place, {}, &GradientStop::position);
        if (after == m_stops.begin()) {
            return m_stops.front().color;
        }
        const GradientStop& before = *std::prev(after);
        if (after == m_stops.end()) {
            return before.color;
        }
        const auto way = static_cast<float>((place - before.position) / (after->position - before.position));
        std::array<float, 4> color{};
        for (std::size_t i = 0; i < color.size(); ++i) {
            color[i] = before.color[i] + (after->color[i] - before.color[i]) * way;
        }
        return color;
    }

    std::vector<GradientStop> m_stops;
};

} // namespace

GradientStop numbersOf(const ColorStop& stop) {
    return {{part(stop.red, 255.0F), part(stop.green, 255.0F), part(stop.blue, 255.0F), part(stop.alpha, 100.0F)},
            static_cast<double>(static_cast<float>(leadingNumber<double>(stop.position)))};
}

double placeInGradient(const QPointF& point, const QSizeF& size, double angle) {
    const QPointF towards = direction(angle);
    const double reach = std::abs(size.width() * towards.x()) + std::abs(size.height() * towards.y());
    const double fromMiddle =
        (point.x() - size.width() / 2.0) * towards.x() - (point.y() - size.height() / 2.0) * towards.y();
    return 0.5 + fromMiddle / reach;
}

QImage createGradientImage(std::span<const ColorStop> stops, const QSizeF& size, double angle, double scale) {
    const QSizeF pixels = size * scale;
    QImage image(static_cast<int>(pixels.width()), static_cast<int>(pixels.height()),
                 QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        return image;
    }
    const Gradient gradient(stops);
    // Most gradients run along one axis, where a row is like the one above it, or is of one colour.
    const QPointF towards = direction(angle);
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        const auto color = [&](int x) {
            return gradient.premultiplied(placeInGradient({x + 0.5, y + 0.5}, pixels, angle));
        };
        if (towards.x() == 0.0) {
            std::fill_n(row, image.width(), color(0));
        } else if (towards.y() == 0.0 && y > 0) {
            std::memcpy(row, image.constScanLine(0), static_cast<std::size_t>(image.bytesPerLine()));
        } else {
            for (int x = 0; x < image.width(); ++x) {
                row[x] = color(x);
            }
        }
    }
    image.setDevicePixelRatio(scale);
    return image;
}

} // namespace starbloom
