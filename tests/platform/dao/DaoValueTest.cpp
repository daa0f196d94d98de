#include <gtest/gtest.h>

#include <ostream>

#include "platform/dao/DaoValue.h"
#include "platform/dao/FieldTypes.h"
#include "platform/dao/StatementHandler.h"

namespace mailvane {
namespace {

struct TextCase {
    const char* name;
    DaoValue value;
    const char* text;

    friend void PrintTo(const TextCase& row, std::ostream* out) { *out << row.name; }
};

class DaoValueText : public testing::TestWithParam<TextCase> {};

TEST_P(DaoValueText, IsTheDefaultConversion) {
    EXPECT_EQ(GetParam().value.TextOrEmpty(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Values, DaoValueText,
    testing::Values(TextCase{"True", true, "True"}, TextCase{"False", false, "False"},
                    TextCase{"Whole", 5, "5"}, TextCase{"WholeFraction", 5.0, "5"},
                    TextCase{"Tenth", 0.1, "0.1"}, TextCase{"SumOfTenths", 0.1 + 0.2, "0.3"},
                    TextCase{"FifteenDigits", 1.0 / 3.0, "0.333333333333333"},
                    TextCase{"Large", 1e15, "1E+15"}, TextCase{"Small", 1e-7, "1E-07"},
                    TextCase{"NegativeZero", -0.0, "0"},
                    TextCase{"Date", *DateTime::FromParts(2001, 3, 9, 13, 5),
                             "3/9/2001 1:05:00 PM"},
                    TextCase{"Null", DaoValue(), ""}),
    [](const auto& row) { return row.param.name; });

TEST(DaoValue, NullIsNoText) {
    EXPECT_EQ(DaoValue().ToText().Error().number, dao_error::InvalidNull);
    EXPECT_EQ(*DaoValue("").ToText(), "");
}

TEST(DaoValue, NumbersComeOutOfTexts) {
    EXPECT_EQ(DaoValue(" 12 ").NumberOr(-1), 12);
    EXPECT_EQ(DaoValue("12.5").NumberOr(-1), 12);
    EXPECT_EQ(DaoValue("13.5").NumberOr(-1), 14);
    EXPECT_EQ(DaoValue("12a").NumberOr(-1), -1);
    EXPECT_EQ(DaoValue("1e300").NumberOr(-1), -1);
    EXPECT_EQ(DaoValue().NumberOr(-1), -1);
    EXPECT_EQ(DaoValue(std::int64_t{9007199254740993}).NumberOr(-1), 9007199254740993);
}

struct ConvertCase {
    const char* name;
    FieldType type;
    DaoValue value;
    DaoValue stored;
    int error = 0;

    friend void PrintTo(const ConvertCase& row, std::ostream* out) { *out << row.name; }
};

class FieldConversion : public testing::TestWithParam<ConvertCase> {};

TEST_P(FieldConversion, ConvertsOrRefuses) {
    Field field;
    field.type = GetParam().type;
    field.size = field.type == FieldType::Text ? 4 : 0;
    const auto stored = ConvertForField(GetParam().value, field);
    EXPECT_EQ(stored.Failed() ? stored.Error().number : 0, GetParam().error);
    if (stored.Ok()) {
        EXPECT_EQ(*stored, GetParam().stored) << stored->TextOrEmpty();
    }
}

const DateTime Ninth = *DateTime::FromParts(2001, 3, 9);

INSTANTIATE_TEST_SUITE_P(
    Values, FieldConversion,
    testing::Values(
        ConvertCase{"WordIntoLong", FieldType::Long, "abc", {}, dao_error::DataConversion},
        ConvertCase{"EmptyIntoLong", FieldType::Long, "", {}, dao_error::DataConversion},
        ConvertCase{"DigitsIntoLong", FieldType::Long, "00123", 123},
        ConvertCase{"HalfIntoLong", FieldType::Long, 2.5, 2},
        ConvertCase{
            "TooLargeForLong", FieldType::Long, 2147483648.0, {}, dao_error::DataConversion},
        ConvertCase{"TooLargeForInteger", FieldType::Integer, 40000, {}, dao_error::DataConversion},
        ConvertCase{"NegativeForByte", FieldType::Byte, -1, {}, dao_error::DataConversion},
        ConvertCase{"TrueIntoLong", FieldType::Long, true, -1},
        ConvertCase{"YesIntoBoolean", FieldType::Boolean, "yes", true},
        ConvertCase{"NumberIntoBoolean", FieldType::Boolean, "-1", true},
        ConvertCase{
            "WordIntoBoolean", FieldType::Boolean, "perhaps", {}, dao_error::DataConversion},
        ConvertCase{"NullIntoBoolean", FieldType::Boolean, DaoValue(), false},
        ConvertCase{"NullIntoLong", FieldType::Long, DaoValue(), DaoValue()},
        ConvertCase{"TextIntoDate", FieldType::Date, "3/9/2001", Ninth},
        ConvertCase{
            "NonsenseIntoDate", FieldType::Date, "13/13/2001", {}, dao_error::DataConversion},
        ConvertCase{"DateIntoText", FieldType::Memo, Ninth, "3/9/2001"},
        ConvertCase{"NumberIntoText", FieldType::Memo, 1.5, "1.5"},
        ConvertCase{"BytesCount", FieldType::Text, "\xc3\xa4\xc3\xa4", "\xc3\xa4\xc3\xa4"},
        ConvertCase{
            "OneByteTooLong", FieldType::Text, "\xc3\xa4\xc3\xa4x", {}, dao_error::FieldTooSmall},
        ConvertCase{"SingleKeepsSevenDigits", FieldType::Single, 0.123456789, 0.1234568},
        ConvertCase{"TooLargeForSingle", FieldType::Single, 1e39, {}, dao_error::DataConversion},
        ConvertCase{"CurrencyKeepsFourPlaces", FieldType::Currency, "1.23456", 1.2346},
        ConvertCase{"InfinityIsNoNumber", FieldType::Double, "inf", {}, dao_error::DataConversion}),
    [](const auto& row) { return row.param.name; });

TEST(DeclaredTypes, EveryFieldTypeComesBack) {
    for (const FieldType type :
         {FieldType::Boolean, FieldType::Byte, FieldType::Integer, FieldType::Long,
          FieldType::Currency, FieldType::Single, FieldType::Double, FieldType::Date,
          FieldType::Text, FieldType::LongBinary, FieldType::Memo}) {
        Field field;
        field.type = type;
        field.allowZeroLength = field.IsText();
        field.size = type == FieldType::Text ? 50 : 0;
        Field read;
        ReadDeclaredType(DeclaredType(field), read);
        EXPECT_EQ(read.type, type) << DeclaredType(field);
        EXPECT_EQ(read.size, field.size) << DeclaredType(field);
        EXPECT_EQ(read.allowZeroLength, field.allowZeroLength) << DeclaredType(field);
    }
}

TEST(DeclaredTypes, OtherProgramsTypesHaveASensibleMeaning) {
    const std::pair<const char*, FieldType> meanings[] = {
        {"VARCHAR(50)", FieldType::Text}, {"int", FieldType::Long},
        {"BIGINT", FieldType::Long},      {"smallint", FieldType::Integer},
        {"REAL", FieldType::Double},      {"DECIMAL(10,2)", FieldType::Double},
        {"NUMERIC", FieldType::Double},   {"BLOB", FieldType::LongBinary},
        {"timestamp", FieldType::Date},   {"boolean", FieldType::Boolean},
        {"CLOB", FieldType::Memo},        {"", FieldType::Text}};
    for (const auto& [declared, type] : meanings) {
        Field field;
        ReadDeclaredType(declared, field);
        EXPECT_EQ(field.type, type) << declared;
    }
    Field field;
    ReadDeclaredType("VARCHAR(50)", field);
    EXPECT_EQ(field.size, 50);
}

TEST(StatementHandler, PassesAsksAndEnds) {
    std::vector<int> asked;
    StatementHandler handler({dao_error::TableDoesNotExist}, [&](const DaoError& error) {
        asked.push_back(error.number);
        return error.number != dao_error::DuplicateKey;
    });
    EXPECT_TRUE(handler.GoOn({}));
    EXPECT_TRUE(handler.GoOn(MakeDaoError(dao_error::TableDoesNotExist, "x")));
    EXPECT_FALSE(handler.HadError());
    EXPECT_TRUE(handler.Passes(MakeDaoError(dao_error::TableDoesNotExist, "x")));
    EXPECT_FALSE(handler.Passes(MakeDaoError(dao_error::TooFewParameters)));
    EXPECT_TRUE(handler.GoOn(MakeDaoError(dao_error::TooFewParameters)));
    EXPECT_TRUE(handler.HadError());
    EXPECT_FALSE(handler.GoOn(MakeDaoError(dao_error::DuplicateKey)));
    EXPECT_FALSE(handler.GoOn({}));
    EXPECT_FALSE(handler.GoOn(MakeDaoError(dao_error::TooFewParameters)));
    EXPECT_EQ(asked, (std::vector<int>{dao_error::TooFewParameters, dao_error::DuplicateKey}));
}

}  // namespace
}  // namespace mailvane
