// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/opengl/OpenGlStage.h"
#include "engine/raster/RasterRenderer.h"
#include "tests/engine/Scenes.h"
#include "tests/support/LogCapture.h"
#include "tests/views/opengl/PictureSurface.h"

#include <QDir>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <memory>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

namespace starbloom {

namespace {

/// A moment of a show and how it is looked at.
struct Scene {
    std::string name;
    EmitterPlan plan;
    double time = 9.3;
    double pixelsPerPoint = 1.0;
    QSize pixels{640, 480};
    Color background{0.0F, 0.0F, 0.0F, 1.0F};
};

/// Every cell draws with an image, and turns it.
EmitterPlan turningPlan() {
    EmitterPlan plan = panelPlan([](PositionPanel& panel) { panel.setPosition(Parameter::RocketBirth, 10.0F); });
    for (CellPlan& cell : plan.cells) {
        if (cell.image != nullptr) {
            cell.image = lopsidedSpark();
            cell.spin = 5.0F;
            cell.scale *= 2.0;
        }
    }
    return plan;
}

/// Sparks of which none can be seen alone: less than half a step of the display each.
EmitterPlan faintPlan() {
    EmitterPlan plan = panelPlan();
    for (CellPlan& cell : plan.cells) {
        if (cell.image != nullptr) {
            cell.birthRate *= 40.0;
            for (Color* color : {&cell.color, &cell.colorRange, &cell.colorSpeed}) {
                *color = {color->red * 0.0019F, color->green * 0.0019F, color->blue * 0.0019F, color->alpha};
            }
        }
    }
    return plan;
}

std::vector<Scene> scenes() {
    const auto with = [](std::vector<std::pair<Parameter, float>> positions) {
        return panelPlan([&](PositionPanel& panel) {
            for (const auto& [parameter, position] : positions) {
                panel.setPosition(parameter, position);
            }
        });
    };
    const Color sky{0.1F, 0.2F, 0.6F, 1.0F};
    return {
        {"reset", with({})},
        {"many rockets", with({{Parameter::RocketBirth, 20.0F}})},
        {"all sliders at their ends", panelPlan([](PositionPanel& panel) {
             for (const ParameterRow& entry : parameterTable) {
                 panel.setPosition(entry.parameter, entry.maximum);
             }
         })},
        {"many colours over a sky", with({{Parameter::RocketBirth, 12.0F}}), 11.7, 1.0, {640, 480}, sky},
        {"over a bright ground",
         with({{Parameter::RocketBirth, 12.0F}}),
         7.1,
         1.0,
         {640, 480},
         {0.8F, 0.6F, 0.7F, 1.0F}},
        {"fractional scale", with({{Parameter::RocketBirth, 8.0F}}), 6.2, 1.25, {801, 599}, sky},
        {"double scale, half transparent", with({}), 8.0, 2.0, {1280, 960}, {0.9F, 0.5F, 0.1F, 0.5F}},
        {"faint sparks", faintPlan()},
        {"turning image", turningPlan()},
        {"hours later", with({{Parameter::RocketBirth, 8.0F}}), 36'000.4},
        {"empty", with({}), 0.0, 1.0, {333, 222}, sky},
    };
}

QImage drawnByCpu(const Scene& scene, const Simulation& simulation) {
    QImage image(scene.pixels, QImage::Format_RGBX8888);
    RasterRenderer().render(simulation.sparks(), {scene.time, scene.pixelsPerPoint, scene.background},
                            {image.bits(), static_cast<std::size_t>(image.bytesPerLine()), image.width(),
                             image.height(), PixelOrder::Rgba});
    return image;
}

struct Difference {
    double mean = 0.0;
    int largest = 0;
    long light = 0; ///< How much there is to differ, in steps over the background.
};

Difference between(const QImage& a, const QImage& b) {
    Difference result;
    long sum = 0;
    const QRgb background = a.pixel(0, 0);
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            for (const int shift : {0, 8, 16}) {
                const auto channel = [shift](QRgb pixel) { return static_cast<int>((pixel >> shift) & 0xFFU); };
                const int difference = std::abs(channel(a.pixel(x, y)) - channel(b.pixel(x, y)));
                sum += difference;
                result.largest = std::max(result.largest, difference);
                result.light += std::abs(channel(a.pixel(x, y)) - channel(background));
            }
        }
    }
    result.mean = static_cast<double>(sum) / (3.0 * a.width() * a.height());
    return result;
}

/// Where a failed comparison leaves its pictures.
void keep(const QImage& expected, const QImage& drawn, const std::string& name) {
    const QDir folder = QDir::temp();
    const QString stem = QString::fromStdString(name).replace(u' ', u'-').remove(u',');
    expected.save(folder.filePath(stem + QStringLiteral("-cpu.png")));
    drawn.save(folder.filePath(stem + QStringLiteral("-opengl.png")));
}

/// A stage on a picture, and the surface that belongs to it.
struct Bench {
    explicit Bench(QSurfaceFormat::RenderableType type = QSurfaceFormat::OpenGL) {
        auto owned = std::make_unique<PictureSurface>(type);
        surface = owned.get();
        works = surface->works();
        stage =
            std::make_unique<OpenGlStage>(std::move(owned), std::vector<PreparedImage>{}, [this] { return asleep; });
    }

