// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/guide/GuideEntry.h"

#include "shell/ParameterTexts.h"
#include "shell/guide/GuidePictures.h"
#include "shell/guide/GuideStage.h"
#include "views/ControlLook.h"
#include "views/LinkButton.h"
#include "views/ParameterSlider.h"
#include "views/Texts.h"

#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace starbloom {

namespace {

// Points.
constexpr int lineGap = 4;
constexpr int pictureGap = 8;
constexpr int captionGap = 3;

QLabel* wrappedLabel(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QString captionOf(const ParameterRow& row, SliderEnd end) {
    const QString value = ParameterSlider::text(row, positionAt(row, end));
    return end == SliderEnd::Lowest ? qtTrId("guideLowest").arg(value) : qtTrId("guideHighest").arg(value);
}

} // namespace

GuideEntry::GuideEntry(const ParameterRow& row, GuidePictures& pictures, QWidget* parent)
    : QWidget(parent)
    , m_row(row)
    , m_name(qtTrId("settingsSliderName").arg(textOf(groupOf(row.parameter)), textFor(row, "Title"))) {
    auto* body = new QVBoxLayout;
    body->setContentsMargins(LinkButton::border, 0, LinkButton::border, 0); // Flush with the text of the link.
    body->setSpacing(lineGap);
    body->addWidget(wrappedLabel(textFor(row, "Guide")));
    if (const GuideScene* scene = findGuideScene(row.parameter)) {
        body->addWidget(makePictures(*scene, pictures));
    }
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins({});
    lines->setSpacing(lineGap);
    lines->addLayout(makeHeading());
    lines->addLayout(body);
}

QLayout* GuideEntry::makeHeading() {
    auto* title = wrappedLabel(textFor(m_row, "Title"));
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    title->setIndent(LinkButton::border);
    auto* heading = new QHBoxLayout;
    heading->addWidget(title, 1);
    heading->addWidget(makeLink(), 0, Qt::AlignTop);
    return heading;
}

QWidget* GuideEntry::makeLink() {
    auto* link = new LinkButton;
    link->setObjectName(QString::fromUtf8(m_row.name.data()) + QStringLiteral("Link"));
    link->setPlainText(qtTrId("guideShowSlider"));
    link->setAccessibleName(qtTrId("guideShowSliderName").arg(m_name));
    link->setToolTip(plainToolTip(link->accessibleName()));
    connect(link, &LinkButton::clicked, this, [this] { emit sliderChosen(m_row); });
    return link;
}

QWidget* GuideEntry::makePictures(const GuideScene& scene, GuidePictures& pictures) {
    auto* pair = new QWidget;
    auto* grid = new QGridLayout(pair);
    grid->setContentsMargins(0, lineGap, 0, 0);
    grid->setHorizontalSpacing(pictureGap);
    grid->setVerticalSpacing(captionGap);
    int column = 0;
    for (const SliderEnd end : {SliderEnd::Lowest, SliderEnd::Highest}) {
        auto* caption = wrappedLabel(captionOf(m_row, end));
        caption->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
        grid->addWidget(makeStage(scene, end, pictures), 0, column);
        grid->addWidget(caption, 1, column);
        grid->setColumnStretch(column, 1);
        ++column;
    }
    return pair;
}

GuideStage* GuideEntry::makeStage(const GuideScene& scene, SliderEnd end, GuidePictures& pictures) {
    auto* stage = new GuideStage;
    stage->setObjectName(QString::fromUtf8(m_row.name.data()) +
                         (end == SliderEnd::Lowest ? QStringLiteral("Lowest") : QStringLiteral("Highest")));
    stage->setAccessibleName(qtTrId("guidePictureName").arg(m_name, captionOf(m_row, end)));
    connect(stage, &GuideStage::pictureWanted, this, [stage, &scene, end, &pictures](QSize pixels) {
        pictures.request(scene, end, pixels, [stage](const QImage& picture) { stage->setPicture(picture); });
    });
    return stage;
}

} // namespace starbloom
