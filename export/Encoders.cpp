// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/Encoders.h"

#include "export/movie/MovieFileWriter.h"

#include <utility>

namespace starbloom {

namespace {

class LinkedEncoders final : public Encoders {
public:
    Result<std::filesystem::path> exportPicture(const PictureRequest& request) override {
        return starbloom::exportPicture(request);
    }

    std::unique_ptr<MovieWriting> writeMovie(MovieJob job, MovieProgressCall progress,
                                             MovieFinishedCall finished) override {
        return std::make_unique<MovieFileWriter>(std::move(job), std::move(progress), std::move(finished));
    }

    std::optional<UnfinishedMovie> findInterruptedMovie(const std::filesystem::path& journal) override {
        return starbloom::findInterruptedMovie(journal);
    }

    Result<RecoveredMovie> recoverMovie(const UnfinishedMovie& movie, const std::function<bool()>& goesOn) override {
        return starbloom::recoverMovie(movie, goesOn);
    }

    Result<void> discardInterruptedMovie(const UnfinishedMovie& movie) override {
        return starbloom::discardInterruptedMovie(movie);
    }
};

} // namespace

Encoders& linkedEncoders() {
    static LinkedEncoders encoders;
    return encoders;
}

} // namespace starbloom
