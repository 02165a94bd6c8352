// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/WindowMemory.h"

#include <QBackingStore>
#include <QImage>

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

namespace starbloom {

QImage* WindowMemory::pixelsOf(QPaintDevice* device) {
    auto* image = dynamic_cast<QImage*>(device);
    const bool same = image != nullptr && (image->format() == QImage::Format_RGB32 ||
                                           image->format() == QImage::Format_ARGB32_Premultiplied);
    return same ? image : nullptr;
}

bool WindowMemory::isShared(const void* address) {
    const auto wanted = reinterpret_cast<std::uintptr_t>(address);
    std::ifstream mappings("/proc/self/maps");
    for (std::string line; std::getline(mappings, line);) {
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        char sharing = 0; // The last of the four letters of what may be done with it.
        if (std::sscanf(line.c_str(), "%" SCNxPTR "-%" SCNxPTR " %*3c%c", &begin, &end, &sharing) == 3 &&
            begin <= wanted && wanted < end) {
            return sharing == 's';
        }
    }
    return false;
}

QImage* WindowMemory::begin(QBackingStore& store, const QRect& place) {
    if (!m_queue) {
        m_queue = ServerQueue::ofApplication();
    }
    if (m_place == place && mayBeWritten()) {
        // With nothing to be painted there is nothing that the toolkit has to ask the server for.
        store.beginPaint(QRegion());
        QImage* const memory = pixelsOf(store.paintDevice());
        if (memory != nullptr && memory->constBits() == m_pixels) {
            return memory;
        }
        store.endPaint();
    }
    store.beginPaint(place);
    QImage* const memory = pixelsOf(store.paintDevice());
    const void* const pixels = memory != nullptr ? memory->constBits() : nullptr;
    if (m_place != place || m_pixels != pixels) {
        m_place = place;
        m_pixels = pixels;
        // To a server without shared memory the toolkit sends no more than what has been begun.
        m_shared = m_queue->isKnown() && isShared(pixels);
    }
    return memory;
}

} // namespace starbloom
