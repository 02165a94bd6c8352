// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/SymbolIcon.h"

#include "views/ControlLook.h"
#include "views/symbols/SymbolDrawing.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>

#include <algorithm>

namespace starbloom {

namespace {

QColor symbolColor(QIcon::Mode mode) {
    const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
    return QGuiApplication::palette().color(QPalette::Active, role);
}

class SymbolEngine : public QIconEngine {
public:
    explicit SymbolEngine(const Symbol& symbol)
        : m_symbol(symbol) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const QRectF target = onPixels(*painter, rect);
        const QSize pixels = painter->deviceTransform().mapRect(target).size().toSize();
        const QPixmap picture = pixmap(pixels, mode, state);
        painter->drawPixmap(target, picture, picture.rect());
    }

    /// The size is in pixels.
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/) override {
        const QColor color = symbolColor(mode);
        const QString key = QStringLiteral("starbloom/%1/%2x%3/%4/%5")
                                .arg(QLatin1String(m_symbol.name))
                                .arg(size.width())
                                .arg(size.height())
                                .arg(color.rgba(), 0, 16)
                                .arg(mode == QIcon::Disabled);
        QPixmap picture;
        if (!QPixmapCache::find(key, &picture)) {
            picture = drawn(size, color, mode == QIcon::Disabled);
            QPixmapCache::insert(key, picture);
        }
        return picture;
    }

    QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        // Those that window managers ask a window's icon for.
        QList<QSize> sizes;
        for (const int side : {16, 24, 32, 48, 64, 128, 256}) {
            sizes.append(QSize(side, side));
        }
        return sizes;
    }

    QSize actualSize(const QSize& size, QIcon::Mode /*mode*/, QIcon::State /*state*/) override { return size; }

    QIconEngine* clone() const override { return new SymbolEngine(*this); }

    QString key() const override { return QStringLiteral("starbloom"); }

private:
    QPixmap drawn(const QSize& size, const QColor& color, bool faded) const {
        QPixmap whole(size);
        whole.fill(Qt::transparent);
        QPainter painter(&whole);
        drawSymbol(painter, m_symbol, whole.rect(), color);
        if (faded) {
            // All at once: strokes that cross would be darker there if each faded by itself.
            painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
            painter.fillRect(whole.rect(), QColor::fromRgbF(0.0F, 0.0F, 0.0F, static_cast<float>(disabledOpacity)));
        }
        return whole;
    }

    const Symbol& m_symbol;
};

} // namespace

QIcon symbolIcon(QStringView name) {
    const auto isNamed = [name](const Symbol& each) { return name == QLatin1String(each.name); };
    const auto symbol = std::ranges::find_if(symbolTable(), isNamed);
    Q_ASSERT_X(symbol != symbolTable().end(), "symbolIcon", qPrintable(name.toString()));
    return symbol != symbolTable().end() ? QIcon(new SymbolEngine(*symbol)) : QIcon();
}

} // namespace starbloom
