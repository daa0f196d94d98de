#include "merge/MergeBars.h"

namespace mailvane {

namespace {

constexpr const char* LaterTip = "Comes with a later version.";

enum class Use { Ready, Later };

struct MergeTool {
    const char* name;
    const char* caption;
    const char* tip;
    const char* icon;
    const char* shortcut;
    Use use;
};

constexpr MergeTool MergeTools[] = {
    {"New", "&New", "Start a new message", "document-new", "Alt+N", Use::Ready},
    {"Open", "&Open...", "Open a message file", "document-open", "Alt+O", Use::Ready},
    {"Save", "&Save", "Save the message to a file", "document-save", "Alt+S", Use::Ready},
    {"Send Message", "Sen&d Message...", "Make the messages and send them", "mail-send", "Alt+D",
     Use::Ready},
    {"Send Later", "Send &Later...", "Make the messages and leave them in the Outbox", "mail-queue",
     "", Use::Ready},
    {"Test", "T&est...", LaterTip, "mail-forward", "Alt+E", Use::Later},
    {"Refresh", "&Refresh", "Read the table again", "view-refresh", "Alt+R", Use::Ready},
    {"Close", "&Close", "Close this window", "window-close", "", Use::Ready},
    {"Cut", "Cu&t", LaterTip, "edit-cut", "", Use::Later},
    {"Copy", "&Copy", LaterTip, "edit-copy", "", Use::Later},
    {"Paste", "&Paste", LaterTip, "edit-paste", "", Use::Later},
    {"Clear", "C&lear", "Remove the selected text", "edit-clear", "", Use::Ready},
    {"Select All", "Select &All", "Select the whole text", "edit-select-all", "", Use::Ready},
    {"Find", "&Find...", LaterTip, "edit-find", "", Use::Later},
    {"Spelling", "Spellin&g...", LaterTip, "tools-check-spelling", "Alt+G", Use::Later},
    {"File Attachment", "&File Attachment...", "Attach a file", "mail-attachment", "", Use::Ready},
    {"HTML", "&HTML File...", "Send an HTML file as the message", "text-html", "", Use::Ready},
    {"Text from File", "&Text from File...", "Insert the text of a file", "text-plain", "",
     Use::Ready},
    {"Signature", "&Signature", "Insert your signature", "document-sign", "", Use::Ready},
    {"Execute Program", "Execute &Program...", LaterTip, "system-run", "", Use::Later},
    {"Execute CGI", "Execute &CGI...", LaterTip, "network-server", "", Use::Later},
    {"attAdd", "&Add Attachment...", "Choose the file to attach", "list-add", "", Use::Ready},
    {"attDelete", "&Remove Attachment", "Attach no file", "list-remove", "", Use::Ready},
    {"attAddHTML", "Add &HTML File...", "Choose the HTML file", "list-add", "", Use::Ready},
    {"attDeleteHTML", "Remove HTML F&ile", "Send no HTML file", "list-remove", "", Use::Ready},
    {"miBold", "&Bold", LaterTip, "format-text-bold", "", Use::Later},
    {"miItalic", "&Italic", LaterTip, "format-text-italic", "", Use::Later},
    {"miUnderline", "&Underline", LaterTip, "format-text-underline", "", Use::Later},
    {"miFont", "&Font...", LaterTip, "preferences-desktop-font", "", Use::Later},
    {"miFontSize", "Font &Size...", LaterTip, "format-font-size-more", "", Use::Later},
};

struct PriorityTool {
    const char* name;
    const char* caption;
    const char* tip;
};

constexpr PriorityTool PriorityTools[] = {
    {"High", "&High", "Send with high priority"},
    {"Normal", "&Normal", "Send with normal priority"},
    {"Low", "&Low", "Send with low priority"},
};

void AddTools(ActiveBar& bar) {
    for (const MergeTool& tool : MergeTools)
        bar.AddTool({.name = tool.name,
                     .caption = tool.caption,
                     .tip = tool.tip,
                     .shortcut = tool.shortcut,
                     .icon = tool.icon,
                     .enabled = tool.use == Use::Ready});
    for (const PriorityTool& tool : PriorityTools)
        bar.AddTool({.name = tool.name,
                     .caption = tool.caption,
                     .tip = tool.tip,
                     .checkable = true,
                     .checked = std::string(tool.name) == "Normal"});
    for (int i = 1; i <= 5; ++i)
        bar.AddTool({.name = "RecentFile" + std::to_string(i),
                     .tip = "Open this message file",
                     .visible = false});
}

}  // namespace

void BuildMergeBars(ActiveBar& bar) {
    AddTools(bar);
    bar.AddBand({Band::Kind::Menu,
                 "File",
                 "&File",
                 {"New", "Open", "Save", "-", "Send Message", "Send Later", "Test", "-", "Refresh",
                  "-", "RecentFile1", "RecentFile2", "RecentFile3", "RecentFile4", "RecentFile5",
                  "-", "Close"}});
    bar.AddBand({Band::Kind::Menu,
                 "Edit",
                 "Ed&it",
                 {"Cut", "Copy", "Paste", "Clear", "Select All", "-", "Find", "Spelling"}});
    bar.AddBand({Band::Kind::Menu,
                 "Insert",
                 "Inser&t",
                 {"File Attachment", "attDelete", "HTML", "attDeleteHTML", "-", "Text from File",
                  "Signature", "-", "Execute Program", "Execute CGI"}});
    bar.AddBand({Band::Kind::Menu,
                 "Format",
                 "Form&at",
                 {"miBold", "miItalic", "miUnderline", "-", "miFont", "miFontSize"}});
    bar.AddBand({Band::Kind::Menu, "Priority", "&Priority", {"High", "Normal", "Low"}});
    bar.AddBand({Band::Kind::ToolBar,
                 "Message",
                 "Message",
                 {"New", "Open", "Save", "-", "Send Message", "Send Later", "-", "File Attachment",
                  "HTML", "Text from File", "Signature", "-", "Refresh"}});
}

}  // namespace mailvane
