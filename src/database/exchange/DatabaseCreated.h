#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// A database file has been made: it becomes the project's, with that table ("" for none) current,
/// and every form that shows recipients follows.
void DatabaseCreated(Workbench& wb, const std::string& path, const std::string& table);

}  // namespace mailvane
