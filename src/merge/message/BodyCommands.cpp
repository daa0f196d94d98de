#include "merge/message/BodyCommands.h"

#include <optional>

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/project/Project.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "database/view/frmFind.h"
#include "merge/message/frmSpelling.h"

namespace mailvane {

namespace {

constexpr const char* FontSizeTool = "miFontSize";
constexpr int FontSizes[] = {8, 9, 10, 11, 12, 14, 16, 18, 20, 22, 24, 26, 28, 36, 48, 72};

/// The commands that only the widget of the text can carry out.
std::optional<EditCommand> WidgetCommand(const std::string& toolName) {
    constexpr std::pair<const char*, EditCommand> Commands[] = {
        {"Cut", EditCommand::Cut},           {"Copy", EditCommand::Copy},
        {"Paste", EditCommand::Paste},       {"miBold", EditCommand::Bold},
        {"miItalic", EditCommand::Italic},   {"miUnderline", EditCommand::Underline},
        {"miFont", EditCommand::ChooseFont},
    };
    for (const auto& [name, command] : Commands)
        if (toolName == name) return command;
    return std::nullopt;
}

/// "miFontSize 12"
std::string FontSizeToolOf(int points) {
    return std::string(FontSizeTool) + " " + std::to_string(points);
}

bool SetFontSize(RichTextBox& body, const std::string& toolName) {
    for (const int points : FontSizes) {
        if (toolName != FontSizeToolOf(points)) continue;
        body.SetFontSize(points);
        return true;
    }
    return false;
}

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

}  // namespace

bool RunBodyCommand(Workbench& wb, RichTextBox& body, const std::string& toolName) {
    if (const auto command = WidgetCommand(toolName))
        body.Do(*command);
    else if (toolName == "Clear")
        body.ReplaceSelection("");
    else if (toolName == "Select All")
        body.Select(0, body.Text().size());
    else if (toolName == "Find")
        ShowFind(wb, body);
    else if (toolName == "Spelling")
        CheckSpelling(wb, body);
    else if (toolName == "Text from File")
        InsertTextFile(wb, body);
    else if (toolName == "Signature")
        InsertSignature(wb, body);
    else if (toolName == FontSizeTool)
        wb.platform.windows.PopupMenu(body.Owner(), FontSizeBand);
    else
        return SetFontSize(body, toolName);
    return true;
}

void AddFontSizes(ActiveBar& bar) {
    std::vector<std::string> names;
    for (const int points : FontSizes) {
        names.push_back(FontSizeToolOf(points));
        bar.AddTool({.name = names.back(),
                     .caption = std::to_string(points),
                     .tip = "Show the selected text in this size"});
    }
    bar.AddBand({Band::Kind::SubMenu, FontSizeBand, "Font &Size", std::move(names)});
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
