// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/stores/SqliteLibrary.h"

#include <dlfcn.h>
#include <optional>

namespace starbloom {

namespace {

/// The name that the library has kept since its interface became version 3.
constexpr const char* fileName = "libsqlite3.so.0";

template <typename Function>
bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(::dlsym(library, name));
    return function != nullptr;
}

std::optional<SqliteLibrary> load() {
    void* file = ::dlopen(fileName, RTLD_NOW | RTLD_LOCAL);
    SqliteLibrary library;
    const bool complete =
        file != nullptr && find(file, "sqlite3_open_v2", library.open) && find(file, "sqlite3_close", library.close) &&
        find(file, "sqlite3_errcode", library.errorCode) && find(file, "sqlite3_errmsg", library.errorMessage) &&
        find(file, "sqlite3_exec", library.execute) && find(file, "sqlite3_prepare_v2", library.prepare) &&
        find(file, "sqlite3_step", library.step) && find(file, "sqlite3_finalize", library.finalise) &&
        find(file, "sqlite3_bind_text64", library.bindText) &&
        find(file, "sqlite3_column_count", library.columnCount) &&
        find(file, "sqlite3_column_text", library.columnText) &&
        find(file, "sqlite3_column_bytes", library.columnBytes) && find(file, "sqlite3_serialize", library.serialise) &&
        find(file, "sqlite3_free", library.release) && find(file, "sqlite3_busy_timeout", library.setBusyTimeout) &&
        find(file, "sqlite3_limit", library.setLimit) && find(file, "sqlite3_db_config", library.configure) &&
        find(file, "sqlite3_progress_handler", library.setProgressHandler);
    return complete ? std::optional(library) : std::nullopt;
}

} // namespace

const SqliteLibrary* SqliteLibrary::loaded() {
    static const std::optional<SqliteLibrary> library = load();
    return library ? &*library : nullptr;
}

} // namespace starbloom
