#include "core/shell/CommandTable.h"

namespace mailvane {

namespace {

enum Readiness { Ready, Later };

struct Row {
    const char* name;
    const char* caption;
    const char* tip;
    const char* icon;
    const char* shortcut;
    Readiness readiness;
};

constexpr Row Rows[] = {
    {"New", "&New Project...", "Make a new project", "document-new", "Ctrl+N", Ready},
    {"Open", "&Open Project...", "Open a project", "document-open", "Ctrl+O", Ready},
    {"Save", "&Save Project", "Save the project", "document-save", "Ctrl+S", Ready},
    {"SaveAs", "Save Project &As...", "Save the project under another name", "document-save-as", "",
     Ready},
    {"New Project Wizard", "New Project &Wizard...", "Make a project step by step", "tools-wizard",
     "", Later},
    {"Project Dialog", "Project &Dialog...", "Choose or make a project", "folder", "", Later},
    {"exit", "E&xit", "Leave the program", "application-exit", "Ctrl+Q", Ready},
    {"Database", "&Database", "Show the recipients database", "table", "F5", Ready},
    {"Email", "&E-mail", "Show the mail folders", "mail-folder-inbox", "F6", Ready},
    {"Merge", "&Merge", "Write a message for all recipients", "mail-message-new", "F7", Ready},
    {"Settings", "&Settings...", "Settings of the project", "configure", "F8", Ready},
    {"Start", "S&tart", "Send and receive e-mail", "media-playback-start", "F9", Ready},
    {"Send and Receive", "Send and &Receive", "Send and receive e-mail", "mail-send-receive", "",
     Ready},
    {"Send All", "Send &All", "Send all messages of the Outbox", "mail-send", "Ctrl+Return", Ready},
    {"Receive All", "Rece&ive All", "Receive new messages", "mail-receive", "", Later},
    {"New Message", "New &Message...", "Write a single message", "document-edit", "", Later},
    {"Message rules", "Message r&ules...", "Rules for received messages", "view-filter", "", Later},
    {"Import", "Im&port jobs...", "Jobs that import values from messages", "mail-receive", "",
     Later},
    {"Mailing lists", "Mailing &lists...", "Mailing lists with autoresponders", "contact-new", "",
     Later},
    {"NewDatabase", "New &Database...", "Make a recipients database", "document-new", "", Ready},
    {"ImportData", "I&mport Data...", "Import a text file into the database", "document-import", "",
     Ready},
    {"ExportData", "E&xport Data...", "Export a table to a text file", "document-export", "",
     Later},
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
    {"Backup table", "&Backup table...", "Copy the table as a back-up", "edit-copy", "", Later},
    {"Clone entire table", "Clone entire &table...", "Copy the table", "edit-copy", "", Later},
    {"Clone selected records", "Clone &selected records...", "Copy the selected records",
     "edit-copy", "", Later},
    {"Copy selected records to existing table", "Copy selected records to existing t&able...",
     "Copy the selected records", "edit-copy", "", Later},
    {"Copy selected records to new table", "Copy selected records to &new table...",
     "Copy the selected records", "edit-copy", "", Later},
    {"Repair", "&Repair database", "Repair the database file", "tools-report-bug", "", Later},
    {"Compact", "Compact data&base", "Compact the database file", "archive-insert", "", Later},
    {"Execute Program", "Execute &Program tags...", "Programs that messages run", "system-run", "",
     Later},
    {"Execute CGI", "Execute C&GI tags...", "Web scripts that messages call", "internet-services",
     "", Later},
    {"Scheduler", "Sche&duler", "Start the program at set times", "appointment-new", "", Ready},
    {"Internal Mail Server", "Internal Mail Ser&ver...", "Deliver without a relay",
     "network-server", "", Later},
    {"Connection Wizard", "&Connection Wizard...", "Set up the connection", "network-connect", "",
     Later},
    {"Dial", "Dia&l...", "Dial-up connections", "network-modem", "", Ready},
    {"Options", "&Options...", "Options of the program", "preferences-system", "", Later},
    {"Error Log File", "&Error Log File", "Show the errors of the last run", "dialog-error", "",
     Ready},
    {"Upgrade", "Check for &upgrades", "Look for a newer version", "system-software-update", "",
     Later},
    {"Cascade", "&Cascade", "Arrange the windows one behind the other", "window-duplicate", "",
     Ready},
    {"Tile Horizontally", "Tile &Horizontally", "Arrange the windows one above the other",
     "view-split-top-bottom", "", Ready},
    {"Tile Vertically", "Tile &Vertically", "Arrange the windows side by side",
     "view-split-left-right", "", Ready},
    {"Arrange Icons", "Arrange &Icons", "Arrange the minimised windows", "view-list-icons", "",
     Ready},
    {"Help", "&Help", "Show the help", "help-contents", "F1", Ready},
    {"Information (phone and other info)", "&Information (phone and other info)",
     "Where to find help", "help-about", "", Ready},
    {"Welcome", "&Welcome", "Show the welcome screen", "go-home", "", Later},
    {"About", "&About", "About the program", "help-about", "", Later},
};

}  // namespace

std::vector<Tool> MainTools() {
    std::vector<Tool> tools;
    for (const Row& row : Rows)
        tools.push_back({.name = row.name,
                         .caption = row.caption,
                         .tip = row.readiness == Ready
                                    ? row.tip
                                    : std::string(row.tip) + ". Comes with a later version.",
                         .shortcut = row.shortcut,
                         .icon = row.icon,
                         .enabled = row.readiness == Ready});
    for (const char number : std::string("12345"))
        tools.push_back({.name = std::string("RecentFile") + number, .visible = false});
    return tools;
}

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
         "&Mail",
         {"New Message", "-", "Send and Receive", "Send All", "Receive All", "-", "Message rules",
          "Import", "Mailing lists", "-", "Error Log File"}},
        {Kind::Menu,
         "Data",
         "&Database",
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
         "&Window",
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
