#include <sqlite3.h>

#include <string_view>

#include "platform/dao/file/Connection.h"

namespace mailvane {

namespace {

constexpr std::string_view NoSuchTable = "no such table: ";
constexpr std::string_view NoSuchColumn = "no such column: ";
constexpr std::string_view NotNullFailed = "NOT NULL constraint failed: ";
constexpr std::string_view CheckFailed = "CHECK constraint failed: ";

/// What stands behind `opening` in a message that begins with it, or the whole message.
std::string After(std::string_view opening, const std::string& message) {
    return message.starts_with(opening) ? message.substr(opening.size()) : message;
}

std::string LastPart(const std::string& qualifiedName) {
    const std::size_t dot = qualifiedName.rfind('.');
    return dot == std::string::npos ? qualifiedName : qualifiedName.substr(dot + 1);
}

DaoError StatementError(const std::string& message) {
    if (message.starts_with(NoSuchTable))
        return MakeDaoError(dao_error::TableNotFound, After(NoSuchTable, message));
    if (message.starts_with(NoSuchColumn)) return MakeDaoError(dao_error::TooFewParameters);
    return MakeDaoError(dao_error::EngineFailure, message);
}

}  // namespace

DaoError Connection::ErrorOf(int code) {
    const std::string message = sqlite3_errmsg(database_);
    switch (code & 0xFF) {
        case SQLITE_CONSTRAINT:
            return ConstraintError(code, message);
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return MakeDaoError(dao_error::Locked);
        case SQLITE_READONLY:
        case SQLITE_PERM:
            return MakeDaoError(dao_error::ReadOnly);
        case SQLITE_CORRUPT:
            return MakeDaoError(dao_error::DamagedFile, path_);
        case SQLITE_NOTADB:
            return MakeDaoError(dao_error::UnrecognizedFormat, path_);
        case SQLITE_CANTOPEN:
            return MakeDaoError(dao_error::CannotOpenFile, path_);
        case SQLITE_FULL:
            return MakeDaoError(dao_error::DiskFull);
        case SQLITE_IOERR:
            return MakeDaoError(dao_error::DiskError, message);
        case SQLITE_MISMATCH:
            return MakeDaoError(dao_error::DataConversion);
        case SQLITE_TOOBIG:
            return MakeDaoError(dao_error::FieldTooSmall);
        case SQLITE_ERROR:
            return StatementError(message);
        default:
            return MakeDaoError(dao_error::EngineFailure, message);
    }
}

DaoError Connection::ConstraintError(int code, const std::string& message) {
    switch (code) {
        case SQLITE_CONSTRAINT_UNIQUE:
        case SQLITE_CONSTRAINT_PRIMARYKEY:
        case SQLITE_CONSTRAINT_ROWID:
            return MakeDaoError(dao_error::DuplicateKey);
        case SQLITE_CONSTRAINT_NOTNULL: {
            const std::string column = After(NotNullFailed, message);
            if (schema_.IsPrimaryKeyColumn(column))
                return MakeDaoError(dao_error::NullInPrimaryKey);
            return MakeDaoError(dao_error::RequiredField, LastPart(column));
        }
        case SQLITE_CONSTRAINT_CHECK:
            return MakeDaoError(dao_error::ValidationRule, After(CheckFailed, message));
        default:
            return MakeDaoError(dao_error::EngineFailure, message);
    }
}

}  // namespace mailvane
