#include "shell/frmAbout.h"

namespace mailvane {

namespace {

constexpr double LibraryWidth = 2700;  // twips
constexpr double LicenceWidth = 4800;

/// The libraries that the program is linked to or loads, and its icons.
std::shared_ptr<GridTable> Libraries() {
    auto table = std::make_shared<GridTable>();
    table->rows = {
        {"Qt 6", "GNU LGPL 3 or GNU GPL 2 or 3"},
        {"Qt Charts", "GNU GPL 3"},
        {"SQLite", "public domain"},
        {"libcurl", "curl licence"},
        {"c-ares", "MIT licence"},
        {"ICU", "Unicode licence"},
        {"libxml2", "MIT licence"},
        {"libmdb (mdbtools)", "GNU LGPL 2 or later, GNU GPL 2 or later"},
        {"liborcus", "Mozilla Public License 2.0"},
        {"libxlsxwriter", "BSD licence, 2 clauses"},
        {"Hunspell", "Mozilla Public License 1.1, GNU GPL 2 or GNU LGPL 2.1"},
        {"Breeze icons", "GNU LGPL 3 or later"},
    };
    return table;
}

}  // namespace

frmAbout::frmAbout(Workbench& wb) : WorkbenchForm(wb, "frmAbout", "About Mailvane") {
    grdLibraries.SetColumns({{.name = "Library",
                              .caption = "Library",
                              .width = LibraryWidth,
                              .position = 0,
                              .fixed = true},
                             {.name = "Licence",
                              .caption = "Licence",
                              .width = LicenceWidth,
                              .position = 1,
                              .fixed = true}});
    grdLibraries.SetRows(Libraries());
    grdLibraries.SetCurrentRow(0);
}

}  // namespace mailvane
