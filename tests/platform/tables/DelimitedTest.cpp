#include <gtest/gtest.h>

#include "platform/tables/text/DelimitedSource.h"
#include "platform/tables/text/DelimitedWriter.h"
#include "platform/tables/text/FormatGuess.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

/// The records as text: fields in brackets, Nulls as a bar, records by line, then the error.
std::string ReadAll(const std::string& path, const DelimitedFormat& format, std::size_t block) {
    DelimitedReader reader(path, format, block);
    std::vector<Cell> record;
    std::string shown;
    while (reader.Next(record)) {
        shown += std::to_string(reader.Line()) + ":";
        for (const Cell& cell : record)
            shown += cell.kind == ValueKind::Null ? "|" : "[" + std::string(cell.text) + "]";
        shown += reader.IsValid() ? "\n" : "?\n";
    }
    return shown + reader.Error();
}

struct Case {
    const char* name;
    std::string text;
    std::string expected;
    DelimitedFormat format{};
};

const DelimitedFormat Apostrophes{.delimiter = ';', .quote = '\''};
const DelimitedFormat NoQuotes{.delimiter = '\t', .quote = '\0'};

/// Small blocks cut records, quotes, line ends and characters in two.
TEST(DelimitedReader, ReadsTheSameInAnyBlocks) {
    const Case rows[] = {
        {"Nothing", "", ""},
        {"OnlyAMark", "\xEF\xBB\xBF", ""},
        {"MarkBeforeAName",
         "\xEF\xBB\xBF"
         "Email,Name\n",
         "1:[Email][Name]\n"},
        {"AllLineEnds", "a,b\r\nc,d\ne,f\rg,h", "1:[a][b]\n2:[c][d]\n3:[e][f]\n4:[g][h]\n"},
        {"EmptyLinesPassedOver", "a\n\r\n\nb\r", "1:[a]\n4:[b]\n"},
        {"NullIsNotEmpty", ",\"\",a,\n", "1:|[][a]|\n"},
        {"DelimiterInQuotes", "\"Müller, Sons & Co\",x\n", "1:[Müller, Sons & Co][x]\n"},
        {"DoubledQuotes", "\"say \"\"hi\"\"\",\"\"\"\"\n", "1:[say \"hi\"][\"]\n"},
        {"LineEndsInQuotes", "\"a\r\nb\",\"c\rd\"\ne\n", "1:[a\r\nb][c\rd]\n4:[e]\n"},
        {"QuoteInsideAPlainField", "O'Brien,5\" nails\n", "1:[O'Brien][5\" nails]\n"},
        {"TextBehindAClosingQuote", "\"a\"b,c\n", "1:[ab][c]\n"},
        {"Apostrophes", "'O''Brien';\"x\"\n", "1:[O'Brien][\"x\"]\n", Apostrophes},
        {"WithoutQuotes", "\"a\tb\"\n", "1:[\"a][b\"]\n", NoQuotes},
        {"BytesThatAreNoUtf8", "\xFF\x80,\xC3\xA9\nb\n", "1:[\xFF\x80][\xC3\xA9]?\n2:[b]\n"},
        {"OpenQuote", "a\nb,\"open\nstill", "1:[a]\nLine 2: a quotation mark is never closed."},
        {"Windows1252", "Caf\xE9,\x80 5\n", "1:[Café][€ 5]\n", {.set = CharacterSet::Windows1252}},
        {"Utf16",
         std::string("\xFF\xFE\x7D\x01,\0\xAC\x20\n\0", 10),
         "1:[Ž][€]\n",
         {.set = CharacterSet::Utf16LittleEndian}}};
    const test::TempFolder folder;
    for (const Case& row : rows) {
        const std::string path = folder.Write("text", row.text);
        for (const std::size_t block : {8u, 9u, 11u, 13u, 4096u})
            EXPECT_EQ(ReadAll(path, row.format, block), row.expected) << row.name << block;
    }
}

struct Guess {
    const char* name;
    std::string text;
    DelimitedFormat format;
    bool header;
};

std::string Utf16(const std::string& ascii, bool bigEndian) {
    std::string wide;
    for (const char c : ascii)
        wide += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
    return wide;
}

