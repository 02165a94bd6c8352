// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/stores/KeyValueStore.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

namespace {

using namespace starbloom;

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

/// A folder of this process, in memory where the system offers that.
std::filesystem::path folder() {
    const std::filesystem::path memory = "/dev/shm";
    const auto parent = std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
    return parent / ("starbloom-fuzz-" + std::to_string(::getpid()));
}

/// What a run does with a store: reading and saving before and after the launch has looked at the file.
void use(const StoreDefinition& definition, const std::string& bytes) {
    std::filesystem::create_directories(folder());
    const auto file = folder() / "Data.data";
    std::ofstream(file, std::ios::binary) << bytes;
    KeyValueStore store(file, definition);
    if (const auto values = store.readAll()) {
        require(values->size() == definition.rows.size());
    }
    store.openCreate();
    const auto values = store.readAll();
    require(values && values->size() == definition.rows.size());
    try {
        store.save("7", definition.rows[5].key);
    } catch (const StoreFailure&) {
        require(false); // after a launch a store can be saved in
    }
    require(store.readAll().has_value());
    // Here and not at exit, because the fuzzer ends without running what is to run then.
    std::filesystem::remove_all(folder());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    use(starbloom::windowsDefinition(), bytes);
    use(starbloom::preferencesDefinition(), bytes);
    use(starbloom::generalDefinition(), bytes);
    return 0;
}
