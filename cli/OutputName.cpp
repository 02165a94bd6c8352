// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/OutputName.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace starbloom {

namespace {

std::string lowered(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

/// Where the frame's number goes in a file name: one %d, possibly with a width of one digit, as in %05d.
struct NumberPlace {
    std::size_t begin = 0;
    std::size_t end = 0; ///< Behind the d.
    std::size_t width = 0;
};

std::vector<NumberPlace> findNumberPlaces(const std::string& name) {
    std::vector<NumberPlace> places;
    for (auto begin = name.find('%'); begin != std::string::npos; begin = name.find('%', begin + 1)) {
        std::size_t end = begin + 1;
        if (end < name.size() && name[end] == '%') {
            begin = end; // Two of them are no place: who writes so means the sign itself.
            continue;
        }
        end += end < name.size() && name[end] == '0' ? 1 : 0;
        const bool hasWidth = end < name.size() && name[end] >= '1' && name[end] <= '9';
        const std::size_t width = hasWidth ? static_cast<std::size_t>(name[end++] - '0') : 0;
        if (end < name.size() && name[end] == 'd') {
            places.push_back({begin, end + 1, width});
        }
    }
    return places;
}

/// Both usual endings of JPEG and TIFF are understood.
std::optional<PictureFormat> formatOf(const std::string& extension) {
    if (extension == ".jpeg") {
        return PictureFormat::Jpeg;
    }
    if (extension == ".tiff") {
        return PictureFormat::Tiff;
    }
    for (const PictureFormatRow& each : pictureFormats) {
        if (extension == "." + std::string(each.extension)) {
            return each.format;
        }
    }
    return std::nullopt;
}

} // namespace

Result<void> readOutputName(const std::string& name, bool moves, Options& options) {
    options.output = name;
    if (options.output.stem().string().starts_with('.') && !options.output.has_extension()) {
        return Error{"'" + name + "' has no name before its ending"};
    }
    const std::string extension = lowered(options.output.extension().string());
    const auto places = findNumberPlaces(options.output.filename().string()).size();
    const auto format = formatOf(extension);
    const auto clip = clipFormatOf(options.output);
    const bool isMovie = extension == ".m4v" || extension == ".mp4";
    if (!format && !clip && !isMovie) {
        return Error{"'" + name +
                     "' ends in none of .bmp, .gif, .jpg, .jp2, .png, .tif (picture, or frames with %05d in the name), "
                     ".m4v, .mp4, .mov, .webm, .webp, .apng, .gif, .rgba, .y4m (movie)"};
    }
    if (places > 1) {
        return Error{"'" + name + "' has more than one place for the frame's number"};
    }
    if (places == 1 && !format) {
        return Error{"'" + name +
                     "' has a place for the frame's number, but frames are .bmp, .gif, .jpg, .jp2, .png or "
                     ".tif; " +
                     extension + " is a movie in one file"};
    }
    if (isMovie) {
        options.kind = OutputKind::Movie;
        return {};
    }
    if (clip && places == 0 && (moves || !format)) {
        options.kind = OutputKind::Clip;
        options.clipFormat = *clip;
        return {};
    }
    options.format = *format;
    options.kind = places == 1 ? OutputKind::Frames : OutputKind::Picture;
    return {};
}

std::filesystem::path numberedPath(const std::filesystem::path& series, std::int64_t frame) {
    const std::string name = series.filename().string();
    const auto places = findNumberPlaces(name);
    if (places.empty()) {
        return series;
    }
    const NumberPlace& place = places.front();
    std::string number = std::to_string(frame);
    if (number.size() < place.width) {
        number.insert(0, place.width - number.size(), '0');
    }
    return series.parent_path() / (name.substr(0, place.begin) + number + name.substr(place.end));
}

} // namespace starbloom
