#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// Carries out the tools "Execute Program" and "Execute CGI" of a message: lets the user pick a tag
/// and puts it in at the caret. False when the tool is none of them.
bool InsertExecuteTag(Workbench& wb, RichTextBox& body, const std::string& toolName);

}  // namespace mailvane
