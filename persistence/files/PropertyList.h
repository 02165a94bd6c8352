// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace starbloom {

/// A look at one value inside a PropertyList, or at no value at all. Questions that do not fit the value (an element of
/// a text, a number out of an array, an index beyond the end) answer with nothing, so a whole path can be asked for and
/// only its end looked at:
///
///     if (auto path = list.root().element(0).entry("path").text()) ...
///
/// Valid as long as the PropertyList is neither changed nor destroyed.
class PropertyListNode {
public:
    explicit PropertyListNode(void* node = nullptr)
        : m_node(node) {}

    bool isArray() const;
    bool isDictionary() const;

    /// How many elements an array has; 0 for anything else.
    std::size_t elementCount() const;
    PropertyListNode element(std::size_t index) const;

    /// The value of a key of a dictionary.
    PropertyListNode entry(const char* key) const;

    std::optional<std::string> text() const; ///< UTF-8 as far as the file is sound. Text with a NUL in it is no text.
    std::optional<std::vector<std::byte>> data() const;
    std::optional<std::uint64_t> number() const; ///< Of an integer that is not negative.
    std::optional<std::uint64_t> uid() const;    ///< Of a keyed archive's reference.

private:
    void* m_node;
};

/// A property list: arrays and dictionaries of texts, numbers and bytes, in memory. Movable, not copyable. Objects are
/// independent of each other, so each thread may use its own.
///
/// Content that is parsed is not trusted. Besides what is no property list, the following are refused, all far beyond
/// what this program keeps, because the library underneath would run out of stack, memory or time: more than 1 MiB, XML
/// with more than 1,000 containers, XML that does not end with its own end tag (which would else pass for whole when it
/// was cut short), and binary lists that are nested deeper than 64, contain themselves, or unfold to more than 100,000
/// values or 1 MiB because many references share one value.
class PropertyList {
public:
    static constexpr std::size_t largestSize = 1024 * 1024;

    static Result<PropertyList> fromXml(std::span<const std::byte> bytes);
    static Result<PropertyList> fromBinary(std::span<const std::byte> bytes);

    /// Text is UTF-8 without NUL, and for XML without control characters; what follows a NUL is dropped.
    static PropertyList text(std::string_view value);
    static PropertyList data(std::span<const std::byte> value);
    static PropertyList number(std::uint64_t value);
    static PropertyList uid(std::uint64_t value);
    static PropertyList array();
    static PropertyList dictionary();

    /// Adds an element at the end of this array.
    void append(PropertyList element);
    /// Adds an entry to this dictionary, in place of one that has the key.
    void set(const char* key, PropertyList value);

    PropertyListNode root() const { return PropertyListNode(m_root.get()); }

    /// Fails only when memory runs out.
    Result<std::vector<std::byte>> toXml() const;
    Result<std::vector<std::byte>> toBinary() const;

private:
    struct Release {
        void operator()(void* node) const noexcept;
    };

    explicit PropertyList(void* root)
        : m_root(root) {}

    std::unique_ptr<void, Release> m_root;
};

} // namespace starbloom
