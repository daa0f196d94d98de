#pragma once

#include "core/Workbench.h"

namespace mailvane {

class frmViewDatabase;

enum class StructureAction {
    NewColumn = 0,
    NewTable = 1,
    RenameColumn = 2,
    RenameTable = 3,
    DeleteColumn = 4,
    DeleteTable = 5,
    EditTable = 6
};

/// Changes the table that the view shows, or its current column, with the questions that go before.
/// The view shows the table again, the next one behind a deleted one.
void EditTableStructure(Workbench& wb, frmViewDatabase& view, StructureAction action);

}  // namespace mailvane
