// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <exception>
#include <utility>
#include <vector>

namespace starbloom {

/// A growing file in memory, for libraries that write through callbacks. No exception leaves it, because none may
/// travel through a library of C.
class MemoryFile {
public:
    /// Writes at the present place, over what is there and beyond it; false when memory runs out.
    bool write(const void* data, std::size_t length) noexcept {
        try {
            if (m_position == m_bytes.size()) { // Nearly always; and nothing is cleared first.
                const auto* first = static_cast<const std::byte*>(data);
                m_bytes.insert(m_bytes.end(), first, first + length);
            } else {
                m_bytes.resize(std::max(m_bytes.size(), m_position + length));
                std::memcpy(m_bytes.data() + m_position, data, length);
            }
        } catch (const std::exception&) {
            return false;
        }
        m_position += length;
        return true;
    }

    /// Reads at the present place and yields how much there was.
    std::size_t read(void* data, std::size_t length) noexcept {
        const std::size_t count = m_position < size() ? std::min(length, size() - m_position) : 0;
        if (count > 0) {
            std::memcpy(data, m_bytes.data() + m_position, count);
        }
        m_position += count;
        return count;
    }

    /// Places beyond the end are filled with zeros when something is written there.
    void seek(std::size_t position) noexcept { m_position = position; }

    std::size_t position() const noexcept { return m_position; }

    std::size_t size() const noexcept { return m_bytes.size(); }

    std::vector<std::byte> take() { return std::move(m_bytes); }

private:
    std::vector<std::byte> m_bytes;
    std::size_t m_position = 0;
};

} // namespace starbloom
