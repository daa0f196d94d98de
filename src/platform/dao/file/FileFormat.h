#pragma once

#include <string>

#include "platform/dao/DaoError.h"

namespace mailvane {

/// What can be said of a database file without opening it: 3024 when missing (with the place that a
/// link leads to), 3343 when it is no ordinary file or too short to be one. An opened handle would,
/// when closed, take SQLite's locks along.
DaoError CheckFile(const std::string& path);

/// The error for a file in which SQLite found no database: 3049 if it once was one, 3343 otherwise,
/// with the kind of file where it is known. Only for files that nothing else here has open.
DaoError ForeignFormatError(const std::string& path);

}  // namespace mailvane
