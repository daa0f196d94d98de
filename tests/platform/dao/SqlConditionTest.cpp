#include <gtest/gtest.h>

#include "SqlTestBase.h"

namespace mailvane {
namespace {

class SqlCondition : public testing::Test, protected SqlTestBase {};

struct ConditionCase {
    const char* name;
    const char* condition;
    const char* keys;
};

const ConditionCase Conditions[] = {
    {"text ignores case", "[E-mail] = 'ann@A.COM'", "1; 5"},
    {"text in double quotes", "[First Name] = \"BOB\"", "2"},
    {"doubled apostrophe", "Notes = 'it''s'", "5"},
    {"differs leaves Null out", "[First Name] <> 'ann'", "2; 3"},
    {"order of texts ignores case", "[First Name] < 'b'", "1; 5"},
    {"empty text is not Null", "Notes = ''", "3"},
    {"number", "[ID] = 4;", "4"},
    {"negative number", "Score = -4", "5"},
    {"arithmetic", "Score * 2 - 1 >= (ID + 3) / 2", "1; 2; 4"},
    {"quotient of whole numbers", "ID / 2 = 1.5", "3"},
    {"date", "[Born] = #1/2/2003#;", "1"},
    {"date with time", "Born = #1/31/2003 12:00:00 PM#", "2"},
    {"time without date", "Born < #1/1/1900#", "5"},
    {"between includes both ends", "[Born] BETWEEN #1/2/2003# And #5/5/2010#", "1; 2; 4"},
    {"not between, to the end of time", "[Born] NOT Between #1/31/2003# And #12/31/9999#", "1; 5"},
    {"from the first day on", "[Born] Between #1/1/1601# And #1/31/2003#", "1; 5"},
    {"between texts", "[First Name] BETWEEN 'ANN' AND 'B'", "1; 5"},
    {"is Null", "(Born Is Null)", "3"},
    {"is not Null", "[Notes] IS NOT NULL", "1; 3; 4; 5"},
    {"equals the literal Null", "[First Name] = Null", "4"},
    {"differs from the literal Null", "Null <> Score", "1; 2; 4; 5"},
    {"less than Null is unknown", "Score < Null OR ID = 1", "1"},
    {"contains", "[E-mail] Like '*a.COM*'", "1; 3; 5"},
    {"not contains leaves Null out", "[E-mail] NOT Like '*@b*'", "1; 3; 5"},
    {"starts with", "[First Name] LIKE 'AN*'", "1; 5"},
    {"ends with", "[E-mail] Like '*@b.com'", "2"},
    {"angle brackets", "[E-mail] LIKE '*<cy@a.com>*'", "3"},
    {"only stars matches every text", "Notes Like '***'", "1; 3; 4; 5"},
    {"Unicode case", "[First Name] Like 'ärger'", "3"},
    {"percent sign is no wildcard", "Notes Like '%'", ""},
    {"a bracket matched by a list", "Notes Like '* [[]ok]'", "4"},
    {"list and digit", "Notes Like '[2-6]#% *'", "4"},
    {"number under Like", "Score Like '1*'", "1; 2"},
    {"date under Like", "Born Like '1/*/2003*'", "1; 2"},
    {"address or in brackets", "[E-mail] = 'cy@a.com' OR [E-mail] LIKE '*<cy@a.com>*'", "3"},
    {"and before or", "ID = 1 Or ID = 2 And Score > 100", "1"},
    {"not before and", "NOT ID = 1 AND Score > 0", "2; 4"},
    {"not of unknown", "NOT [First Name] = 'ann'", "2; 3"},
    {"in a list", "[First Name] IN ('ANN', 'x')", "1; 5"},
    {"not in a list", "ID Not In (1, 2, 2 + 1)", "4; 5"},
    {"truth column", "Active", "1; 3; 5"},
    {"truth column compared", "Active = True", "1; 3; 5"},
    {"truth column as a number", "Active = -1", "1; 3; 5"},
    {"not a truth column", "Not Active", "2; 4"},
    {"joined texts, Null as nothing", "[First Name] & '-' & ID = 'bob-2' OR [First Name] & '' = ''",
     "2; 4"},
    {"joined by plus, Null stays Null", "[First Name] + '' <> 'ann'", "2; 3"},
    {"text column against number column", "Notes = ID", ""},
    {"qualified", "[Clients 1/2/2003 4:05:06 PM].[first name] = 'bob'", "2"},
};

TEST_F(SqlCondition, FindsTheRowsInFilterAndStatement) {
    for (const ConditionCase& row : Conditions) {
        SCOPED_TRACE(row.name);
        const auto condition = TranslateCondition(row.condition, Table(Clients));
        ASSERT_TRUE(condition.Ok()) << condition.Error().description;
        EXPECT_EQ(
            Rows("SELECT ID FROM " + QuoteName(Clients) + " WHERE " + *condition + " ORDER BY ID"),
            row.keys);

        const auto plan = PlanStatement(
            std::string("SELECT ID FROM [clients 1/2/2003 4:05:06 pm] WHERE ") + row.condition,
            Schema());
        ASSERT_TRUE(plan.Ok()) << plan.Error().description;
        EXPECT_EQ(Rows(plan->query), row.keys);
    }
}

TEST_F(SqlCondition, RefusesWithTheKnownNumbers) {
    const struct {
        const char* name;
        const char* condition;
        int number;
    } rows[] = {
        {"unknown column", "[Nobody] = 1", 3061},
        {"value without quotes", "[First Name] = bob", 3061},
        {"column of another table", "[Outbox].ID = 1", 3061},
        {"number against text column", "[First Name] = 5", 3464},
        {"text against number column", "ID = '5'", 3464},
        {"marked date as text against date column", "[Born] = '#1/2/2003#'", 3464},
        {"date against text column", "[First Name] Between #1/1/2003# And #1/2/2003#", 3464},
        {"text in a list of numbers", "ID In (1, 'two')", 3464},
        {"a text is no condition", "ID = 1 OR 'x'", 3464},
        {"sum of text and number", "[First Name] + 1 = 2", 3464},
        {"apostrophe in a value", "[First Name] = 'O'Brien'", 3075},
        {"empty value", "ID = ;", 3075},
        {"no date between the marks", "Born = #13/45/2003#", 3075},
        {"empty name", "[] = 'x'", 3075},
        {"aggregate", "Count(*) > 1", 3075},
        {"other tables are out of reach", "ID IN (SELECT ID FROM Outbox)", 3078},
    };
    for (const auto& row : rows) {
        const auto condition = TranslateCondition(row.condition, Table(Clients));
        ASSERT_TRUE(condition.Failed()) << row.name << ": " << *condition;
        EXPECT_EQ(condition.Error().number, row.number) << row.name;
        EXPECT_FALSE(condition.Error().description.empty()) << row.name;
    }
}

}  // namespace
}  // namespace mailvane
