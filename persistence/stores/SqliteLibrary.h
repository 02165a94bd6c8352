// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sqlite3.h>

namespace starbloom {

/// The functions of SQLite that the stores use.
///
/// The library is loaded when it is first used and not with the program: finding its 1600 symbols takes most of a
/// millisecond, which a worker has while the window system is being connected and the launch has not. It stays for
/// the rest of the run. Any thread.
struct SqliteLibrary {
    decltype(&sqlite3_open_v2) open = nullptr;
    decltype(&sqlite3_close) close = nullptr;
    decltype(&sqlite3_errcode) errorCode = nullptr;
    decltype(&sqlite3_errmsg) errorMessage = nullptr;
    decltype(&sqlite3_exec) execute = nullptr;
    decltype(&sqlite3_prepare_v2) prepare = nullptr;
    decltype(&sqlite3_step) step = nullptr;
    decltype(&sqlite3_finalize) finalise = nullptr;
    decltype(&sqlite3_bind_text64) bindText = nullptr;
    decltype(&sqlite3_column_count) columnCount = nullptr;
    decltype(&sqlite3_column_text) columnText = nullptr;
    decltype(&sqlite3_column_bytes) columnBytes = nullptr;
    decltype(&sqlite3_serialize) serialise = nullptr;
    decltype(&sqlite3_free) release = nullptr;
    decltype(&sqlite3_busy_timeout) setBusyTimeout = nullptr;
    decltype(&sqlite3_limit) setLimit = nullptr;
    decltype(&sqlite3_db_config) configure = nullptr;
    decltype(&sqlite3_progress_handler) setProgressHandler = nullptr;

    /// Nothing when the system has no such library, or only part of it.
    static const SqliteLibrary* loaded();
};

} // namespace starbloom
