#include "merge/message/MergeBars.h"

#include "core/commands/ToolTable.h"
#include "merge/message/BodyCommands.h"

namespace mailvane {

namespace {

constexpr ToolRow MergeTools[] = {
    {"New", "&New", "Start a new message", "document-new", "Alt+N"},
    {"Open", "&Open...", "Open a message file", "document-open", "Alt+O"},
    {"Save", "&Save", "Save the message to a file", "document-save", "Alt+S"},
    {"Send Message", "Sen&d Message...", "Make the messages and send them", "mail-send", "Alt+D"},
    {"Send Later", "Send &Later...", "Make the messages and leave them in the Outbox", "mail-queue",
     ""},
    {"Test", "T&est...", "Send the message to yourself first", "mail-forward", "Alt+E"},
    {"Preview", "Previe&w...", "Look at the finished messages before anything is sent",
     "document-preview", ""},
    {"Check", "Chec&k...", "Look for what would go wrong before anything is sent",
     "dialog-ok-apply", ""},
    {"Delivery Report", "Deli&very Report...", "See what became of the last runs",
     "office-chart-bar", ""},
    {"Refresh", "&Refresh", "Read the table again", "view-refresh", "Alt+R"},
    {"Close", "&Close", "Close this window", "window-close", ""},
    {"Cut", "Cu&t", "Move the selected text to the clipboard", "edit-cut"},
    {"Copy", "&Copy", "Copy the selected text to the clipboard", "edit-copy"},
    {"Paste", "&Paste", "Insert the text of the clipboard", "edit-paste"},
    {"Clear", "C&lear", "Remove the selected text", "edit-clear", ""},
    {"Select All", "Select &All", "Select the whole text", "edit-select-all", ""},
    {"Find", "&Find...", "Find a text in the message", "edit-find", ""},
    {"Spelling", "Spellin&g...", "Check the spelling", "tools-check-spelling", "Alt+G"},
    {"File Attachment", "&File Attachment...", "Attach a file", "mail-attachment", ""},
    {"HTML", "&HTML File...", "Send an HTML file as the message", "text-html", ""},
    {"Text from File", "&Text from File...", "Insert the text of a file", "text-plain", ""},
    {"Signature", "&Signature", "Insert your signature", "document-sign", ""},
    {"Execute Program", "Execute &Program...", "Insert a tag that runs a program", "system-run",
     ""},
    {"Execute CGI", "Execute &CGI...", "Insert a tag that calls a web script", "network-server",
     ""},
    {"attAdd", "&Add Attachment...", "Choose the file to attach", "list-add", ""},
    {"attDelete", "&Remove Attachment", "Attach no file", "list-remove", ""},
    {"attAddHTML", "Add &HTML File...", "Choose the HTML file", "list-add", ""},
    {"attDeleteHTML", "Remove HTML F&ile", "Send no HTML file", "list-remove", ""},
    {"miBold", "&Bold", "Make the selected text bold", "format-text-bold"},
    {"miItalic", "&Italic", "Make the selected text italic", "format-text-italic"},
    {"miUnderline", "&Underline", "Underline the selected text", "format-text-underline"},
    {"miFont", "&Font...", "Choose the font of the selected text", "preferences-desktop-font"},
    {"miFontSize", "Font &Size...", "Choose the size of the selected text", "format-font-size-more",
     ""},
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

void AddMergeTools(ActiveBar& bar) {
    AddTools(bar, MergeTools);
    for (const PriorityTool& tool : PriorityTools)
        bar.AddTool({.name = tool.name,
                     .caption = tool.caption,
                     .tip = tool.tip,
                     .checkable = true,
                     .checked = std::string(tool.name) == "Normal"});
    AddFontSizes(bar);
    for (int i = 1; i <= 5; ++i)
        bar.AddTool({.name = "RecentFile" + std::to_string(i),
                     .tip = "Open this message file",
                     .visible = false});
}

}  // namespace

void BuildMergeBars(ActiveBar& bar) {
    AddMergeTools(bar);
    bar.AddBand(
        {Band::Kind::Menu,
         "File",
         "&File",
         {"New",         "Open", "Save",        "-",           "Send Message",    "Send Later",
          "Test",        "-",    "Preview",     "Check",       "Delivery Report", "-",
          "Refresh",     "-",    "RecentFile1", "RecentFile2", "RecentFile3",     "RecentFile4",
          "RecentFile5", "-",    "Close"}});
    bar.AddBand({Band::Kind::Menu,
                 "Edit",
                 "Ed&it",
                 {"Cut", "Copy", "Paste", "Clear", "Select All", "-", "Find", "Spelling"}});
    bar.AddBand({Band::Kind::Menu,
                 "Insert",
                 "Inser&t",
                 {"File Attachment", "attDelete", "HTML", "attDeleteHTML", "-", "Text from File",
                  "Signature", "-", "Execute Program", "Execute CGI"}});
    bar.AddBand(
        {Band::Kind::Menu,
         "Format",
         "Form&at",
         {"miBold", "miItalic", "miUnderline", "-", "miFont", std::string(">") + FontSizeBand}});
    bar.AddBand({Band::Kind::Popup, AttachmentBand, "", {"attAdd", "attDelete"}});
    bar.AddBand({Band::Kind::Popup, HtmlFileBand, "", {"attAddHTML", "attDeleteHTML"}});
    bar.AddBand({Band::Kind::Menu, "Priority", "&Priority", {"High", "Normal", "Low"}});
    bar.AddBand({Band::Kind::ToolBar,
                 "Message",
                 "Message",
                 {"New",
                  "Open",
                  "Save",
                  "-",
                  "Send Message",
                  "Send Later",
                  "Test",
                  "Preview",
                  "Check",
                  "-",
                  "File Attachment",
                  "HTML",
                  "Text from File",
                  "Signature",
                  "-",
                  "Spelling",
                  "-",
                  "miBold",
                  "miItalic",
                  "miUnderline",
                  "miFont",
                  "miFontSize",
                  "-",
                  "Refresh"}});
}

}  // namespace mailvane
