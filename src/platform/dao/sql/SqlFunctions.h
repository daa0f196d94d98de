#pragma once

struct sqlite3;

namespace mailvane {

/// Gives a connection the functions that translated statements call; returns SQLite's result code.
/// To be called once for every connection that runs a plan, right after it was opened:
///
/// - mv_like(pattern, text): whether the text matches a pattern of the dialect's Like; Null if
///   either is Null.
/// - mv_convert(value, from, to, size): a stored value of one field type as a field of another type
///   (engine numbers) and size holds it; Null when it cannot be converted, SQLITE_TOOBIG when it is
///   too long.
/// - mv_concat(a, b, ...): the texts joined; Null only if all are Null.
int RegisterSqlFunctions(sqlite3* database);

}  // namespace mailvane
