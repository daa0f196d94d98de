#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace mailvane {

/// Stands for the number of the page in the header and the footer of a print.
inline constexpr std::string_view PageNumberMark = "<page number>";

enum class PrintLines { None, ColumnHeaders, Rows, All };

struct PrintColumn {
    std::string caption;
    double width = 1500;  ///< twips

    friend bool operator==(const PrintColumn&, const PrintColumn&) = default;
};

/// A table on paper. The rows are asked for page by page, so that it may be of any size; columns
/// for which a page is too narrow stand on pages of their own.
struct PrintJob {
    std::string title;
    std::vector<PrintColumn> columns;
    std::size_t rowCount = 0;
    /// Texts of up to `count` rows from `first`, one a column.
    std::function<std::vector<std::vector<std::string>>(std::size_t first, std::size_t count)>
        readRows;
    std::string header;  ///< one line above and one below the table of each page, "" for none
    std::string footer;
    PrintLines lines = PrintLines::None;
    bool colors = false;
    bool pageSetup = false;    ///< asks for the paper first
    bool printDialog = false;  ///< asks for the printer first
    bool preview = false;      ///< shows the pages first; nothing is printed when that is closed
    std::string pdfFile;       ///< the pages go to this file instead of a printer
    /// Told after each page; false ends the print.
    std::function<bool(std::size_t page, std::size_t pages)> progress;
};

struct PrintOutcome {
    enum class Result { Printed, Cancelled, Failed };
    Result result = Result::Printed;
    std::string reason = {};  ///< of a failure
};

}  // namespace mailvane
