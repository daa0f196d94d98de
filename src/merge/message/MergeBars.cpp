#include "merge/message/MergeBars.h"

#include "merge/message/BodyCommands.h"

namespace mailvane {

void AddMergeBands(ActiveBar& bar) {
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
