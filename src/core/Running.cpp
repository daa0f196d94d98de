#include "core/Running.h"

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/text/Text.h"

namespace mailvane {

bool OpenDocument(Workbench& wb, const std::string& path) {
    return OpenDocumentWithArgs(wb, path, {});
}

bool OpenDocumentWithArgs(Workbench& wb, const std::string& path,
                          const std::vector<std::string>& arguments) {
    return wb.platform.processes.OpenDocument(path, arguments);
}

void ShowDocument(Workbench& wb, const std::string& path) {
    if (!OpenDocument(wb, path) && !wb.state.UnattendedRun)
        Tell(wb, "No program could be started for '" + path + "'.", BoxIcon::Exclamation);
}

bool RunAndWait(Workbench& wb, const std::vector<std::string>& commandLine) {
    wb.platform.windows.PumpEvents();
    if (!commandLine.empty() && wb.platform.processes.RunAndWait(commandLine)) return true;
    if (!wb.state.UnattendedRun) Tell(wb, "Error starting task ");
    return false;
}

bool OpenInBrowser(Workbench& wb, const std::string& url) {
    for (const char* scheme : {"http://", "https://", "file://"})
        if (ToLower(url).starts_with(scheme)) return OpenDocument(wb, url);
    return false;
}

std::string HelpFile(const Workbench& wb) {
    return wb.platform.programFolder + "/help/index.html";
}

void ShowHelpContext(Workbench& wb) {
    const std::string page = HelpFile(wb);
    if (!FileExists(page)) {
        Tell(wb, "Unable to display Help Contents. There is no Help associated with this project.",
             BoxIcon::Information);
    } else {
        ShowDocument(wb, page);
    }
}

void CloseWindowByTitle(Workbench& wb, const std::string& title) {
    for (Form* form : wb.forms.All()) {
        if (form->Caption() != title) continue;
        form->OnCloseBox();
        return;
    }
}

}  // namespace mailvane
