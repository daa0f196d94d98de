#include "shell/CommandTable.h"

#include "core/commands/ToolTable.h"

namespace mailvane {

namespace {

constexpr ToolState Later = ToolState::Later;

constexpr ToolRow Rows[] = {
    {"New", "&New Project...", "Make a new project", "document-new", "Ctrl+N"},
    {"Open", "&Open Project...", "Open a project", "document-open", "Ctrl+O"},
    {"Save", "&Save Project", "Save the project", "document-save", "Ctrl+S"},
    {"SaveAs", "Save Project &As...", "Save the project under another name", "document-save-as",
     ""},
    {"New Project Wizard", "New Project &Wizard...", "Make a project step by step", "tools-wizard",
     ""},
    {"Project Dialog", "Project &Dialog...", "Choose or make a project", "folder", ""},
    {"exit", "E&xit", "Leave the program", "application-exit", "Ctrl+Q"},
    {"Database", "&Database", "Show the recipients database", "table", "F5"},
    {"Email", "&E-mail", "Show the mail folders", "mail-folder-inbox", "F6"},
    {"Merge", "&Merge", "Write a message for all recipients", "mail-message-new", "F7"},
    {"Settings", "&Settings...", "Settings of the project", "configure", "F8"},
    {"Start", "S&tart", "Send and receive e-mail", "media-playback-start", "F9"},
    {"Send and Receive", "Send and &Receive", "Send and receive e-mail", "mail-send-receive", ""},
    {"Send All", "Send &All", "Send all messages of the Outbox", "mail-send", "Ctrl+Return"},
    {"Receive All", "Rece&ive All", "Receive new messages", "mail-receive", "", Later},
    {"New Message", "New &Message...", "Write a single message", "document-edit", "", Later},
    {"Message rules", "Message r&ules...", "Rules for received messages", "view-filter", "", Later},
    {"Import", "Im&port jobs...", "Jobs that import values from messages", "mail-receive", "",
     Later},
    {"Mailing lists", "Mailing &lists...", "Mailing lists with autoresponders", "contact-new", "",
     Later},
    {"NewDatabase", "New &Database...", "Make a recipients database", "document-new", ""},
    {"ImportData", "I&mport Data...", "Import text, a spreadsheet or another database",
     "document-import", ""},
    {"ExportData", "E&xport Data...", "Export a table to a text file or spreadsheet",
     "document-export", ""},
    {"Filter through text file", "Filter through te&xt file...", "Remove addresses named in a file",
     "view-filter", "", Later},
    {"Compare tables", "&Compare tables...", "Compare two tables", "view-split-left-right", "",
     Later},
    {"Clean up table", "C&lean up table...", "Repair e-mail addresses", "edit-clear", "", Later},
    {"Remove duplicates", "Remove &duplicates...", "Remove records that repeat", "edit-delete", "",
     Later},
    {"Remove duplicate recipients", "Remove duplicate r&ecipients...",
     "Remove addresses that repeat", "edit-delete", "", Later},
    {"Remove domains", "Remove d&omains...", "Remove the addresses of domains", "edit-delete", "",
     Later},
    {"Backup table", "&Backup table...", "Copy the table as a back-up", "edit-copy", ""},
    {"Clone entire table", "Clone entire &table...", "Copy the table", "edit-copy", ""},
    {"Clone selected records", "Clone &selected records...", "Copy the selected records",
     "edit-copy", ""},
    {"Copy selected records to existing table", "Copy selected records to existing t&able...",
     "Copy the selected records", "edit-copy", ""},
    {"Copy selected records to new table", "Copy selected records to &new table...",
     "Copy the selected records", "edit-copy", ""},
    {"Repair", "&Repair database", "Repair the database file", "tools-report-bug", ""},
    {"Compact", "Compact data&base", "Compact the database file", "archive-insert", ""},
    {"Execute Program", "Execute &Program tags...", "Programs that messages run", "system-run", ""},
    {"Execute CGI", "Execute C&GI tags...", "Web scripts that messages call", "internet-services",
     ""},
    {"Scheduler", "Sche&duler", "Start the program at set times", "appointment-new", ""},
    {"Internal Mail Server", "Internal Mail Ser&ver...", "Deliver without a relay",
     "network-server", ""},
    {"Connection Wizard", "&Connection Wizard...", "Set up the connection", "network-connect", ""},
    {"Dial", "Dia&l...", "Dial-up connections", "network-modem", ""},
    {"Options", "&Options...", "Options of the program", "preferences-system", ""},
    {"Error Log File", "&Error Log File", "Show the errors of the last run", "dialog-error", ""},
    {"Delivery Report", "&Delivery Report", "Show what the last runs sent and had refused",
     "office-chart-bar", ""},
    {"Upgrade", "Check for &upgrades", "Look for a newer version", "system-software-update", ""},
    {"Cascade", "&Cascade", "Arrange the windows one behind the other", "window-duplicate", ""},
    {"Tile Horizontally", "Tile &Horizontally", "Arrange the windows one above the other",
     "view-split-top-bottom", ""},
    {"Tile Vertically", "Tile &Vertically", "Arrange the windows side by side",
     "view-split-left-right", ""},
    {"Arrange Icons", "Arrange &Icons", "Arrange the minimised windows", "view-list-icons", ""},
    {"Help", "&Help", "Show the help", "help-contents", "F1"},
    {"Information (phone and other info)", "&Information (phone and other info)",
     "Where to find help", "help-about", ""},
    {"Welcome", "&Welcome", "Show the welcome screen", "go-home", ""},
    {"About", "&About", "About the program", "help-about", ""},
};

}  // namespace

void AddMainTools(ActiveBar& bar) {
    AddTools(bar, Rows);
    for (const char number : std::string("12345"))
        bar.AddTool({.name = std::string("RecentFile") + number, .visible = false});
}

/// The menus' letters are none of those that the views use with Alt.
std::vector<Band> MainBands() {
    using Kind = Band::Kind;
    return {
        {Kind::Menu,
         "File",
         "&File",
         {"New", "Open", "Save", "SaveAs", "-", "New Project Wizard", "Project Dialog", "-",
          ">Recent", "-", "exit"}},
        {Kind::SubMenu,
         "Recent",
         "&Recent projects",
         {"RecentFile1", "RecentFile2", "RecentFile3", "RecentFile4", "RecentFile5"}},
        {Kind::Menu, "View", "&View", {"Database", "Email", "Merge", "-", "Settings"}},
        {Kind::Menu,
         "Mail",
         "M&ail",
         {"New Message", "-", "Send and Receive", "Send All", "Receive All", "-", "Message rules",
          "Import", "Mailing lists", "-", "Delivery Report", "Error Log File"}},
        {Kind::Menu,
         "Data",
         "Data&base",
         {"NewDatabase", "ImportData", "ExportData", "-", ">TableTools", ">Copies", "-", "Repair",
          "Compact"}},
        {Kind::SubMenu,
         "TableTools",
         "&Table tools",
         {"Filter through text file", "Compare tables", "Clean up table", "Remove duplicates",
          "Remove duplicate recipients", "Remove domains"}},
        {Kind::SubMenu,
         "Copies",
         "C&opies",
         {"Backup table", "Clone entire table", "Clone selected records",
          "Copy selected records to existing table", "Copy selected records to new table"}},
        {Kind::Menu,
         "Tools",
         "&Tools",
         {"Execute Program", "Execute CGI", "-", "Scheduler", "Internal Mail Server",
          "Connection Wizard", "Dial", "-", "Options"}},
        {Kind::Menu,
         "Window",
         "W&indow",
         {"Cascade", "Tile Horizontally", "Tile Vertically", "Arrange Icons"}},
        {Kind::Menu,
         "HelpMenu",
         "&Help",
         {"Help", "Information (phone and other info)", "-", "Welcome", "Upgrade", "-", "About"}},
        {Kind::ToolBar,
         "Standard",
         "Standard",
         {"New", "Open", "Save", "-", "Database", "Merge", "Email", "-", "Settings", "-", "Start"}},
    };
}

}  // namespace mailvane
