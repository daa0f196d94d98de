#pragma once

#include "platform/tables/TableSource.h"

namespace mailvane {

/// Whether the file begins as the database files of Microsoft Access do (.mdb, .accdb).
bool IsAccessFile(const std::string& path);

/// The user tables of an Access file. Attachments and values of several parts read as Null. Null,
/// with the reason in `error`, when the tables cannot be read: the file is encrypted or damaged.
std::unique_ptr<TableSource> OpenAccessFile(const std::string& path, std::string& error);

}  // namespace mailvane
