#pragma once

#include <string>

#include "core/run/LongRun.h"
#include "merge/run/MergePlan.h"

namespace mailvane {

/// The name of a table for the rows of one mailing, that no table has yet: the recipients' table, a
/// blank and the moment, cut where it grows too long.
std::string FreeMailingTableName(const Database& database, const std::string& table,
                                 DateTime moment);

/// Makes the plan's mailing table with the rows that the run was for, made into messages or not. A
/// table of that name that came up meanwhile stays as it is. A value that the table does not take
/// is left out in silence; a file that takes nothing is told.
void CreateMailingTable(Workbench& wb, LongRun& run, const MergePlan& plan);

}  // namespace mailvane
