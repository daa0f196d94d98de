#pragma once

#include "core/Workbench.h"

namespace mailvane {

class frmViewDatabase;

enum class PrintKind { CurrentRow = 0, AllRows = 1, NonSelectedRows = 2, SelectedRows = 3 };

/// The rows of that kind, in the grid's order, with its columns as they stand on the screen. Shares
/// the grid's rows.
PrintJob PrintJobOf(const Grid& grid, PrintKind kind);

/// Prints with the progress display on; a failure is told. True when it was printed.
bool RunPrint(Workbench& wb, PrintJob& job);

/// Shows the print dialog for the view's table.
void PrintTable(Workbench& wb, frmViewDatabase& view);

}  // namespace mailvane
