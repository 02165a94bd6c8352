// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/symbols/SymbolDrawing.h"

#include <QBrush>
#include <QGradient>
#include <QPainterPath>
#include <QPen>

#include <algorithm>

namespace starbloom {

namespace {

QBrush gradientBrush(QGradient gradient, const SymbolPaint& paint) {
    for (const SymbolStop& stop : paint.stops) {
        gradient.setColorAt(stop.offset, QColor::fromRgba(stop.argb));
    }
    gradient.setInterpolationMode(QGradient::ColorInterpolation);
    return gradient;
}

QBrush brushOf(const SymbolPaint& paint, const QColor& current) {
    const auto& [a, b, c, d] = paint.place;
    switch (paint.kind) {
    case SymbolPaint::Kind::Current:
        return current;
    case SymbolPaint::Kind::Plain:
        return QColor::fromRgba(paint.argb);
    case SymbolPaint::Kind::Linear: {
        QLinearGradient gradient(a, b, c, d);
        gradient.setCoordinateMode(QGradient::ObjectMode);
        return gradientBrush(gradient, paint);
    }
    case SymbolPaint::Kind::Radial:
        return gradientBrush(QRadialGradient(a, b, c), paint);
    case SymbolPaint::Kind::None:
        break;
    }
    return Qt::NoBrush;
}

QPainterPath pathOf(const SymbolShape& shape) {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    auto number = shape.numbers.begin();
    const auto point = [&number] {
        const double x = *number++;
        return QPointF(x, *number++);
    };
    for (const char step : shape.steps) {
        if (step == 'M') {
            path.moveTo(point());
        } else if (step == 'L') {
            path.lineTo(point());
        } else if (step == 'C') {
            const QPointF first = point();
            const QPointF second = point();
            path.cubicTo(first, second, point());
        } else {
            path.closeSubpath();
        }
    }
    return path;
}

void drawForm(QPainter& painter, const SymbolShape& shape) {
    const auto& numbers = shape.numbers;
    switch (shape.form) {
    case SymbolShape::Form::Path:
        painter.drawPath(pathOf(shape));
        break;
    case SymbolShape::Form::Ellipse:
        painter.drawEllipse(QRectF(numbers[0], numbers[1], numbers[2], numbers[3]));
        break;
    case SymbolShape::Form::Rectangle:
        painter.drawRoundedRect(QRectF(numbers[0], numbers[1], numbers[2], numbers[3]), numbers[4], numbers[4]);
        break;
    }
}

void drawShape(QPainter& painter, const SymbolShape& shape, const QColor& current) {
    if (shape.fill.kind != SymbolPaint::Kind::None) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(brushOf(shape.fill, current));
        drawForm(painter, shape);
    }
    if (shape.stroke.kind != SymbolPaint::Kind::None) {
        painter.setPen(
            QPen(brushOf(shape.stroke, current), shape.strokeWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.setOpacity(shape.strokeOpacity);
        drawForm(painter, shape);
        painter.setOpacity(1.0);
    }
}

} // namespace

void drawSymbol(QPainter& painter, const Symbol& symbol, const QRectF& target, const QColor& current) {
    const double scale = std::min(target.width() / symbol.width, target.height() / symbol.height);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(target.center() - QPointF(symbol.width, symbol.height) * scale / 2.0);
    painter.scale(scale, scale);
    for (const SymbolShape& shape : symbol.shapes) {
        drawShape(painter, shape, current);
    }
    painter.restore();
}

} // namespace starbloom
