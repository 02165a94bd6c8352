// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/BackgroundColor.h"

#include "persistence/files/KeptList.h"
#include "persistence/files/PropertyList.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <string>
#include <string_view>

namespace starbloom {

namespace {

constexpr std::uint64_t archiveVersion = 100000;
constexpr std::uint64_t calibratedRgb = 1;
constexpr std::uint64_t deviceRgb = 2;
constexpr int colorCount = 4;

/// Where the objects of our own archives lie. Foreign ones may have any order.
enum ObjectPosition : std::uint64_t { ArrayObject = 1, ColorObject, ColorClass, ArrayClass };

float clamped(float component) {
    // Adding zero turns the negative zero into the plain one.
    return std::clamp(component, 0.0F, 1.0F) + 0.0F;
}

/// The shortest text that reads back as the same number, whatever the user's language is.
void appendNumber(std::string& text, float component) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), clamped(component)).ptr;
    text += text.empty() ? "" : " ";
    text.append(digits.data(), end);
}

std::string componentsText(const Color& color) {
    std::string text;
    appendNumber(text, color.red);
    appendNumber(text, color.green);
    appendNumber(text, color.blue);
    if (clamped(color.alpha) != 1.0F) {
        appendNumber(text, color.alpha);
    }
    return text;
}

PropertyList classObject(const char* name) {
    auto ancestry = PropertyList::array();
    ancestry.append(PropertyList::text(name));
    ancestry.append(PropertyList::text("NSObject"));
    auto object = PropertyList::dictionary();
    object.set("$classname", PropertyList::text(name));
    object.set("$classes", std::move(ancestry));
    return object;
}

PropertyList arrayObject() {
    auto references = PropertyList::array();
    for (int i = 0; i < colorCount; ++i) {
        references.append(PropertyList::uid(ColorObject));
    }
    auto object = PropertyList::dictionary();
    object.set("NS.objects", std::move(references));
    object.set("$class", PropertyList::uid(ArrayClass));
    return object;
}

PropertyList colorObject(const Color& color) {
    const auto text = componentsText(color);
    auto object = PropertyList::dictionary();
    object.set("NSColorSpace", PropertyList::number(calibratedRgb));
    // The layout counts the NUL that ends the text.
    object.set("NSRGB", PropertyList::data(std::as_bytes(std::span(text.c_str(), text.size() + 1))));
    object.set("$class", PropertyList::uid(ColorClass));
    return object;
}

/// The object that a reference names; no value when it names none.
PropertyListNode resolved(PropertyListNode objects, PropertyListNode reference) {
    const auto position = reference.uid();
    return position ? objects.element(*position) : PropertyListNode();
}

bool isOfClass(PropertyListNode objects, PropertyListNode object, std::initializer_list<std::string_view> names) {
    const auto name = resolved(objects, object.entry("$class")).entry("$classname").text();
    return name && std::find(names.begin(), names.end(), *name) != names.end();
}

std::optional<std::string> componentsOf(PropertyListNode color) {
    auto text = color.entry("NSRGB").text();
    if (const auto data = color.entry("NSRGB").data()) {
        text = std::string(reinterpret_cast<const char*>(data->data()), data->size());
        if (text->ends_with('\0')) {
            text->pop_back();
        }
    }
    return text;
}

/// Three or four numbers with spaces between them.
std::optional<Color> parsedComponents(std::string_view text) {
    Color color;
    const std::array<float*, 4> targets{&color.red, &color.green, &color.blue, &color.alpha};
    std::size_t count = 0;
    while (true) {
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
        if (text.empty()) {
            return count >= 3 ? std::optional(color) : std::nullopt;
        }
        float number = 0.0F;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || !std::isfinite(number) || count == targets.size()) {
            return std::nullopt;
        }
        *targets[count++] = clamped(number);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        if (!text.empty() && text.front() != ' ') {
            return std::nullopt;
        }
    }
}

Result<Color> decodedColor(PropertyListNode objects, PropertyListNode color) {
    const auto space = color.entry("NSColorSpace").number();
    if (!isOfClass(objects, color, {"NSColor"}) || (space != calibratedRgb && space != deviceRgb)) {
        return Error{"the archive's first object is not an RGB colour"};
    }
    const auto text = componentsOf(color);
    const auto parsed = text ? parsedComponents(*text) : std::nullopt;
    return parsed ? Result(*parsed) : Error{"the colour's components are not three or four numbers"};
}

} // namespace

Result<std::vector<std::byte>> encodeBackgroundColor(const Color& color) {
    for (const float component : {color.red, color.green, color.blue, color.alpha}) {
        if (!std::isfinite(component)) {
            return Error{"a component of the background colour is not a number"};
        }
    }
    auto objects = PropertyList::array();
    objects.append(PropertyList::text("$null"));
    objects.append(arrayObject());
    objects.append(colorObject(color));
    objects.append(classObject("NSColor"));
    objects.append(classObject("NSArray"));
    auto top = PropertyList::dictionary();
    top.set("root", PropertyList::uid(ArrayObject));
    auto archive = PropertyList::dictionary();
    archive.set("$version", PropertyList::number(archiveVersion));
    archive.set("$archiver", PropertyList::text("NSKeyedArchiver"));
    archive.set("$top", std::move(top));
    archive.set("$objects", std::move(objects));
    return archive.toBinary();
}

Result<Color> decodeBackgroundColor(std::span<const std::byte> bytes) {
    const auto archive = PropertyList::fromBinary(bytes);
    if (!archive) {
        return archive.error();
    }
    // Four references are followed one by one and never from one to the next, so a cycle among them is harmless.
    const auto root = archive.value().root();
    const auto objects = root.entry("$objects");
    if (root.entry("$archiver").text() != "NSKeyedArchiver" || root.entry("$version").number() != archiveVersion) {
        return Error{"that is not a keyed archive"};
    }
    const auto colors = resolved(objects, root.entry("$top").entry("root"));
    if (!isOfClass(objects, colors, {"NSArray", "NSMutableArray"})) {
        return Error{"the archive's root is not an array"};
    }
    return decodedColor(objects, resolved(objects, colors.entry("NS.objects").element(0)));
}

Result<void> saveBackgroundColor(const std::filesystem::path& file, const Color& color) {
    return saveKept(file, encodeBackgroundColor(color), decodeBackgroundColor);
}

std::optional<Color> loadBackgroundColor(const std::filesystem::path& file) {
    return loadKept<Color>(file, decodeBackgroundColor);
}

} // namespace starbloom
