#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Waiting.h"
#include "core/commands/ToolTable.h"
#include "core/text/Text.h"
#include "merge/check/frmMergeCheck.h"
#include "merge/check/frmMergePreview.h"
#include "merge/message/BodyCommands.h"
#include "merge/message/MergeDocument.h"
#include "merge/message/frmViewMerge.h"
#include "send/report/frmDeliveryReport.h"

namespace mailvane {

namespace {

constexpr const char* Title = "E-mail Merge";
constexpr std::size_t ShortestPath = 3;

std::string TemplateMessagePath(const Workbench& wb) {
    return wb.platform.programFolder + "/msge.mg";
}

}  // namespace

void frmViewMerge::AddOwnTools() {
    using View = frmViewMerge;
    const ToolRow<View> tools[] = {
        {"New", "&New", "Start a new message", "document-new", "Alt+N",
         [](View& view) { view.NewMessage(); }},
        {"Open", "&Open...", "Open a message file", "document-open", "Alt+O",
         [](View& view) { view.OpenMessage(); }},
        {"Save", "&Save", "Save the message to a file", "document-save", "Alt+S",
         [](View& view) { view.SaveMessage(); }},
        {"Send Message", "Sen&d Message...", "Make the messages and send them", "mail-send",
         "Alt+D", [](View& view) { view.CheckAndStartMerge(true); }},
        {"Send Later", "Send &Later...", "Make the messages and leave them in the Outbox",
         "mail-queue", "", [](View& view) { view.CheckAndStartMerge(false); }},
        {"Test", "T&est...", "Send the message to yourself first", "mail-forward", "Alt+E",
         [](View& view) { view.TestMergeMessage(); }},
        {"Preview", "Previe&w...", "Look at the finished messages before anything is sent",
         "document-preview", "", [](View& view) { PreviewWholeTable(view.wb_); }},
        {"Check", "Chec&k...", "Look for what would go wrong before anything is sent",
         "dialog-ok-apply", "", [](View& view) { CheckWholeTable(view.wb_); }},
        {"Delivery Report", "Deli&very Report...", "See what became of the last runs",
         "office-chart-bar", "", [](View& view) { ShowDeliveryReport(view.wb_); }},
        {"Refresh", "&Refresh", "Read the table again", "view-refresh", "Alt+R",
         [](View& view) { view.cmdRefresh.Press(); }},
        {"Close", "&Close", "Close this window", "window-close", "",
         [](View& view) { view.Unload(); }},
        {"File Attachment", "&File Attachment...", "Attach a file", "mail-attachment", "",
         [](View& view) { view.ChooseFile(view.lstAttach); }},
        {"HTML", "&HTML File...", "Send an HTML file as the message", "text-html", "",
         [](View& view) { view.ChooseFile(view.lstHTML); }},
        {"attAdd", "&Add Attachment...", "Choose the file to attach", "list-add", "",
         [](View& view) { view.ChooseFile(view.lstAttach); }},
        {"attDelete", "&Remove Attachment", "Attach no file", "list-remove", "",
         [](View& view) { view.lstAttach.Clear(); }},
        {"attAddHTML", "Add &HTML File...", "Choose the HTML file", "list-add", "",
         [](View& view) { view.ChooseFile(view.lstHTML); }},
        {"attDeleteHTML", "Remove HTML F&ile", "Send no HTML file", "list-remove", "",
         [](View& view) { view.lstHTML.Clear(); }},
    };
    AddTools(*this, tools);
    AddBodyTools(wb_, ActiveBar1, txtBody);
    AddPriorities();
    AddRecentFiles();
}

void frmViewMerge::AddPriorities() {
    constexpr std::pair<const char*, const char*> priorities[] = {
        {"High", "Send with high priority"},
        {"Normal", "Send with normal priority"},
        {"Low", "Send with low priority"}};
    for (const auto& [name, tip] : priorities)
        ActiveBar1.AddTool({.name = name,
                            .caption = std::string("&") + name,
                            .tip = tip,
                            .checkable = true,
                            .checked = std::string(name) == "Normal",
                            .onClick = [this, chosen = name] { SetPriority(chosen); }});
}

void frmViewMerge::AddRecentFiles() {
    for (std::size_t i = 0; i < RecentFile1.Paths().size(); ++i)
        ActiveBar1.AddTool({.name = "RecentFile" + std::to_string(i + 1),
                            .tip = "Open this message file",
                            .visible = false,
                            .onClick = [this, i] { OpenExisting(RecentFile1.Paths().at(i)); }});
}

void frmViewMerge::OpenMessage() {
    const std::string path = BrowseFile(wb_, false, MergeDocumentTitle, MergeDocumentExtension);
    if (FileExists(path)) OpenMergeDocument(path);
}

void frmViewMerge::NewMessage() {
    const std::string path = TemplateMessagePath(wb_);
    if (!FileExists(path)) {
        Tell(wb_,
             "Some very important files are corrupted. To solve the problem please reinstall the "
             "program. ",
             BoxIcon::Critical);
        return;
    }
    OpenMergeDocument(path);
    currentFile_.clear();
}

void frmViewMerge::SaveMessage() {
    if (currentFile_.empty())
        currentFile_ = BrowseFile(wb_, true, MergeDocumentTitle, MergeDocumentExtension);
    if (!currentFile_.empty() && currentFile_ != " ") SaveMergeDocument(currentFile_);
}

/// The path may be one of the list that opening changes.
void frmViewMerge::OpenExisting(std::string path) {
    if (FileExists(path))
        OpenMergeDocument(path);
    else
        Tell(wb_, "File not found. Please verify the correct file name was given. ",
             BoxIcon::Critical);
}

void frmViewMerge::SaveMergeDocument(const std::string& path) {
    if (path.size() < ShortestPath) {
        Tell(wb_, "Invalid File Name.", BoxIcon::Critical);
        return;
    }
    currentFile_ = path;
    if (!WriteFileText(path, ScrambleMergeDocument(ReadMergeControlValues(wb_, *this)))) {
        Tell(wb_, "The message file '" + path + "' could not be written.", BoxIcon::Critical);
        return;
    }
    RememberFile(path);
}

void frmViewMerge::RememberFile(const std::string& path) {
    SetCaption(std::string(Title) + " - " + FileNameFromPath(path, PathSeparator, false));
    RecentFile1.Add(path);
}

void frmViewMerge::OpenMergeDocument(const std::string& path) {
    const BusyPointer busy(wb_);
    loading_ = true;
    currentFile_ = path;
    const std::string text = UnscrambleMergeDocument(ReadFileText(path));
    const int pendingToIndex = ApplyMergeControlValues(*this, text).value_or(-1);
    if (path == TemplateMessagePath(wb_)) {
        SetCaption(Title);
        PresetSender();
    } else {
        RememberFile(path);
    }
    FindTableOfDocument(pendingToIndex);
    if (txtTo.ListIndex() == -1 && txtTo.Count() > 0) {
        txtTo.SetListIndex(0);
        SelectEmailField();
    }
    loading_ = false;
}

/// Changes to the table that the document was written for, when another one is in use.
void frmViewMerge::FindTableOfDocument(int pendingToIndex) {
    const std::string wanted = lblTable.Text();
    if (Trim(wanted).empty() || wanted == CurrentDatabaseTable(wb_)) return;
    for (const std::string& table : TableNames()) {
        if (!EqualText(table, wanted)) continue;
        UseTable(table);
        FillFieldLists();
        txtTo.SetListIndex(pendingToIndex);
        return;
    }
    TellWrongTable();
}

void frmViewMerge::TellWrongTable() {
    wb_.platform.windows.SetPointer(MousePointer::Normal);
    if (!Visible() || wb_.state.UnattendedRun) return;
    Tell(wb_,
         "Your table '" + lblTable.Text() +
             "' cannot be found in the current database. \r\n\r\n"
             "In order to use this message file you need to select appropriate table from the "
             "database window. If this message cannot be used with any of your tables, you should "
             "delete it and create the new one.",
         BoxIcon::Exclamation, "Wrong table");
}

void frmViewMerge::ChooseFile(ListBox& list) {
    const std::string path = BrowseFile(wb_, false, "", "");
    if (FileExists(path)) list.SetItems({path});
}

void frmViewMerge::SetPriority(const std::string& toolName) {
    for (const char* name : {"High", "Normal", "Low"})
        ActiveBar1.SetToolChecked(name, toolName == name);
    priority_ = toolName == "Normal" ? "3" : toolName == "High" ? "1" : "5";
}

void frmViewMerge::ShowRecentFiles(const std::vector<std::string>& paths) {
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const std::string tool = "RecentFile" + std::to_string(i + 1);
        ActiveBar1.SetToolCaption(tool, paths[i]);
        ActiveBar1.SetToolVisible(tool, !paths[i].empty());
    }
}

}  // namespace mailvane
