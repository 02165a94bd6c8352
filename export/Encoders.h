// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Log.h"
#include "base/Result.h"
#include "export/movie/MovieRecovery.h"
#include "export/movie/MovieWriting.h"
#include "export/picture/PictureExport.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace starbloom {

/// All that needs the libraries of codecs, behind one door: they are many and large, and would make up most of the time
/// that a window takes to appear, so the application loads them apart, when they are needed. Any thread.
class Encoders {
public:
    virtual ~Encoders() = default;

    virtual Result<std::filesystem::path> exportPicture(const PictureRequest& request) = 0;
    virtual std::unique_ptr<MovieWriting> writeMovie(MovieJob job, MovieProgressCall progress,
                                                     MovieFinishedCall finished) = 0;

    // See MovieRecovery.h.
    virtual std::optional<UnfinishedMovie> findInterruptedMovie(const std::filesystem::path& journal) = 0;
    virtual Result<RecoveredMovie> recoverMovie(const UnfinishedMovie& movie, const std::function<bool()>& goesOn) = 0;
    virtual Result<void> discardInterruptedMovie(const UnfinishedMovie& movie) = 0;
};

/// The encoders themselves, for programs and tests that are linked with them.
Encoders& linkedEncoders();

/// How the module that holds them hands them out; its log goes to the sink. Its symbol is starbloomEncoders.
using EncodersEntry = Encoders* (*)(LogSink sink);

} // namespace starbloom
