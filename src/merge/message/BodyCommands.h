#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// Carries out the command of a tool that edits the text of a message: the clipboard, Find,
/// Spelling, Signature, Text from File, the formats. False when the tool is none of them.
bool RunBodyCommand(Workbench& wb, RichTextBox& body, const std::string& toolName);

/// Adds the sizes that the tool "miFontSize" offers, and the submenu of them.
inline constexpr const char* FontSizeBand = "FontSizes";
void AddFontSizes(ActiveBar& bar);

/// Selects the next place behind the selection, or else the first, that holds the text; a box says
/// so when there is none.
void FindInBody(Workbench& wb, RichTextBox& body, const std::string& text, bool matchCase);

}  // namespace mailvane
