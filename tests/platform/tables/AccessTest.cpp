#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "platform/os/DateTime.h"
#include "platform/os/Files.h"
#include "platform/tables/AccessSource.h"
#include "platform/tables/text/DelimitedSource.h"
#include "support/AccessSamples.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

#define NEEDS_ACCESS_SAMPLES()                                                        \
    if (!IsFolder(test::AccessSamplesFolder()))                                       \
    GTEST_SKIP() << "The folder with Access samples, " << test::AccessSamplesFolder() \
                 << ", is not there. MAILVANE_ACCESS_SAMPLES names another one."

std::string Sample(const std::string& name) {
    return test::AccessSamplesFolder() + "/" + name;
}

using Rows = std::vector<std::vector<std::string>>;

Rows AllRows(SourceRows& rows) {
    Rows all;
    std::vector<Cell> cells;
    while (rows.Next(cells)) {
        auto& row = all.emplace_back();
        for (const Cell& cell : cells)
            row.emplace_back(cell.text);
    }
    EXPECT_EQ(rows.Error(), "");
    return all;
}

Rows TableOf(const std::string& file, const std::string& table) {
    std::string error;
    const auto source = OpenAccessFile(file, error);
    if (!source) return {{error}};
    const auto& names = source->Tables();
    const auto place = std::find(names.begin(), names.end(), table);
    if (place == names.end()) return {{"no such table"}};
    const auto rows = source->Open(static_cast<std::size_t>(place - names.begin()), true, error);
    return rows ? AllRows(*rows) : Rows{{error}};
}

/// What the independent reader makes of a table, read as delimited text.
Rows Exported(const std::string& file, const std::string& table, const test::TempFolder& folder) {
    const std::string text = folder.File("exported.csv");
    const std::string command =
        "mdb-export -b hex -D '%Y-%m-%d %H:%M:%S' -T '%Y-%m-%d %H:%M:%S' '" + file + "' '" + table +
        "' > '" + text + "' 2>/dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    std::string error;
    const auto rows = DelimitedSource(text, {}).Open(0, true, error);
    return rows ? AllRows(*rows) : Rows{};
}

/// Numbers may be written in different ways, truths as 0 and 1.
bool SameValue(const std::string& ours, const std::string& theirs) {
    if (ours == theirs) return true;
    if (ours == "True" || ours == "False") return theirs == (ours == "True" ? "1" : "0");
    char* end = nullptr;
    const double number = std::strtod(theirs.c_str(), &end);
    return !theirs.empty() && *end == '\0' && std::strtod(ours.c_str(), nullptr) == number;
}

TEST(AccessSource, EqualsTheIndependentReader) {
    NEEDS_ACCESS_SAMPLES();
    for (const char* name :
         {"jet3-1997.mdb", "jet4-2000-numeric.mdb", "jet4-dates.mdb", "jet4-empty.mdb",
          "ace12-currency.accdb", "ace12-longtext.accdb", "ace14-2010.accdb"}) {
        SCOPED_TRACE(name);
        const test::TempFolder folder;
        const std::string file = Sample(name);
        std::string error;
        const auto source = OpenAccessFile(file, error);
        ASSERT_TRUE(source) << error;
        for (const std::string& table : source->Tables()) {
            const Rows ours = TableOf(file, table);
            const Rows theirs = Exported(file, table, folder);
            ASSERT_EQ(ours.size(), theirs.size()) << table;
            for (std::size_t row = 0; row < ours.size(); ++row) {
                ASSERT_EQ(ours[row].size(), theirs[row].size()) << table;
                for (std::size_t i = 0; i < ours[row].size(); ++i) {
                    // It knows no dates before 1900 nor behind the year 4600; those have a test
                    // below.
                    const auto date = DateTime::Parse(ours[row][i]);
                    const bool known = !date || (date->Year() >= 1901 && date->Year() < 4600);
                    EXPECT_TRUE(!known || SameValue(ours[row][i], theirs[row][i]))
                        << table << ": " << ours[row][i] << " and " << theirs[row][i];
                }
            }
        }
    }
}

TEST(AccessSource, ReadsDatesOfAllAgesAndMemosWhole) {
    NEEDS_ACCESS_SAMPLES();
    const Rows rows = TableOf(Sample("jet4-dates.mdb"), "DateTest");
    ASSERT_GE(rows.size(), 4u);
    EXPECT_EQ(rows[0][1], "2021-12-02 00:00:00");
    EXPECT_EQ(rows[1][1], "9999-01-01 00:00:00");
    EXPECT_EQ(rows[2][1], "1898-01-01 00:00:00");
    EXPECT_EQ(rows[3][1], "0632-01-01 00:00:00");
    const Rows memos = TableOf(Sample("ace12-longtext.accdb"), "Table1");
    ASSERT_EQ(memos.size(), 1u);
    EXPECT_EQ(memos[0][1].size(), 5000u);
}

TEST(AccessSource, TellsColumnTypes) {
    NEEDS_ACCESS_SAMPLES();
    std::string error;
    const auto rows = OpenAccessFile(Sample("ace14-2010.accdb"), error)->Open(0, true, error);
    ASSERT_TRUE(rows) << error;
    using enum SourceType;
    const std::vector<SourceType> expected{Text,   Text, Byte,     Integer, Long,
                                           Double, Date, Currency, Boolean};
    std::vector<SourceType> types;
    for (const SourceColumn& column : rows->Columns())
        types.push_back(column.type);
    EXPECT_EQ(types, expected);
}

TEST(AccessSource, SaysThatAFileIsEncrypted) {
    NEEDS_ACCESS_SAMPLES();
    std::string error;
    EXPECT_TRUE(IsAccessFile(Sample("ace14-encrypted.accdb")));
    EXPECT_EQ(OpenAccessFile(Sample("ace14-encrypted.accdb"), error), nullptr);
    EXPECT_NE(error.find("password"), std::string::npos) << error;
}

/// Whatever becomes of the reading process, this one gets rows or an error.
TEST(AccessSource, SurvivesDamage) {
    NEEDS_ACCESS_SAMPLES();
    const test::TempFolder folder;
    std::mt19937 random(7);
    for (const char* name : {"jet3-1997.mdb", "jet4-dates.mdb", "ace14-2010.accdb"}) {
        const std::string whole = ReadWholeFile(Sample(name)).value_or("");
        for (int round = 0; round < 4; ++round) {
            std::string damaged = whole;
            if (round % 4 == 0) damaged.resize(random() % damaged.size());
            for (int hit = 0; hit < 200 && !damaged.empty(); ++hit)
                damaged[random() % damaged.size()] = static_cast<char>(random());
            const std::string path = folder.Write("damaged.mdb", damaged);
            std::string error;
            const auto source = OpenAccessFile(path, error);
            EXPECT_EQ(source == nullptr, !error.empty());
            for (std::size_t i = 0; source && i < source->Tables().size(); ++i) {
                const auto rows = source->Open(i, true, error);
                std::vector<Cell> cells;
                for (int row = 0; rows && row < 1000 && rows->Next(cells); ++row) {
                }
            }
        }
    }
}

}  // namespace
}  // namespace mailvane
