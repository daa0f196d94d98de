#include <gtest/gtest.h>

#include "database/exchange/ColumnGuess.h"

namespace mailvane {
namespace {

using enum FieldType;

TEST(ColumnGuess, FitsAllTheValues) {
    struct Texts {
        const char* name;
        std::vector<const char*> values;  ///< as a delimited file gives them; "" is Null
        FieldType type;
        int size = 0;
    };
    const Texts rows[] = {
        {"whole", {"1", "0", "-12", "", "2147483647"}, Long},
        {"wide", {"1", "2147483648"}, Long, 8},
        {"15 digits", {"123456789012345"}, Long, 8},
        {"leading zero", {"1", "00123"}, Text},
        {"blank", {"1", " 2"}, Text},
        {"fraction", {"1.5", "2", "-0.25", ""}, Double},
        {"needless digit", {"1.5", "1.50"}, Text},
        {"date", {"2024-02-29", "", "2024-01-05 13:30:00"}, Date},
        {"month first", {"1/3/2023", "12/31/2023"}, Date},
        {"month or day first", {"1/3/2023", "2/4/2023"}, Text},
        {"day first", {"1/3/2023", "31/12/2023"}, Text},
        {"two forms", {"2024-02-29", "12/31/2023"}, Text},
        {"truth", {"True", "False"}, Boolean},
        {"truth or Null", {"True", ""}, Text},
        {"other truth", {"yes", "no"}, Text},
        {"one word among numbers", {"1", "2", "n/a"}, Text},
        {"only Nulls", {"", ""}, Text},
    };
    const auto check = [](const Texts& row) {
        ColumnGuess guess;
        for (const std::string_view value : row.values)
            guess.See({value.empty() ? ValueKind::Null : ValueKind::Text, value});
        const Field field = guess.FieldFor({"Column"});
        EXPECT_EQ(field.type, row.type) << row.name;
        EXPECT_EQ(field.size, row.size) << row.name;
    };
    for (const Texts& row : rows)
        check(row);
    for (const char* text : {"1234567890123456", "+386", "-0", ".5", "1,5", "1e5", "0.00001",
                             "1-800-555", "2023-02-29", "12/31/23", "13:30"})
        check({text, {text}, Text});
    ColumnGuess guess;
    const std::string text(70000, 'x');
    guess.See({ValueKind::Text, text});
    EXPECT_EQ(guess.FieldFor({"Column"}).type, Memo);
}

TEST(ColumnGuess, DeclaredTypesHoldAsFarAsTheValuesDo) {
    const auto number = [](const char* text) { return Cell{ValueKind::Number, text}; };
    const auto text = [](const char* value) { return Cell{ValueKind::Text, value}; };
    const Cell truth{ValueKind::Truth, "True"};
    const Cell date{ValueKind::Date, "2024-02-29 00:00:00"};
    const std::tuple<const char*, SourceType, std::vector<Cell>, FieldType> rows[] = {
        {"currency", SourceType::Currency, {number("42.0000")}, Currency},
        {"too many digits", SourceType::Currency, {number("922337203685477.5807")}, Text},
        {"many digits", SourceType::Double, {number("0.30000000000000004")}, Double},
        {"words in a long", SourceType::Long, {text("abc")}, Text},
        {"digits in a text", SourceType::Text, {text("12")}, Text},
        {"truth without Null", SourceType::Boolean, {truth}, Boolean},
        {"numbers of a sheet", SourceType::Unknown, {number("12"), number("0.1")}, Double},
        {"dates of a sheet", SourceType::Unknown, {date, {}}, Date},
        {"numbers and words", SourceType::Unknown, {number("12"), text("n/a")}, Text},
    };
    for (const auto& [name, type, values, expected] : rows) {
        ColumnGuess guess;
        for (const Cell& cell : values)
            guess.See(cell);
        EXPECT_EQ(guess.FieldFor({"Column", type}).type, expected) << name;
    }
}

}  // namespace
}  // namespace mailvane
