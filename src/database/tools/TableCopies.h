#pragma once

#include <string>

#include "core/Workbench.h"
#include "platform/dao/StatementHandler.h"

namespace mailvane {

class frmViewDatabase;

/// Asks for a name and copies the view's table to a new one of that name, as one statement:
/// "Backup table" and "Clone entire table". `title` and `name` are the input box's.
void MakeTableCopy(Workbench& wb, frmViewDatabase& view, const std::string& title,
                   const std::string& name);

/// Asks for the name of a new table; "" when there is none, or a bad one, which has been told.
std::string AskCopyName(Workbench& wb, frmViewDatabase& view, const std::string& title,
                        const std::string& name);
void TellInvalidTable(Workbench& wb);
/// What the copies do with an engine error.
StatementHandler CopyErrors(Workbench& wb);

}  // namespace mailvane
