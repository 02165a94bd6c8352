// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/SymbolIcon.h"

#include "views/ControlLook.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

// The macro inside must not stand in a namespace.
static void linkResources() {
    Q_INIT_RESOURCE(starbloom);
}

namespace starbloom {

namespace {

QColor symbolColor(QIcon::Mode mode) {
    const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
    return QGuiApplication::palette().color(QPalette::Active, role);
}

class SymbolEngine : public QIconEngine {
public:
    SymbolEngine(QString name, QByteArray drawing)
        : m_name(std::move(name))
        , m_drawing(std::move(drawing)) {}

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
                                .arg(m_name)
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
        QByteArray drawing = m_drawing;
        drawing.replace("currentColor", color.name().toLatin1());
        QSvgRenderer renderer(drawing);
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        QPixmap whole(size);
        whole.fill(Qt::transparent);
        QPainter painter(&whole);
        renderer.render(&painter);
        if (faded) {
            // All at once: strokes that cross would be darker there if each faded by itself.
            painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
            painter.fillRect(whole.rect(), QColor::fromRgbF(0.0F, 0.0F, 0.0F, static_cast<float>(disabledOpacity)));
        }
        return whole;
    }

    QString m_name;
    QByteArray m_drawing;
};

} // namespace

QIcon symbolIcon(QStringView name) {
    linkResources();
    QFile file(QStringLiteral(":/icons/%1.svg").arg(name));
    const bool found = file.open(QIODevice::ReadOnly);
    Q_ASSERT_X(found, "symbolIcon", qPrintable(file.fileName()));
    return found ? QIcon(new SymbolEngine(name.toString(), file.readAll())) : QIcon();
}

} // namespace starbloom
