// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/engine/CountedAllocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocations = 0;

} // namespace

// For the whole program. In a file without a caller: inlined into one, the compiler takes half a pair for a mismatch.

void* operator new(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void* operator new(std::size_t size, std::align_val_t alignment) {
    ++allocations;
    const auto step = static_cast<std::size_t>(alignment);
    if (void* memory = std::aligned_alloc(step, (size + step - 1) / step * step)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    std::free(memory);
}

namespace starbloom {

std::size_t countedAllocations() {
    return allocations;
}

} // namespace starbloom
