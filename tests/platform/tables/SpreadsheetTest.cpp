#include <gtest/gtest.h>

#include "platform/os/Files.h"
#include "platform/tables/sheets/SheetCells.h"
#include "platform/tables/sheets/SpreadsheetSource.h"
#include "platform/tables/sheets/SpreadsheetWriter.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

constexpr const char* Samples = MAILVANE_SOURCE_DIR "/tests/platform/tables/samples/";

/// The rows as text: place, then the values with a letter for their kind.
std::string Shown(TableSource& source, std::size_t table, bool header = true) {
    std::string error;
    const auto rows = source.Open(table, header, error);
    if (!rows) return error;
    std::string shown;
    for (const SourceColumn& column : rows->Columns())
        shown += column.name + "|";
    shown += "\n";
    std::vector<Cell> cells;
    while (rows->Next(cells)) {
        shown += std::to_string(rows->Place()) + ":";
        for (const Cell& cell : cells)
            shown += std::string(1, "-TNDBX"[static_cast<int>(cell.kind)]) + "[" +
                     std::string(cell.text) + "]";
        shown += "\n";
    }
    return shown;
}

std::unique_ptr<TableSource> Open(const std::string& path) {
    std::string error;
    auto source = OpenSpreadsheet(path, error);
    EXPECT_TRUE(source) << error;
    return source;
}

/// Texts shared, inlined and of formulas, dates by format, a truth, an error, numbers in full.
TEST(Spreadsheet, ReadsEveryKindOfXlsxCell) {
    const auto source = Open(std::string(Samples) + "values.xlsx");
    ASSERT_TRUE(source);
    EXPECT_EQ(source->Tables(), std::vector<std::string>{"Ljudje č"});
    EXPECT_EQ(Shown(*source, 0),
              "Name|Inline|Str|00123|F|||\n"
              "3:T[Rich é]D[2023-01-01 00:00:00]D[2023-01-01 12:00:00]N[0.1]N[2]B[True]\n"
              "4:-[]T[00123]N[123456789012345680]T[a]B[True]N[3]\n"
              "5:-[]-[]-[]-[]-[]N[33]T[ a\r\nb]\n");
}

/// Amounts, percentages, times, repeated cells and rows, paragraphs, blanks; no notes.
TEST(Spreadsheet, ReadsEveryKindOfOdsCell) {
    const auto source = Open(std::string(Samples) + "values.ods");
    ASSERT_TRUE(source);
    EXPECT_EQ(source->Tables(), (std::vector<std::string>{"S1", "Empty"}));
    EXPECT_EQ(Shown(*source, 0),
              "Email|Two\nlines||||||\n"
              "2:N[1.5]D[2023-01-02 00:00:00]D[2023-01-02 03:04:05]B[True]N[12.5]N[0.5]"
              "D[1899-12-30 13:30:00]\n"
              "3:T[repeat   x]T[repeat   x]N[2]T[aé]\n"
              "4:T[repeat   x]T[repeat   x]N[2]T[aé]\n");
    EXPECT_EQ(Shown(*source, 1), "The sheet 'Empty' is empty.");
}

TEST(Spreadsheet, KeepsWhatItWrites) {
    const test::TempFolder folder;
    SpreadsheetWriter writer(folder.File("out.xlsx"), "Ana's [list]");
    ASSERT_TRUE(writer.WriteColumns({"Text", "Number", "Date", "Truth"}));
    const std::vector<std::vector<Cell>> rows{
        {{ValueKind::Text, "00123"},
         {ValueKind::Number, "-1.5"},
         {ValueKind::Date, "2024-02-29"},
         {ValueKind::Truth, "True"}},
        {{ValueKind::Text, "a\r\n\"é\" <&>"},
         {},
         {ValueKind::Date, "2024-02-29 23:59:58"},
         {ValueKind::Truth, "False"}},
        {{}, {ValueKind::Number, "12345678901234567"}, {ValueKind::Date, "1750-01-01"}}};
    for (const auto& row : rows)
        ASSERT_TRUE(writer.WriteRow(row)) << writer.Error();
    ASSERT_TRUE(writer.Finish()) << writer.Error();
    const auto source = Open(folder.File("out.xlsx"));
    ASSERT_TRUE(source);
    EXPECT_EQ(source->Tables(), std::vector<std::string>{"Ana's _list_"});
    EXPECT_EQ(Shown(*source, 0),
              "Text|Number|Date|Truth|\n"
              "2:T[00123]N[-1.5]D[2024-02-29 00:00:00]B[True]\n"
              "3:T[a\r\n\"é\" <&>]-[]D[2024-02-29 23:59:58]B[False]\n"
              "4:-[]T[12345678901234567]T[1750-01-01]\n")
        << "what a sheet cannot hold as a number or a date stays a text";
}

TEST(Spreadsheet, GoesOnInAFurtherSheet) {
    const test::TempFolder folder;
    SpreadsheetWriter writer(folder.File("out.xlsx"), "List", 3);
    ASSERT_TRUE(writer.WriteColumns({"N"}));
    for (const char* number : {"1", "2", "3"})
        ASSERT_TRUE(writer.WriteRow({{ValueKind::Number, number}}));
    ASSERT_TRUE(writer.Finish());
    const auto source = Open(folder.File("out.xlsx"));
    EXPECT_EQ(source->Tables(), (std::vector<std::string>{"List", "List 2"}));
    EXPECT_EQ(Shown(*source, 1), "N|\n2:N[3]\n");
}

TEST(Spreadsheet, SaysWhatCannotBeRead) {
    const test::TempFolder folder;
    const std::string whole = ReadWholeFile(std::string(Samples) + "values.xlsx").value_or("");
    for (const std::size_t length : {4u, 100u, 1000u, 2000u}) {
        std::string error;
        EXPECT_EQ(OpenSpreadsheet(folder.Write("cut.xlsx", whole.substr(0, length)), error),
                  nullptr);
        EXPECT_NE(error.find("cannot be read"), std::string::npos) << error;
    }
}

TEST(SheetCells, KnowDateFormats) {
    for (const char* code : {"yyyy\\-mm\\-dd", "[$-409]d/m/yy h:mm", "[h]:mm"})
        EXPECT_TRUE(IsDateFormat(code)) << code;
    for (const char* code : {"General", "[Red]0.00\" days\"", "#,##0_m", "0;yyyy"})
        EXPECT_FALSE(IsDateFormat(code)) << code;
}

TEST(SheetDate, CountsAsWorkbooksDo) {
    EXPECT_EQ(SheetDate(1, false), "1900-01-01 00:00:00");
    EXPECT_EQ(SheetDate(61, false), "1900-03-01 00:00:00");
    EXPECT_EQ(SheetDate(1, true), "1904-01-02 00:00:00");
    EXPECT_EQ(SheetDate(0.5, true), "1899-12-30 12:00:00");
}

}  // namespace
}  // namespace mailvane
