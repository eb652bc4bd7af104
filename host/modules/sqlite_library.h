// The functions of SQLite, which stands in a module: only the commands on database files need it.
#pragma once

#include "platform/modules/modules.h"

#include <sqlite3.h>

namespace host {

/// SQLite's functions under their own names without the prefix, behaving as its manual says. Only the module
/// makes one of these: the addresses are what it is linked to.
struct SqliteLibrary {
    decltype(&sqlite3_bind_blob64) bind_blob64 = &sqlite3_bind_blob64;
    decltype(&sqlite3_bind_double) bind_double = &sqlite3_bind_double;
    decltype(&sqlite3_bind_int64) bind_int64 = &sqlite3_bind_int64;
    decltype(&sqlite3_bind_null) bind_null = &sqlite3_bind_null;
    decltype(&sqlite3_bind_text64) bind_text64 = &sqlite3_bind_text64;
    decltype(&sqlite3_bind_zeroblob64) bind_zeroblob64 = &sqlite3_bind_zeroblob64;
    decltype(&sqlite3_blob_close) blob_close = &sqlite3_blob_close;
    decltype(&sqlite3_blob_open) blob_open = &sqlite3_blob_open;
    decltype(&sqlite3_blob_read) blob_read = &sqlite3_blob_read;
    decltype(&sqlite3_blob_write) blob_write = &sqlite3_blob_write;
    decltype(&sqlite3_busy_handler) busy_handler = &sqlite3_busy_handler;
    decltype(&sqlite3_changes64) changes64 = &sqlite3_changes64;
    decltype(&sqlite3_close_v2) close_v2 = &sqlite3_close_v2;
    decltype(&sqlite3_db_config) db_config = &sqlite3_db_config;
    decltype(&sqlite3_column_bytes) column_bytes = &sqlite3_column_bytes;
    decltype(&sqlite3_column_double) column_double = &sqlite3_column_double;
    decltype(&sqlite3_column_int64) column_int64 = &sqlite3_column_int64;
    decltype(&sqlite3_column_text) column_text = &sqlite3_column_text;
    decltype(&sqlite3_column_type) column_type = &sqlite3_column_type;
    decltype(&sqlite3_errmsg) errmsg = &sqlite3_errmsg;
    decltype(&sqlite3_exec) exec = &sqlite3_exec;
    decltype(&sqlite3_finalize) finalize = &sqlite3_finalize;
    decltype(&sqlite3_last_insert_rowid) last_insert_rowid = &sqlite3_last_insert_rowid;
    decltype(&sqlite3_limit) limit = &sqlite3_limit;
    decltype(&sqlite3_open_v2) open_v2 = &sqlite3_open_v2;
    decltype(&sqlite3_prepare_v3) prepare_v3 = &sqlite3_prepare_v3;
    decltype(&sqlite3_reset) reset = &sqlite3_reset;
    decltype(&sqlite3_step) step = &sqlite3_step;
};

inline constinit modules::Library<SqliteLibrary> g_sqlite{"sqlite"};

} // namespace host
