// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/PanelBox.h"
#include "shell/ColorScheme.h"
#include "views/ControlLook.h"

#include <QApplication>
#include <QLabel>
#include <QStyle>
#include <QStyleFactory>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

namespace starbloom {

namespace {

/// A window with a box, in the colours of the program's own schemes; those of the other tests come back at the end.
class PanelBoxTest : public ::testing::Test {
protected:
    PanelBoxTest() {
        auto* lines = new QVBoxLayout(&window);
        lines->addWidget(box);
        box->setTitle(QStringLiteral("Title"));
        auto* inside = new QVBoxLayout(box);
        inside->addWidget(text);
        inside->addWidget(disabled);
        disabled->setEnabled(false);
        window.show();
    }

    ~PanelBoxTest() override {
        qunsetenv("STARBLOOM_COLOR_SCHEME");
        QApplication::setStyle(QStyleFactory::create(m_style));
        QApplication::setPalette(QPalette());
    }

    void use(const char* scheme) {
        qputenv("STARBLOOM_COLOR_SCHEME", scheme);
        m_scheme.emplace();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        QCoreApplication::processEvents();
        picture = window.grab().toImage();
    }

    QColor at(const QPoint& place) const { return picture.pixelColor(place * picture.devicePixelRatio()); }

    /// The strongest contrast within a rectangle of the window to what it lies on.
    double strongest(const QRect& part, const QColor& ground) const {
        double found = 1.0;
        for (int y = part.top(); y <= part.bottom(); ++y) {
            for (int x = part.left(); x <= part.right(); ++x) {
                found = std::max(found, contrast(at({x, y}), ground));
            }
        }
        return found;
    }

    double contrastOf(const QLabel& label, const QColor& ground) const {
        return strongest({label.mapTo(&window, QPoint()), label.size()}, ground);
    }

    QWidget window;
    PanelBox* box = new PanelBox;
    QLabel* text = new QLabel(QStringLiteral("HHH EEE"));
    QLabel* disabled = new QLabel(QStringLiteral("HHH EEE"));
    QImage picture;

private:
    QString m_style = QApplication::style()->name();
    std::optional<ColorScheme> m_scheme;
};

TEST_F(PanelBoxTest, ItsTextsCanBeReadInBothSchemes) {
    for (const auto& [scheme, panel] : {std::pair("light", QColor(227, 241, 255)), {"dark", QColor(70, 70, 70)}}) {
        use(scheme);
        const QRect frame(box->mapTo(&window, QPoint()), box->size());
        EXPECT_EQ(at(frame.bottomRight() - QPoint(8, 4)), panel) << scheme;
        EXPECT_EQ(at(frame.bottomRight()), at({1, 1})) << scheme << ": a round corner";
        EXPECT_GE(contrastOf(*text, panel), textContrast) << scheme;
        EXPECT_GE(contrastOf(*disabled, panel), shapeContrast * 0.9) << scheme; // Its edges are blurred.
        EXPECT_LT(contrastOf(*disabled, panel), contrastOf(*text, panel)) << scheme;
        const QRect title(frame.topLeft(), QSize(frame.width(), text->mapTo(box, QPoint()).y() - 15));
        EXPECT_GE(strongest(title, at({1, 1})), textContrast) << scheme;
        // What computes a colour of its own does so against the panel.
        EXPECT_GE(contrast(errorColor(text->palette()), panel), textContrast) << scheme;
        EXPECT_GE(contrast(linkColor(text->palette()), panel), textContrast) << scheme;
    }
}

TEST_F(PanelBoxTest, ADesktopWithColoursOfItsOwnGetsTextThatCanBeRead) {
    // Faint on the desktop's own ground already, and fainter on the panel.
    const QColor grey(140, 140, 140);
    window.setPalette(QPalette(grey, Qt::darkGray, {}, {}, {}, grey, {}, {}, QColor(110, 110, 110)));
    use("light");
    const QColor panel = box->palette().color(QPalette::Window);
    EXPECT_GE(contrastOf(*text, panel), textContrast);
}

} // namespace

} // namespace starbloom
