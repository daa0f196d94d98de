#pragma once

#include <string>
#include <vector>

#include "core/Workbench.h"

namespace mailvane {

/// Opens a document or folder in the program that the desktop has for it; false when none starts.
bool OpenDocument(Workbench& wb, const std::string& path);
bool OpenDocumentWithArgs(Workbench& wb, const std::string& path,
                          const std::vector<std::string>& arguments);
/// The same; tells when none starts, unless nobody is there.
void ShowDocument(Workbench& wb, const std::string& path);
/// Starts a program and waits for its end. A program that cannot be started is told in a box,
/// unless nobody is there; the result is false then.
bool RunAndWait(Workbench& wb, const std::vector<std::string>& commandLine);
/// Opens a web page in the desktop's browser. False for anything but http, https and file
/// addresses.
bool OpenInBrowser(Workbench& wb, const std::string& url);
/// Opens the help in the browser, or says that there is none.
void ShowHelpContext(Workbench& wb);
std::string HelpFile(const Workbench& wb);
/// Closes the loaded form with that caption as its control box would.
void CloseWindowByTitle(Workbench& wb, const std::string& title);

}  // namespace mailvane
