#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "database/DelimitedReader.h"

namespace mailvane {
namespace {

/// The records as text: fields in brackets, quoted ones in quotes, records by line.
std::string ReadAll(const std::string& text, char delimiter = ',') {
    std::istringstream input(text);
    DelimitedReader reader(input, delimiter);
    std::vector<DelimitedField> record;
    std::string shown;
    while (reader.Next(record)) {
        for (const DelimitedField& field : record)
            shown += field.quoted ? "\"" + field.text + "\"" : "[" + field.text + "]";
        shown += '\n';
    }
    return shown;
}

struct Case {
    const char* name;
    std::string text;
    std::string expected;
};

class DelimitedTexts : public testing::TestWithParam<Case> {};

TEST_P(DelimitedTexts, Read) {
    EXPECT_EQ(ReadAll(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    All, DelimitedTexts,
    testing::Values(Case{"Nothing", "", ""}, Case{"OnlyAMark", "\xEF\xBB\xBF", ""},
                    Case{"MarkBeforeAName",
                         "\xEF\xBB\xBF"
                         "Email,Name\n",
                         "[Email][Name]\n"},
                    Case{"AllLineEnds", "a,b\r\nc,d\ne,f\rg,h", "[a][b]\n[c][d]\n[e][f]\n[g][h]\n"},
                    Case{"EmptyLinesPassedOver", "a\n\r\n\nb\n", "[a]\n[b]\n"},
                    Case{"EmptyFields", ",a,\n", "[][a][]\n"},
                    Case{"EmptyInQuotes", "\"\",x\n", "\"\"[x]\n"},
                    Case{"DelimiterInQuotes", "\"Müller, Sons & Co\",x\n",
                         "\"Müller, Sons & Co\"[x]\n"},
                    Case{"DoubledQuotes", "\"say \"\"hi\"\"\"\n", "\"say \"hi\"\"\n"},
                    Case{"LineEndInQuotes", "\"a\r\nb\",c\n", "\"a\r\nb\"[c]\n"},
                    Case{"QuoteInsideAPlainField", "O'Brien,5\" nails\n", "[O'Brien][5\" nails]\n"},
                    Case{"TextBehindAClosingQuote", "\"a\"b,c\n", "\"ab\"[c]\n"},
                    Case{"BytesOutsideAscii", "\xFF\x80,\xC3\xA9\n", "[\xFF\x80][\xC3\xA9]\n"}),
    [](const auto& row) { return row.param.name; });

TEST(DelimitedReader, TellsLinesAndAnOpenQuote) {
    std::istringstream input("a\n\"b\nc\"\nd,\"open\nstill");
    DelimitedReader reader(input);
    std::vector<DelimitedField> record;
    std::vector<std::size_t> lines;
    while (reader.Next(record))
        lines.push_back(reader.Line());
    EXPECT_EQ(lines, (std::vector<std::size_t>{1, 2, 4}));
    EXPECT_TRUE(reader.EndedInsideQuotes());
}

TEST(DelimitedReader, EndsOnAnyBytes) {
    std::mt19937 random(4);
    for (int round = 0; round < 300; ++round) {
        std::string text(random() % 200, ' ');
        for (char& c : text)
            c = "\",\r\n ab\xEF\xBB\xBF"[random() % 10];
        std::size_t fields = 0;
        std::istringstream input(text);
        DelimitedReader reader(input);
        std::vector<DelimitedField> record;
        while (reader.Next(record))
            fields += record.size();
        EXPECT_LE(fields, text.size() + 1);
        EXPECT_EQ(reader.BytesRead(), text.size());
    }
}

}  // namespace
}  // namespace mailvane
