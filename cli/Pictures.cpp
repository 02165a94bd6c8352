// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Pictures.h"

#include "base/PendingFile.h"
#include "cli/FramePipeline.h"
#include "cli/Interruption.h"

namespace starbloom {

Result<std::vector<std::byte>> encodedPicture(ImageBuffer& image, const Options& options, const ShowNote& note) {
    if (options.transparent) {
        lightToAlpha(image);
    }
    return encodePicture(image, {options.format, options.quality.value_or(1.0), options.transparent}, &note);
}

ExitStatus makePicture(const Options& options) {
    auto file = PendingFile::create(options.output);
    if (!file) {
        return failed(BadInput, file.error());
    }
    ImageBuffer image(options.width, options.height);
    FrameRenderer renderer(options);
    const double moment = renderer.pictureMoment();
    renderer.renderMoment(moment, image);
    const auto picture = encodedPicture(image, options, renderer.noteAt(moment));
    if (!picture) {
        return failed(WriteFailed, picture.error());
    }
    if (interrupted()) {
        return finished({}); // Which says so.
    }
    auto written = file.value().write(picture.value());
    return finished(written ? file.value().commit() : written);
}

} // namespace starbloom
