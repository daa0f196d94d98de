#include <gtest/gtest.h>

#include "database/ColumnGuess.h"

namespace mailvane {
namespace {

/// Texts as a delimited file gives them; "" is Null.
struct Texts {
    const char* name;
    std::vector<const char*> values;
    FieldType type;
    int size = 0;
};

class GuessedTypes : public testing::TestWithParam<Texts> {};

TEST_P(GuessedTypes, FitAllTheValues) {
    ColumnGuess guess;
    for (const std::string_view value : GetParam().values)
        guess.See({value.empty() ? ValueKind::Null : ValueKind::Text, value});
    const Field field = guess.FieldFor({"Column"});
    EXPECT_EQ(static_cast<int>(field.type), static_cast<int>(GetParam().type));
    EXPECT_EQ(field.size, GetParam().size);
}

using enum FieldType;
INSTANTIATE_TEST_SUITE_P(
    All, GuessedTypes,
    testing::Values(
        Texts{"Whole", {"1", "0", "-12", "", "2147483647"}, Long},
        Texts{"Wide", {"1", "2147483648"}, Long, 8},
        Texts{"FifteenDigits", {"123456789012345"}, Long, 8},
        Texts{"SixteenDigits", {"1234567890123456"}, Text},
        Texts{"LeadingZero", {"1", "00123"}, Text}, Texts{"LeadingPlus", {"+386"}, Text},
        Texts{"MinusZero", {"-0"}, Text}, Texts{"Blank", {"1", " 2"}, Text},
        Texts{"Fraction", {"1.5", "2", "-0.25", ""}, Double},
        Texts{"NeedlessDigit", {"1.5", "1.50"}, Text}, Texts{"NoWholePart", {".5"}, Text},
        Texts{"Comma", {"1,5"}, Text}, Texts{"Exponent", {"1e5"}, Text},
        Texts{"ShownWithExponent", {"0.00001"}, Text}, Texts{"Dashed", {"1-800-555"}, Text},
        Texts{"IsoDate", {"2024-02-29", "", "2024-01-05 13:30:00"}, Date},
        Texts{"NoSuchDay", {"2023-02-29"}, Text},
        Texts{"MonthFirst", {"1/3/2023", "12/31/2023"}, Date},
        Texts{"MonthOrDayFirst", {"1/3/2023", "2/4/2023"}, Text},
        Texts{"DayFirst", {"1/3/2023", "31/12/2023"}, Text}, Texts{"ShortYear", {"12/31/23"}, Text},
        Texts{"TimeAlone", {"13:30"}, Text}, Texts{"TwoForms", {"2024-02-29", "12/31/2023"}, Text},
        Texts{"Truth", {"True", "False"}, Boolean}, Texts{"TruthOrNull", {"True", ""}, Text},
        Texts{"OtherTruth", {"yes", "no"}, Text},
        Texts{"OneWordAmongNumbers", {"1", "2", "n/a"}, Text}, Texts{"OnlyNulls", {"", ""}, Text}),
    [](const auto& row) { return row.param.name; });

TEST(ColumnGuess, TakesLongTextsIntoAMemo) {
    ColumnGuess guess;
    const std::string text(70000, 'x');
    guess.See({ValueKind::Text, text});
    EXPECT_EQ(static_cast<int>(guess.FieldFor({"Column"}).type), static_cast<int>(Memo));
}

struct Declared {
    const char* name;
    SourceType type;
    std::vector<Cell> values;
    FieldType expected;
};

class DeclaredTypes : public testing::TestWithParam<Declared> {};

TEST_P(DeclaredTypes, HoldAsFarAsTheValuesDo) {
    ColumnGuess guess;
    for (const Cell& cell : GetParam().values)
        guess.See(cell);
    const Field field = guess.FieldFor({"Column", GetParam().type});
    EXPECT_EQ(static_cast<int>(field.type), static_cast<int>(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    All, DeclaredTypes,
    testing::Values(
        Declared{"Currency", SourceType::Currency, {{ValueKind::Number, "42.0000"}}, Currency},
        Declared{"CurrencyOfTooManyDigits",
                 SourceType::Currency,
                 {{ValueKind::Number, "922337203685477.5807"}},
                 Text},
        Declared{"DoubleOfManyDigits",
                 SourceType::Double,
                 {{ValueKind::Number, "0.30000000000000004"}},
                 Double},
        Declared{"WordsInALong", SourceType::Long, {{ValueKind::Text, "abc"}}, Text},
        Declared{"DigitsInAText", SourceType::Text, {{ValueKind::Text, "12"}}, Text},
        Declared{"TruthWithoutNull", SourceType::Boolean, {{ValueKind::Truth, "True"}}, Boolean},
        Declared{"NumbersOfASheet",
                 SourceType::Unknown,
                 {{ValueKind::Number, "12"}, {ValueKind::Number, "0.1"}},
                 Double},
        Declared{"DatesOfASheet",
                 SourceType::Unknown,
                 {{ValueKind::Date, "2024-02-29 00:00:00"}, {}},
                 Date},
        Declared{"NumbersAndWordsOfASheet",
                 SourceType::Unknown,
                 {{ValueKind::Number, "12"}, {ValueKind::Text, "n/a"}},
                 Text}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace mailvane
