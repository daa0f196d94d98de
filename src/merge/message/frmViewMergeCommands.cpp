#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Waiting.h"
#include "core/text/Text.h"
#include "merge/check/frmMergeCheck.h"
#include "merge/check/frmMergePreview.h"
#include "merge/message/BodyCommands.h"
#include "merge/message/InsertTag.h"
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

void frmViewMerge::RunCommand(const std::string& toolName) {
    if (RunFileCommand(toolName) || RunFileListCommand(toolName) ||
        RunBodyCommand(wb_, txtBody, toolName) || InsertExecuteTag(wb_, txtBody, toolName))
        return;
    if (toolName == "Send Message" || toolName == "Send Later")
        CheckAndStartMerge(toolName == "Send Message");
    else if (toolName == "Test")
        TestMergeMessage();
    else if (toolName == "Check")
        CheckWholeTable(wb_);
    else if (toolName == "Preview")
        PreviewWholeTable(wb_);
    else if (toolName == "Delivery Report")
        ShowDeliveryReport(wb_);
    else if (toolName == "Refresh")
        cmdRefresh.Press();
    else if (toolName == "High" || toolName == "Normal" || toolName == "Low")
        SetPriority(toolName);
    else if (toolName == "Close")
        Unload();
}

bool frmViewMerge::RunFileCommand(const std::string& toolName) {
    constexpr std::string_view RecentPrefix = "RecentFile";
    if (toolName == "New") {
        NewMessage();
    } else if (toolName == "Open") {
        const std::string path = BrowseFile(wb_, false, MergeDocumentTitle, MergeDocumentExtension);
        if (FileExists(path)) OpenMergeDocument(path);
    } else if (toolName == "Save") {
        SaveMessage();
    } else if (toolName.starts_with(RecentPrefix)) {
        const auto number = static_cast<std::size_t>(toolName.back() - '1');
        OpenExisting(std::string(RecentFile1.Paths().at(number)));
    } else {
        return false;
    }
    return true;
}

bool frmViewMerge::RunFileListCommand(const std::string& toolName) {
    if (toolName == "File Attachment" || toolName == "attAdd")
        ChooseFile(lstAttach);
    else if (toolName == "HTML" || toolName == "attAddHTML")
        ChooseFile(lstHTML);
    else if (toolName == "attDelete")
        lstAttach.Clear();
    else if (toolName == "attDeleteHTML")
        lstHTML.Clear();
    else
        return false;
    return true;
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

void frmViewMerge::OpenExisting(const std::string& path) {
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