    std::chrono::nanoseconds asleep{5};
    PictureSurface* surface;
    bool works = false;
    std::unique_ptr<OpenGlStage> stage;
};

class OpenGl : public ::testing::TestWithParam<QSurfaceFormat::RenderableType> {};

TEST_P(OpenGl, DrawsWhatTheCpuDraws) {
    Bench bench(GetParam());
    if (!bench.works) {
        GTEST_SKIP() << "no context of this kind can be had here";
    }
    std::uint64_t show = 0;
    for (const Scene& scene : scenes()) {
        Simulation simulation(7, scene.plan);
        simulation.advanceTo(scene.time);
        bench.surface->setSize(scene.pixels, scene.pixelsPerPoint);
        ASSERT_EQ(bench.stage->show({simulation.sparks(), scene.time, scene.background, ++show}),
                  StageRenderer::Outcome::Shown);
        const QImage expected = drawnByCpu(scene, simulation);
        const Difference difference = between(expected, bench.surface->picture());
        EXPECT_LT(difference.mean, 0.25) << scene.name;
        EXPECT_LT(difference.largest, 12) << scene.name;
        EXPECT_TRUE(difference.light > 20'000 || scene.name == "empty") << scene.name;
        if (HasFailure()) {
            keep(expected, bench.surface->picture(), scene.name);
        }
    }
}

TEST_P(OpenGl, MakesAnewWhatALostContextHad) {
    Bench bench(GetParam());
    if (!bench.works) {
        GTEST_SKIP() << "no context of this kind can be had here";
    }
    LogCapture log;
    Simulation simulation(7, panelPlan());
    simulation.advanceTo(9.0);
    const StageMoment moment{simulation.sparks(), 9.0};
    ASSERT_EQ(bench.stage->show(moment), StageRenderer::Outcome::Shown);
    const QImage before = bench.surface->picture();
    ASSERT_GT(between(before, QImage(before.size(), before.format())).light, 20'000);
    bench.surface->failAgain(1);
    ASSERT_EQ(bench.stage->show(moment), StageRenderer::Outcome::Shown);
    EXPECT_TRUE(bench.surface->picture() == before);
    EXPECT_NE(log.text().find("lost"), std::string::npos);
    bench.surface->spoilMemory();
    ASSERT_EQ(bench.stage->show(moment), StageRenderer::Outcome::Shown);
    EXPECT_FALSE(bench.surface->picture() == before);
    bench.asleep = std::chrono::seconds(5);
    ASSERT_EQ(bench.stage->show(moment), StageRenderer::Outcome::Shown);
    EXPECT_TRUE(bench.surface->picture() == before) << "after the machine has slept";
    bench.surface->failAgain(2);
    EXPECT_EQ(bench.stage->show(moment), StageRenderer::Outcome::Failed);

    // A driver that loses its context again and again is given up, though each next one works.
    Bench frail(GetParam());
    int shown = 0;
    do {
        frail.surface->failAgain(1);
    } while (frail.stage->show(moment) == StageRenderer::Outcome::Shown && ++shown < 100);
    EXPECT_GT(shown, 3);
    EXPECT_LT(shown, 100);
}

TEST_P(OpenGl, SendsEachBirthOnce) {
    PictureSurface surface(GetParam());
    if (!surface.works()) {
        GTEST_SKIP() << "no context of this kind can be had here";
    }
    auto made = OpenGlPainter::make({PreparedImage::of(softSpark())});
    ASSERT_TRUE(made);
    OpenGlPainter& painter = *made.value();
    Simulation simulation(3, panelPlan());
    const EmitterPlan busy = panelPlan([](PositionPanel& panel) { panel.setPosition(Parameter::RocketBirth, 25.0F); });
    const auto draw = [&](OpenGlPainter& with, std::uint64_t show) {
        ASSERT_TRUE(
            with.draw({simulation.sparks(), simulation.time(), {}, show}, surface.canvas(), surface.framebuffer()));
    };
    for (int frame = 1; frame <= 12 * 30; ++frame) {
        if (frame == 100) {
            simulation.setPlan(busy);
        }
        simulation.advanceTo(frame / 30.0);
        draw(painter, 1);
    }
    std::uint64_t births = 0;
    for (std::size_t cell = 0; cell < busy.cells.size(); ++cell) {
        births += busy.cells[cell].image != nullptr ? simulation.birthCounts()[cell] : 0;
    }
    EXPECT_GT(births, 10'000U);
    EXPECT_EQ(painter.sentBytes(), births * sizeof(SparkRecord));
    surface.present();
    const QImage followed = surface.picture();

    draw(painter, 1);
    EXPECT_EQ(painter.sentBytes(), births * sizeof(SparkRecord));
    // Of a show begun anew, all that lives is sent; the picture is the same as that of what was sent bit by bit.
    draw(painter, 2);
    EXPECT_GT(painter.sentBytes(), births * sizeof(SparkRecord));
    surface.present();
    EXPECT_TRUE(surface.picture() == followed);
}

INSTANTIATE_TEST_SUITE_P(Kinds, OpenGl, ::testing::Values(QSurfaceFormat::OpenGL, QSurfaceFormat::OpenGLES),
                         [](const auto& kind) {
                             return kind.param == QSurfaceFormat::OpenGL ? "Desktop" : "Embedded";
                         });

} // namespace

} // namespace starbloom
