#pragma once

#include <string>

#include "database/view/frmViewDatabase.h"

namespace mailvane {

/// The opaque place of the current row, beside the project's other files.
inline constexpr const char* BookmarkFile = "tbkm.dat";

/// Fills the bar of the database view: its tools, the tool bar, the menus, the popup menu "Edit".
void AddViewTools(ActiveBar& bar);
/// The hidden button that carries out the tool; null for a tool of the view itself.
Button* ButtonOfTool(frmViewDatabase& view, const std::string& toolName);
/// Tools whose buttons have no handler are disabled, and their tip says so.
void DisableToolsWithoutWork(frmViewDatabase& view);
/// The tool that a key of the window stands for besides its shortcut; "" when there is none.
std::string ToolOfKey(const std::string& key);

}  // namespace mailvane