TEST(FormatGuess, FitsTheText) {
    const Guess rows[] = {
        {"Commas", "Email,Name\na@x.com,\"B; C; D\"\n", {}, true},
        {"Semicolons", "Name;Sum\nAna;1,5\nBob;2,5\n", {.delimiter = ';'}, true},
        {"Tabs", "Name\tNote\nAna\ta, b, c\n", {.delimiter = '\t'}, true},
        {"Bars", "Name|City\nAna|Cork\n", {.delimiter = '|'}, true},
        {"OneColumn", "Email\na@x.com\n", {}, true},
        {"OneColumnWithoutHeader", "a@x.com\nb@x.com\n", {}, false},
        {"NumberInTheFirstRow", "Ana,12\nBob,13\n", {}, false},
        {"DateInTheFirstRow", "Ana,2024-01-31\n", {}, false},
        {"ValueThatComesAgain", "Ana,yes\nBob,no\nCy,yes\n", {}, false},
        {"Apostrophes", "'Name','City'\n'Ana','Cork, IE'\n", {.quote = '\''}, true},
        {"Utf8", "Ime\nŽiga\n", {}, true},
        {"Windows1252", "Nom\nCaf\xE9\n", {.set = CharacterSet::Windows1252}, true},
        {"Utf16LittleEndian",
         Utf16("Name,City\nAna,Cork\n", false),
         {.set = CharacterSet::Utf16LittleEndian},
         true},
        {"Utf16BigEndian",
         Utf16("Name,City\nAna,Cork\n", true),
         {.set = CharacterSet::Utf16BigEndian},
         true},
        {"Nothing", "", {}, true}};
    const test::TempFolder folder;
    for (const Guess& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string path = folder.Write("text", row.text);
        const DelimitedFormat format = GuessFormat(path);
        EXPECT_EQ(format.delimiter, row.format.delimiter);
        EXPECT_EQ(format.quote, row.format.quote);
        EXPECT_EQ(static_cast<int>(format.set), static_cast<int>(row.format.set));
        DelimitedSource source(path, format);
        EXPECT_EQ(FirstRowIsHeader(source, 0), row.header);
    }
}

TEST(DelimitedWriter, WritesWhatItsReaderReads) {
    const test::TempFolder folder;
    const std::vector<std::vector<Cell>> rows{
        {{ValueKind::Text, "a,b"}, {ValueKind::Text, "say \"hi\""}, {ValueKind::Text, ""}},
        {{ValueKind::Text, "two\r\nlines"}, {}, {ValueKind::Number, "1.5"}},
        {{}, {}, {ValueKind::Text, "Ž"}}};
    DelimitedWriter writer(folder.File("out.csv"), {});
    EXPECT_TRUE(writer.WriteColumns({"A", "B", "C"}));
    for (const auto& row : rows)
        EXPECT_TRUE(writer.WriteRow(row));
    EXPECT_FALSE(std::filesystem::exists(folder.File("out.csv"))) << "only the whole file is there";
    ASSERT_TRUE(writer.Finish()) << writer.Error();
    EXPECT_EQ(folder.Read("out.csv"),
              "A,B,C\r\n\"a,b\",\"say \"\"hi\"\"\",\"\"\r\n\"two\r\nlines\",,1.5\r\n,,Ž\r\n");
    EXPECT_EQ(ReadAll(folder.File("out.csv"), {}, 16),
              "1:[A][B][C]\n2:[a,b][say \"hi\"][]\n3:[two\r\nlines]|[1.5]\n5:||[Ž]\n");
}

TEST(DelimitedWriter, LeavesNothingWhenItCannotWrite) {
    const test::TempFolder folder;
    DelimitedWriter nowhere(folder.File("no folder/out.csv"), {});
    EXPECT_FALSE(nowhere.WriteRow({{ValueKind::Text, "a"}}));
    EXPECT_NE(nowhere.Error().find("cannot be written"), std::string::npos);
    { DelimitedWriter unfinished(folder.File("out.csv"), {}); }
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

}  // namespace
}  // namespace mailvane
