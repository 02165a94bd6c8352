// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "base/Result.h"
#include "export/picture/PictureFormat.h"
#include "export/picture/ShowNote.h"

#include <filesystem>
#include <optional>
#include <string>

namespace starbloom {

/// All that one exported picture depends on, as it was at the moment of the click.
struct PictureRequest {
    ImageBuffer image;
    std::filesystem::path folder;
    std::string name; ///< UTF-8. What cannot name a file in the folder (see namesAFile) becomes "Picture".
    PictureFormat format = PictureFormat::Png;
    int compression = 0;   ///< Index in the pop-up menu, 0 to 19; formats without quality ignore it.
    bool numbered = false; ///< Even the first file gets a number.
    std::optional<ShowNote> note;
};

/// Encodes a picture into memory and writes it under the first free name of its series; yields that name with its
/// folder. Nothing is ever replaced, and a failure leaves nothing behind; its message names the file and ends with the
/// reason. Keeps no state: any number of threads and programs may export into one folder at once.
Result<std::filesystem::path> exportPicture(const PictureRequest& request);

} // namespace starbloom
