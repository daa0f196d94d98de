#pragma once

#include "core/Workbench.h"

namespace mailvane {

class frmViewDatabase;

enum class CopyTarget { NewTable, ExistingTable };

/// Adds the view's selected rows to another table, which is asked for. Columns go by name; those
/// that a row cannot fill stay empty, rows that the table refuses are passed over. Cancel ends it
/// with the rows that were added until then.
void CopyRowsToTable(Workbench& wb, frmViewDatabase& view, CopyTarget target);
/// The same in other words: the rows stay where they are, too. The user removes them with "Delete".
void MoveRowsToTable(Workbench& wb, frmViewDatabase& view, CopyTarget target);

}  // namespace mailvane
