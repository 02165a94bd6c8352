// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/LoadedEncoders.h"

#include <utility>

namespace starbloom {

namespace {

/// A movie that cannot even be begun.
class NoWriting final : public MovieWriting {
public:
    void abort() override {}

    void finishEarly() override {}

    void wait() override {}
};

} // namespace

Result<Encoders*> LoadedEncoders::loaded() {
    if (const auto module = m_module.load(); !module) {
        return Error{"cannot load what writes pictures and movies; please install the program again: " +
                     module.error().message};
    }
    return m_module.door<EncodersEntry>()(&log);
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

Result<void> LoadedEncoders::discardInterruptedMovie(const UnfinishedMovie& movie) {
    const auto module = loaded();
    return module ? module.value()->discardInterruptedMovie(movie) : module.error();
}

} // namespace starbloom
