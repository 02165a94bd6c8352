// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/picturesize/PictureFile.h"
#include "shell/picturesize/PictureSize.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <poppler-document.h>
#include <poppler-global.h>
#include <poppler-page.h>
#include <utility>

namespace starbloom {

namespace {

std::int64_t pixels(double points) {
    // Also for what is no number at all.
    return points >= 0.0 && points <= static_cast<double>(longestSide) ? std::llround(points) : 0;
}

/// As it is shown: cropped and turned.
PixelSize pageSize(const poppler::page& page) {
    const poppler::rectf box = page.page_rect(poppler::crop_box);
    PixelSize size{pixels(box.width()), pixels(box.height())};
    const auto turned = page.orientation();
    if (turned == poppler::page::landscape || turned == poppler::page::seascape) {
        std::swap(size.width, size.height);
    }
    return size;
}

} // namespace

PixelSize pdfSize(const PictureFile& file) {
    poppler::set_debug_error_function([](const std::string&, void*) {}, nullptr);
    const std::unique_ptr<poppler::document> document(poppler::document::load_from_file(file.path()));
    PixelSize size;
    if (document == nullptr || document->is_locked()) {
        return size;
    }
    const int pages = std::min(document->pages(), mostRepresentations);
    for (int number = 0; number < pages; ++number) {
        if (const std::unique_ptr<poppler::page> page(document->create_page(number)); page != nullptr) {
            size.cover(pageSize(*page));
        }
    }
    return size;
}

} // namespace starbloom
