// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "export/Encoders.h"
#include "shell/LoadedModule.h"

namespace starbloom {

/// The encoders in a module of their own, which is loaded when the first of them is needed, or before, by prepare().
///
/// Where the module is missing, each call fails and says so. Any thread.
class LoadedEncoders final : public Encoders {
public:
    /// Loads the module. It takes some hundredths of a second, so it is best done on a worker, once the window is
    /// there.
    void prepare();

    Result<std::filesystem::path> exportPicture(const PictureRequest& request) override;
    std::unique_ptr<MovieWriting> writeMovie(MovieJob job, MovieProgressCall progress,
                                             MovieFinishedCall finished) override;
    std::optional<UnfinishedMovie> findInterruptedMovie(const std::filesystem::path& journal) override;
    Result<RecoveredMovie> recoverMovie(const UnfinishedMovie& movie, const std::function<bool()>& goesOn) override;
    Result<void> discardInterruptedMovie(const UnfinishedMovie& movie) override;

private:
    Result<Encoders*> loaded();

    LoadedModule m_module{"starbloom-encoders", "starbloomEncoders"};
};

} // namespace starbloom
