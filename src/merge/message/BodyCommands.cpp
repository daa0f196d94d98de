#include "merge/message/BodyCommands.h"

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/commands/ToolTable.h"
#include "core/project/Project.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "database/view/frmFind.h"
#include "merge/message/InsertTag.h"
#include "merge/message/frmSpelling.h"

namespace mailvane {

namespace {

constexpr int FontSizes[] = {8, 9, 10, 11, 12, 14, 16, 18, 20, 22, 24, 26, 28, 36, 48, 72};

void InsertTextFile(Workbench& wb, RichTextBox& body) {
    const std::string path = BrowseFile(wb, false, "", "");
    if (FileExists(path)) body.ReplaceSelection(ReadFileText(path));
}

void InsertSignature(Workbench& wb, RichTextBox& body) {
    frmSettings& settings = wb.forms.Get<frmSettings>();
    const std::string file = settings.txtSigFile.Text();
    const bool fromFile = settings.optFile.IsSet();
    if (fromFile ? FileExists(file) : !settings.txtSignature.Text().empty())
        body.ReplaceSelection(fromFile ? ReadFileText(file) : settings.txtSignature.Text());
    else if (AskYesNo(wb, "Do you want to create signature for your outgoing messages?"))
        settings.ShowPage(frmSettings::SignaturePage, settings.txtSignature);
}

void ShowFind(Workbench& wb, RichTextBox& body) {
    wb.forms.Get<frmFind>().ShowFor(body.Owner(),
                                    [&wb, &body](const std::string& text, bool matchCase) {
                                        FindInBody(wb, body, text, matchCase);
                                    });
}

/// A message's text, and the program around it.
struct Body {
    Workbench& wb;
    RichTextBox& text;
};

template <EditCommand command>
void Edit(Body& body) {
    body.text.Do(command);
}

const ToolRow<Body> BodyTools[] = {
    {"Cut", "Cu&t", "Move the selected text to the clipboard", "edit-cut", "",
     Edit<EditCommand::Cut>},
    {"Copy", "&Copy", "Copy the selected text to the clipboard", "edit-copy", "",
     Edit<EditCommand::Copy>},
    {"Paste", "&Paste", "Insert the text of the clipboard", "edit-paste", "",
     Edit<EditCommand::Paste>},
    {"Clear", "C&lear", "Remove the selected text", "edit-clear", "",
     [](Body& body) { body.text.ReplaceSelection(""); }},
    {"Select All", "Select &All", "Select the whole text", "edit-select-all", "",
     [](Body& body) { body.text.Select(0, body.text.Text().size()); }},
    {"Find", "&Find...", "Find a text in the message", "edit-find", "",
     [](Body& body) { ShowFind(body.wb, body.text); }},
    {"Spelling", "Spellin&g...", "Check the spelling", "tools-check-spelling", "Alt+G",
     [](Body& body) { CheckSpelling(body.wb, body.text); }},
    {"Text from File", "&Text from File...", "Insert the text of a file", "text-plain", "",
     [](Body& body) { InsertTextFile(body.wb, body.text); }},
    {"Signature", "&Signature", "Insert your signature", "document-sign", "",
     [](Body& body) { InsertSignature(body.wb, body.text); }},
    {"Execute Program", "Execute &Program...", "Insert a tag that runs a program", "system-run", "",
     [](Body& body) { InsertExecuteTag(body.wb, body.text, "Execute Program"); }},
    {"Execute CGI", "Execute &CGI...", "Insert a tag that calls a web script", "network-server", "",
     [](Body& body) { InsertExecuteTag(body.wb, body.text, "Execute CGI"); }},
    {"miBold", "&Bold", "Make the selected text bold", "format-text-bold", "",
     Edit<EditCommand::Bold>},
    {"miItalic", "&Italic", "Make the selected text italic", "format-text-italic", "",
     Edit<EditCommand::Italic>},
    {"miUnderline", "&Underline", "Underline the selected text", "format-text-underline", "",
     Edit<EditCommand::Underline>},
    {"miFont", "&Font...", "Choose the font of the selected text", "preferences-desktop-font", "",
     Edit<EditCommand::ChooseFont>},
    {"miFontSize", "Font &Size...", "Choose the size of the selected text", "format-font-size-more",
     "", [](Body& body) { body.wb.platform.windows.PopupMenu(body.text.Owner(), FontSizeBand); }},
};

/// "miFontSize 12"
void AddFontSizes(ActiveBar& bar, RichTextBox& body) {
    std::vector<std::string> names;
    for (const int points : FontSizes) {
        names.push_back("miFontSize " + std::to_string(points));
        bar.AddTool({.name = names.back(),
                     .caption = std::to_string(points),
                     .tip = "Show the selected text in this size",
                     .onClick = [&body, points] { body.SetFontSize(points); }});
    }
    bar.AddBand({Band::Kind::SubMenu, FontSizeBand, "Font &Size", std::move(names)});
}

}  // namespace

void AddBodyTools(Workbench& wb, ActiveBar& bar, RichTextBox& body) {
    for (const ToolRow<Body>& row : BodyTools) {
        Tool tool = row.Described();
        tool.onClick = [of = Body{wb, body}, work = row.work]() mutable { work(of); };
        bar.AddTool(std::move(tool));
    }
    AddFontSizes(bar, body);
}

void FindInBody(Workbench& wb, RichTextBox& body, const std::string& text, bool matchCase) {
    if (text.empty()) return;
    const std::string searched = matchCase ? body.Text() : ToLower(body.Text());
    const std::string wanted = matchCase ? text : ToLower(text);
    std::size_t found = searched.find(wanted, body.SelectionStart() + body.SelectionLength());
    if (found == std::string::npos) found = searched.find(wanted);
    if (found == std::string::npos)
        Tell(wb, "'" + text + "' Not Found.", BoxIcon::Information, "Find");
    else
        body.Select(found, wanted.size());
}

}  // namespace mailvane
