#include <gtest/gtest.h>

#include "platform/dao/DaoValue.h"
#include "platform/dao/structure/FieldTypes.h"

namespace mailvane {
namespace {

constexpr int Refused = dao_error::DataConversion;
const DateTime Ninth = *DateTime::FromParts(2001, 3, 9);

TEST(DaoValue, TextsAreTheDefaultConversion) {
    const struct {
        DaoValue value;
        const char* text;
    } rows[] = {
        {true, "True"},
        {false, "False"},
        {5, "5"},
        {5.0, "5"},
        {0.1, "0.1"},
        {0.1 + 0.2, "0.3"},
        {1.0 / 3.0, "0.333333333333333"},
        {1e15, "1E+15"},
        {1e-7, "1E-07"},
        {-0.0, "0"},
        {*DateTime::FromParts(2001, 3, 9, 13, 5), "3/9/2001 1:05:00 PM"},
        {{}, ""},
    };
    for (const auto& [value, text] : rows)
        EXPECT_EQ(value.TextOrEmpty(), text);
    EXPECT_EQ(DaoValue().ToText().Error().number, dao_error::InvalidNull);
    EXPECT_EQ(*DaoValue("").ToText(), "");
}

TEST(DaoValue, NumbersComeOutOfTexts) {
    const struct {
        DaoValue value;
        std::int64_t number;
    } rows[] = {
        {" 12 ", 12},
        {"12.5", 12},
        {"13.5", 14},
        {"12a", -1},
        {"1e300", -1},
        {{}, -1},
        {std::int64_t{9007199254740993}, 9007199254740993},
    };
    for (const auto& [value, number] : rows)
        EXPECT_EQ(value.NumberOr(-1), number) << value.TextOrEmpty();
}

TEST(FieldConversion, ConvertsOrRefuses) {
    const struct {
        const char* name;
        FieldType type;
        DaoValue value;
        DaoValue stored;
        int error = 0;
    } rows[] = {
        {"word into Long", FieldType::Long, "abc", {}, Refused},
        {"empty into Long", FieldType::Long, "", {}, Refused},
        {"digits into Long", FieldType::Long, "00123", 123},
        {"half into Long", FieldType::Long, 2.5, 2},
        {"too large for Long", FieldType::Long, 2147483648.0, {}, Refused},
        {"too large for Integer", FieldType::Integer, 40000, {}, Refused},
        {"negative for Byte", FieldType::Byte, -1, {}, Refused},
        {"True into Long", FieldType::Long, true, -1},
        {"yes into Boolean", FieldType::Boolean, "yes", true},
        {"number into Boolean", FieldType::Boolean, "-1", true},
        {"word into Boolean", FieldType::Boolean, "perhaps", {}, Refused},
        {"Null into Boolean", FieldType::Boolean, DaoValue(), false},
        {"Null into Long", FieldType::Long, DaoValue(), DaoValue()},
        {"text into Date", FieldType::Date, "3/9/2001", Ninth},
        {"nonsense into Date", FieldType::Date, "13/13/2001", {}, Refused},
        {"Date into text", FieldType::Memo, Ninth, "3/9/2001"},
        {"number into text", FieldType::Memo, 1.5, "1.5"},
        {"bytes count", FieldType::Text, "\xc3\xa4\xc3\xa4", "\xc3\xa4\xc3\xa4"},
        {"a byte too long", FieldType::Text, "\xc3\xa4\xc3\xa4x", {}, dao_error::FieldTooSmall},
        {"Single keeps seven digits", FieldType::Single, 0.123456789, 0.1234568},
        {"too large for Single", FieldType::Single, 1e39, {}, Refused},
        {"Currency keeps four places", FieldType::Currency, "1.23456", 1.2346},
        {"infinity is no number", FieldType::Double, "inf", {}, Refused},
    };
    for (const auto& row : rows) {
        Field field;
        field.type = row.type;
        field.size = row.type == FieldType::Text ? 4 : 0;
        const auto stored = ConvertForField(row.value, field);
        EXPECT_EQ(stored.Failed() ? stored.Error().number : 0, row.error) << row.name;
        EXPECT_TRUE(stored.Failed() || *stored == row.stored) << row.name;
    }
}

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

}  // namespace
}  // namespace mailvane
