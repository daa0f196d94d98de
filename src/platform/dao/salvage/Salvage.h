#pragma once

#include <string>

#include "platform/dao/DaoError.h"
#include "platform/dao/salvage/RepairReport.h"

namespace mailvane {

class Connection;

/// Copies what a damaged database file defines, and every row that its pages still give, into an
/// empty one. The damaged file is only read, and nobody may write to it meanwhile. 3049 when it
/// gives nothing at all.
DaoResult<RepairReport> SalvageInto(const std::string& damagedPath, Connection& fresh);

}  // namespace mailvane
