#include "shell/MainBands.h"

namespace mailvane {

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
         "Cop&ies",
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
