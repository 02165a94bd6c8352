// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/PictureExport.h"

#include "base/Log.h"
#include "base/PendingFile.h"
#include "export/picture/FileNames.h"
#include "export/picture/PictureEncoder.h"

namespace starbloom {

Result<std::filesystem::path> exportPicture(const PictureRequest& request) {
    std::string base = request.name;
    if (!namesAFile(base)) {
        base = fallbackPictureName;
        log(LogLevel::Info, "export", "the name '" + request.name + "' cannot name a file; 'Picture' is used");
    }
    const auto candidate = [&](int n) {
        return request.folder / candidateName(base, n, row(request.format).extension, request.numbered);
    };
    const auto bytes = encodePicture(request.image, {request.format, qualityOfIndex(request.compression)},
                                     request.note ? &*request.note : nullptr);
    if (!bytes) {
        return Error{"cannot write " + candidate(0).string() + ": " + bytes.error().message};
    }
    return writeNewFile(candidate, bytes.value());
}

} // namespace starbloom
