// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/PropertyList.h"

#include "persistence/files/PropertyListGuard.h"

#include <cassert>
#include <cstdlib>
#include <limits>
#include <new>
#include <plist/plist.h>

namespace starbloom {

namespace {

struct FreeMemory {
    void operator()(char* memory) const noexcept { std::free(memory); }
};

using LibraryMemory = std::unique_ptr<char, FreeMemory>;

bool is(void* node, plist_type type) {
    return node != nullptr && plist_get_node_type(node) == type;
}

void* made(void* node) {
    if (node == nullptr) {
        throw std::bad_alloc();
    }
    return node;
}

Error notAPropertyList() {
    return Error{"that is not a property list"};
}

Result<std::vector<std::byte>> written(char* memory, std::uint32_t length) {
    const LibraryMemory owner(memory);
    if (memory == nullptr) {
        return Error{"not enough memory for a property list"};
    }
    const auto bytes = std::as_bytes(std::span(memory, length));
    return std::vector<std::byte>(bytes.begin(), bytes.end());
}

} // namespace

bool PropertyListNode::isArray() const {
    return is(m_node, PLIST_ARRAY);
}

bool PropertyListNode::isDictionary() const {
    return is(m_node, PLIST_DICT);
}

std::size_t PropertyListNode::elementCount() const {
    return isArray() ? plist_array_get_size(m_node) : 0;
}

PropertyListNode PropertyListNode::element(std::size_t index) const {
    return PropertyListNode(index < elementCount() ? plist_array_get_item(m_node, static_cast<std::uint32_t>(index))
                                                   : nullptr);
}

PropertyListNode PropertyListNode::entry(const char* key) const {
    return PropertyListNode(isDictionary() ? plist_dict_get_item(m_node, key) : nullptr);
}

std::optional<std::string> PropertyListNode::text() const {
    std::uint64_t length = 0;
    const char* characters = is(m_node, PLIST_STRING) ? plist_get_string_ptr(m_node, &length) : nullptr;
    if (characters == nullptr) {
        return std::nullopt;
    }
    std::string text(characters, length);
    return text.find('\0') == std::string::npos ? std::optional(std::move(text)) : std::nullopt;
}

std::optional<std::vector<std::byte>> PropertyListNode::data() const {
    if (!is(m_node, PLIST_DATA)) {
        return std::nullopt;
    }
    // The library has no pointer for data of no length.
    std::uint64_t length = 0;
    const char* first = plist_get_data_ptr(m_node, &length);
    const auto bytes = first != nullptr ? std::as_bytes(std::span(first, length)) : std::span<const std::byte>();
    return std::vector<std::byte>(bytes.begin(), bytes.end());
}

std::optional<std::uint64_t> PropertyListNode::number() const {
    std::uint64_t value = 0;
    if (!is(m_node, PLIST_UINT)) {
        return std::nullopt;
    }
    plist_get_uint_val(m_node, &value);
    // A negative number arrives as the upper half of the range.
    return value <= std::numeric_limits<std::int64_t>::max() ? std::optional(value) : std::nullopt;
}

std::optional<std::uint64_t> PropertyListNode::uid() const {
    std::uint64_t value = 0;
    if (!is(m_node, PLIST_UID)) {
        return std::nullopt;
    }
    plist_get_uid_val(m_node, &value);
    return value;
}

Result<PropertyList> PropertyList::fromXml(std::span<const std::byte> bytes) {
    if (const auto harmless = checkXmlPropertyList(bytes); !harmless) {
        return harmless.error();
    }
    plist_t root = nullptr;
    plist_from_xml(reinterpret_cast<const char*>(bytes.data()), static_cast<std::uint32_t>(bytes.size()), &root);
    return root != nullptr ? Result(PropertyList(root)) : notAPropertyList();
}

Result<PropertyList> PropertyList::fromBinary(std::span<const std::byte> bytes) {
    if (const auto harmless = checkBinaryPropertyList(bytes); !harmless) {
        return harmless.error();
    }
    plist_t root = nullptr;
    plist_from_bin(reinterpret_cast<const char*>(bytes.data()), static_cast<std::uint32_t>(bytes.size()), &root);
    return root != nullptr ? Result(PropertyList(root)) : notAPropertyList();
}

PropertyList PropertyList::text(std::string_view value) {
    return PropertyList(made(plist_new_string(std::string(value).c_str())));
}

PropertyList PropertyList::data(std::span<const std::byte> value) {
    // The library copies from the pointer even when there is nothing to copy.
    const char* first = value.empty() ? "" : reinterpret_cast<const char*>(value.data());
    return PropertyList(made(plist_new_data(first, value.size())));
}

PropertyList PropertyList::number(std::uint64_t value) {
    return PropertyList(made(plist_new_uint(value)));
}

PropertyList PropertyList::uid(std::uint64_t value) {
    return PropertyList(made(plist_new_uid(value)));
}

PropertyList PropertyList::array() {
    return PropertyList(made(plist_new_array()));
}

PropertyList PropertyList::dictionary() {
    return PropertyList(made(plist_new_dict()));
}

void PropertyList::append(PropertyList element) {
    assert(root().isArray());
    plist_array_append_item(m_root.get(), element.m_root.release());
}

void PropertyList::set(const char* key, PropertyList value) {
    assert(root().isDictionary());
    plist_dict_set_item(m_root.get(), key, value.m_root.release());
}

Result<std::vector<std::byte>> PropertyList::toXml() const {
    char* memory = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(m_root.get(), &memory, &length);
    return written(memory, length);
}

Result<std::vector<std::byte>> PropertyList::toBinary() const {
    char* memory = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(m_root.get(), &memory, &length);
    return written(memory, length);
}

void PropertyList::Release::operator()(void* node) const noexcept {
    plist_free(node);
}

} // namespace starbloom
