// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/LoadedEncoders.h"

#include <QCoreApplication>
#include <QLibrary>

#include <string>
#include <utility>

namespace starbloom {

namespace {

/// Where the module lies from the program's folder: in the build tree, and installed.
constexpr const char* places[] = {"/starbloom-encoders.so", "/../" STARBLOOM_LIBDIR "/starbloom/starbloom-encoders.so"};

/// A movie that cannot even be begun.
class NoWriting final : public MovieWriting {
public:
    void abort() override {}

    void finishEarly() override {}

    void wait() override {}
};

} // namespace

Result<Encoders*> LoadedEncoders::loaded() {
    const std::scoped_lock lock(m_mutex);
    std::string reason;
    for (const char* place : places) {
        if (m_encoders != nullptr) {
            break;
        }
        QLibrary module(QCoreApplication::applicationDirPath() + QLatin1String(place));
        const auto entry = reinterpret_cast<EncodersEntry>(module.resolve("starbloomEncoders"));
        if (entry != nullptr) {
            m_encoders = entry(&log);
        } else if (reason.empty()) {
            reason = module.errorString().toStdString();
        }
    }
    if (m_encoders == nullptr) {
        return Error{"cannot load what writes pictures and movies; please install the program again: " + reason};
    }
    return m_encoders;
}

void LoadedEncoders::prepare() {
    if (const auto module = loaded(); !module) {
        log(LogLevel::Warning, "export", module.error().message);
    }
}

Result<std::filesystem::path> LoadedEncoders::exportPicture(const PictureRequest& request) {
    const auto module = loaded();
    return module ? module.value()->exportPicture(request) : module.error();
}

std::unique_ptr<MovieWriting> LoadedEncoders::writeMovie(MovieJob job, MovieProgressCall progress,
                                                         MovieFinishedCall finished) {
    const auto module = loaded();
    if (!module) {
        finished(module.error());
        return std::make_unique<NoWriting>();
    }
    return module.value()->writeMovie(std::move(job), std::move(progress), std::move(finished));
}

std::optional<UnfinishedMovie> LoadedEncoders::findInterruptedMovie(const std::filesystem::path& journal) {
    const auto module = loaded();
    return module ? module.value()->findInterruptedMovie(journal) : std::nullopt;
}

Result<RecoveredMovie> LoadedEncoders::recoverMovie(const UnfinishedMovie& movie, const std::function<bool()>& goesOn) {
    const auto module = loaded();
    return module ? module.value()->recoverMovie(movie, goesOn) : module.error();
}

void LoadedEncoders::discardInterruptedMovie(const UnfinishedMovie& movie) {
    if (const auto module = loaded()) {
        module.value()->discardInterruptedMovie(movie);
    }
}

} // namespace starbloom
