#include <gtest/gtest.h>

#include <algorithm>

#include "SqlTestBase.h"

namespace mailvane {
namespace {

using namespace std::string_literals;

class SqlPlanTest : public testing::Test, protected SqlTestBase {};

struct StatementCase {
    const char* name;
    const char* statements;  ///< separated by " | "
    int counted;             ///< rows that the last of them reports
    const char* check;       ///< without SELECT
    const char* rows;
};

std::vector<std::string> Split(std::string text) {
    std::vector<std::string> pieces;
    for (std::size_t at = 0; (at = text.find(" | ")) != std::string::npos; text.erase(0, at + 3))
        pieces.push_back(text.substr(0, at));
    pieces.push_back(text);
    return pieces;
}

#define C "[Clients 1/2/2003 4:05:06 PM]"
#define Q "[O'Brien \"x\"]"
#define QC "\"Clients 1/2/2003 4:05:06 PM\""
#define QQ "\"O'Brien \"\"x\"\"\""
#define SAME C ".[E-mail] = " Q ".[E-mail]"

const StatementCase Statements[] = {
    {"back-up", "SELECT " C ".* INTO [x_Backup] FROM " C ";", 5,
     "count(*), max(\"First Name\"), sum(Active) FROM x_Backup", "5 ÄRGER 1"},
    {"structure only",
     "SELECT " C ".* INTO [N/1:2] From " C " WHERE [First Name] = '978282bknd79_3_'", 0,
     "count(*), (SELECT group_concat(name, '|') FROM pragma_table_info('N/1:2')) FROM "
     "\"N/1:2\"",
     "0 ID|First Name|E-mail|Born|Score|Active|Notes"},
    {"one row into a table, then emptied",
     "SELECT TOP 1 " C ".* INTO [N] FROM " C " | DELETE * FROM [N]", 1, "count(*) FROM N", "0"},
    {"all columns where a pattern holds",
     "SELECT * INTO [N] FROM " C " WHERE [E-mail] Like '*@a.com'", 2, "ID FROM N", "1; 5"},
    {"one column into a table, more added",
     "SELECT " C ".[E-mail] INTO [N] From " C
     " WHERE [E-mail] = 'bob@b.com' | INSERT INTO [N] SELECT " C ".[E-mail] From " C
     " WHERE [E-mail] = 'ann@a.com';",
     2, "* FROM N", "bob@b.com; ANN@a.com; ann@a.com"},
    {"the copy of an auto-number may repeat",
     "SELECT * INTO N FROM " C " | INSERT INTO [N] SELECT " C ".* FROM " C " WHERE ID < 3", 2,
     "ID, count(*) FROM N GROUP BY ID HAVING count(*) > 1", "1 2; 2 2"},
    {"emptied and filled again",
     "SELECT * INTO W FROM " C " WHERE ID > 3 | DELETE " C ".* From " C "; | INSERT INTO " C
     " SELECT * FROM [W];",
     2, "ID FROM " QC, "4; 5"},
    {"matched by name, converted to the target's types",
     "INSERT INTO [Mine] SELECT * FROM [Outbox]", 3, "ID, Date, Retries FROM Mine ORDER BY ID",
     "1 1/2/2003 -; 2 1/2/2003 4:05:06 PM 3; 3 - 0; 7 1/2/2003 4:05:06 PM 1; 8 yesterday 2"},
    {"text that is no date becomes Null", "INSERT INTO Outbox SELECT * FROM Mine", 2,
     "ID, Date FROM Outbox WHERE ID > 3", "7 2003-01-02 16:05:06; 8 -"},
    {"named columns",
     "INSERT INTO Outbox (Subject, Retries) SELECT [First Name], Score FROM " C
     " WHERE ID IN (1, 4)",
     2, "* FROM Outbox WHERE ID > 3", "4 Ann - 2; 5 - - 3"},
    {"values", "INSERT INTO Mine (Subject, [Date], Retries) VALUES ('it''s', #1/2/2003#, '12')", 1,
     "* FROM Mine WHERE ID > 8", "9 it's 1/2/2003 12"},
    {"update of what is Null", "UPDATE Outbox SET Retries = 0 WHERE Retries = Null", 1,
     "ID, Retries FROM Outbox", "1 0; 2 3; 3 0"},
    {"update of several columns from old values",
     "UPDATE " C " SET Notes = [First Name] & '/' & Born, Score = Score + 1, Active = (ID = 2)", 5,
     "Notes, Score, Active FROM " QC " WHERE ID < 4",
     "Ann/1/2/2003 2.5 0; Bob/1/31/2003 12:00:00 PM 11.0 1; ÄRGER/ - 0"},
    {"drop by any case", "DROP TABLE [o'brien \"X\"];", -1,
     "count(*) FROM sqlite_master WHERE name LIKE 'O_Brien%'", "0"},
    {"delete by key", "DELETE * FROM [Outbox] WHERE ID = 2", 1, "ID FROM Outbox", "1; 3"},
    {"delete without a star", "DELETE FROM [Outbox] WHERE Retries > -1", 2, "ID FROM Outbox", "1"},
    {"delete by address", "DELETE " C ".* FROM " C " WHERE [E-mail] = 'ann@a.com'", 2,
     "ID FROM " QC, "2; 3; 4"},
    {"delete rows with a partner", "DELETE " C ".* FROM " C ", " Q " WHERE " SAME ";", 2,
     "ID FROM " QC, "2; 3; 4"},
    {"delete in the second table", "DELETE " Q ".* FROM " C ", " Q " WHERE " SAME ";", 2,
     "ID FROM " QQ, "2; 3"},
    {"delete in both tables", "DELETE " C ".*, " Q ".* FROM " C ", " Q " WHERE " SAME ";", 2,
     "ID, 'c' FROM " QC " UNION ALL SELECT ID, 'q' FROM " QQ, "2 c; 3 c; 4 c; 2 q; 3 q"},
    {"delete in both tables by an unequal join",
     "DELETE a.*, b.* FROM " C " AS a, Outbox b WHERE a.ID > b.ID AND b.Retries IS NOT NULL", 3,
     "ID, 'a' FROM " QC " UNION ALL SELECT ID, 'b' FROM Outbox", "1 a; 2 a; 1 b"},
    {"delete rows without a partner",
     "DELETE " C ".* FROM " C " LEFT JOIN " Q " ON " SAME " WHERE (" Q ".[E-mail] Is Null);", 3,
     "ID FROM " QC, "1; 5"},
    {"delete by a left join of another shape",
     "DELETE " C ".* FROM " C " LEFT JOIN " Q " ON " SAME " WHERE " Q ".City Is Null OR " C
     ".ID = 1",
     4, "ID FROM " QC, "5"},
    {"delete within one table",
     "DELETE a.* FROM " C " AS a INNER JOIN " C " AS b ON a.[E-mail] = b.[E-mail] WHERE a.ID > "
     "b.ID",
     1, "ID FROM " QC, "1; 2; 3; 4"},
    {"rows with a partner, once each",
     "SELECT DISTINCTROW " Q ".* INTO [N] FROM " C ", " Q " WHERE " SAME ";", 2, "* FROM N",
     "1 Ann@A.com Rome; 4 ann@a.com Graz"},
    {"joined rows of both tables",
     "SELECT DISTINCTROW * INTO [N] FROM " C ", " Q " WHERE " SAME " AND City = 'ROME'", 2,
     "\"Clients 1/2/2003 4:05:06 PM_ID\", City FROM N ORDER BY 1", "1 Rome; 5 Rome"},
    {"rows without a partner; Null has none",
     "SELECT DISTINCTROW " Q ".* INTO [N] FROM " Q " LEFT JOIN " C " ON " SAME " WHERE (" C
     ".[E-mail] Is Null);",
     2, "ID FROM N", "2; 3"},
    {"every copy of what stands twice",
     "SELECT DISTINCTROW " C ".* INTO [N] From " C " WHERE (((" C ".[E-mail]) In (SELECT [E-mail] "
     "FROM " C " As Tmp GROUP BY [E-mail] HAVING Count(*)>1 )));",
     2, "ID FROM N", "1; 5"},
    {"distinct values ignore case",
     "SELECT DISTINCT [First Name] INTO [N] FROM " C " WHERE ID <> 3", 3, "* FROM N ORDER BY 1",
     "-; Ann; Bob"},
    {"grouped",
     "SELECT City, Count(*) AS n, Max(ID) INTO N FROM " Q " WHERE ID > 1 GROUP BY City HAVING "
     "Min(ID) < 4 ORDER BY City DESC",
     2, "* FROM N", "Oslo 1.0 2.0; Bonn 1.0 3.0"},
};

TEST(SqlPlan, StatementsDoTheirWork) {
    for (const StatementCase& row : Statements) {
        SCOPED_TRACE(row.name);
        SqlTestBase base;
        int counted = -1;
        for (const std::string& statement : Split(row.statements))
            ASSERT_EQ(base.Execute(statement, &counted), 0) << base.Failure() << statement;
        EXPECT_EQ(counted, row.counted);
        EXPECT_EQ(base.Rows(std::string("SELECT ") + row.check), row.rows);
        EXPECT_EQ(base.Rows("SELECT name FROM temp.sqlite_master"), "");
    }
}

TEST_F(SqlPlanTest, SizesAreKept) {
    Field sized = Column("Code");
    sized.size = 12;
    Create({"Sized", 0, {sized}, {}});
    EXPECT_EQ(Execute("INSERT INTO Sized SELECT [First Name] AS Code FROM " C), 0);
    EXPECT_EQ(Execute("INSERT INTO Sized (Code) VALUES ('thirteen byte')"), 3464);
    EXPECT_EQ(Execute("UPDATE Sized SET Code = Code & 'thirteen byte'"), -1);
    EXPECT_EQ(Rows("SELECT max(length(Code)) FROM Sized"), "5");
}

TEST_F(SqlPlanTest, RowsOfOneTableCanBeChanged) {
    const struct {
        const char* name;
        const char* sql;
        const char* table;  ///< "" when the rows cannot be changed
        const char* rows;   ///< keys, or the rows of the query
    } rows[] = {
        {"sorted, ties by key", "SELECT * FROM " C " ORDER BY [First Name] ASC", Clients,
         "4; 1; 5; 2; 3"},
        {"sorted downwards", "SELECT * FROM " C " ORDER BY [Notes] DESC, ID", Clients,
         "1; 5; 4; 3; 2"},
        {"the first rows", "SELECT TOP 2 " C ".* FROM " C ";", Clients, "1; 2"},
        {"the first in an order", "SELECT TOP 2 ID, Notes FROM " C " ORDER BY Score DESC", Clients,
         "2; 4"},
        {"more than there are", "SELECT TOP 99 Outbox.* FROM Outbox", "Outbox", "1; 2; 3"},
        {"an alias", "SELECT o.Subject FROM outbox AS o WHERE o.Retries >= 0", "Outbox", "2; 3"},
        {"rows with a partner", "SELECT DISTINCTROW " C ".* FROM " C ", " Q " WHERE " SAME, Clients,
         "1; 5"},
        {"a brace in a text", "SELECT ID FROM Outbox WHERE Subject <> '{key}'", "Outbox",
         "1; 2; 3"},
        {"computed", "SELECT ID + 1 FROM Outbox", "", "2; 3; 4"},
        {"distinct", "SELECT DISTINCT Retries FROM Outbox ORDER BY 1", "", "-; 0; 3"},
        {"joined",
         "SELECT " C ".ID, Q.City FROM " C " INNER JOIN " Q " AS Q ON " C
         ".[E-mail] = Q.[E-mail] ORDER BY " C ".ID DESC, Q.City",
         "", "5 Graz; 5 Rome; 1 Graz; 1 Rome"},
        {"counted",
         "SELECT Count(*), Count(Retries), Sum(Retries), Avg(Retries), Min(Date) FROM Outbox", "",
         "3 2 3 1.5 2003-01-02 00:00:00"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto plan = PlanStatement(row.sql, Schema());
        ASSERT_TRUE(plan.Ok()) << plan.Error().description;
        EXPECT_EQ(plan->kind, SqlPlan::Kind::Select);
        EXPECT_EQ(plan->table, row.table);
        std::string keys = plan->keyQuery;
        if (!plan->table.empty()) keys.replace(keys.find("{key}"), 5, "rowid");
        EXPECT_EQ(Rows(plan->table.empty() ? plan->query : keys), row.rows);
        EXPECT_TRUE(TryRun(plan->query)) << Failure();
    }
    const auto plan = PlanStatement("SELECT notes, id FROM " C, Schema());
    ASSERT_TRUE(plan.Ok());
    EXPECT_EQ(plan->columns, (std::vector<std::string>{"Notes", "ID"}));
}

TEST_F(SqlPlanTest, RefusesWithTheKnownNumbers) {
    const struct {
        const char* name;
        const char* sql;
        int number;
    } rows[] = {
        {"unknown table", "DELETE * FROM [Nobody]", 3078},
        {"unknown table in a subquery", "DELETE * FROM Outbox WHERE ID IN (SELECT ID FROM x)",
         3078},
        {"delete names a table outside FROM", "DELETE Mine.* FROM Outbox", 3078},
        {"drop of an unknown table", "DROP TABLE [Nobody]", 3376},
        {"unknown column", "SELECT Nobody FROM Outbox", 3061},
        {"unknown column in an order", "SELECT * FROM Outbox ORDER BY [x]", 3061},
        {"target lacks a source column", "INSERT INTO Outbox SELECT * FROM " C, 3127},
        {"target lacks a named column", "INSERT INTO Outbox (x) VALUES (1)", 3127},
        {"values and columns differ in number", "INSERT INTO Outbox (ID) VALUES (1, 2)", 3346},
        {"text that is no number", "INSERT INTO Outbox (ID) VALUES ('x')", 3464},
        {"target exists", "SELECT * INTO [OUTBOX] FROM " C, 3010},
        {"sentinel on a number column", "SELECT * INTO N FROM Outbox WHERE [ID] = '8nfmwl'", 3464},
        {"column of two tables", "SELECT ID FROM Outbox, Mine", 3079},
        {"star over two tables to delete", "DELETE * FROM Outbox, Mine", 3075},
        {"a table twice without an alias", "SELECT * FROM Outbox, Outbox", 3075},
        {"aggregate in WHERE", "SELECT * FROM Outbox WHERE Count(*) > 1", 3075},
        {"subquery of two columns", "DELETE * FROM Mine WHERE ID IN (SELECT * FROM Outbox)", 3075},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Execute(row.sql), row.number) << row.name;
}

TEST_F(SqlPlanTest, MalformedTextsAreSyntaxErrors) {
    const std::pair<std::string, std::vector<std::string>> groups[] = {
        {"",
         {"", ";", " ", "SELECT", "DROP", "DROP TABLE", "DROP TABLE a b", "DROP INDEX x",
          "CREATE TABLE x (a TEXT)", "PRAGMA journal_mode=DELETE", "ATTACH 'x' AS y",
          "DELETE Outbox FROM Outbox", "DELETE [Outbox].*", "\xFF\xFE\x80"}},
        {"SELECT ",
         {"* FROM", "FROM Outbox", "* Outbox", "*, FROM Outbox", "TOP x * FROM Outbox",
          "TOP 1.5 * FROM Outbox", "TOP -1 * FROM Outbox", "TOP 99999999999999999999 * FROM Outbox",
          "* INTO [] FROM Outbox", "* INTO FROM Outbox", "ID FROM Outbox HAVING Count(*) > 1",
          "* FROM a 'x'", "a '.' * FROM Outbox"}},
        {"SELECT * FROM Outbox",
         {" WHERE", " ORDER ID", "; DROP TABLE Outbox", ";;", " -- x", " /* x */",
          " UNION SELECT * FROM Mine", " LEFT JOIN Mine", "\0"s}},
        {"DELETE * FROM Outbox WHERE ",
         {"Subject = 'O'Brien'", "Subject = 'x", "Subject = ''' OR 1=1", "[ID = 1",
          "ID = #1/2/2003", "ID = #x#", "ID = 1 = 1", "ID BETWEEN 1", "ID IN ()", "ID IN (1",
          "ID NOT 1", "ID IS 1", "Shell('x') = 1", "(ID = 1", "ID = 1)", "Subject = 'a\0b'"s}},
        {"UPDATE Outbox SET", {"", " ID", " Mine.ID = 1"}},
        {"INSERT INTO Outbox", {"", " VALUES ()", " SELECT * INTO x FROM Mine"}},
    };
    std::vector<std::string> texts;
    for (const auto& [front, ends] : groups)
        for (const std::string& end : ends)
            texts.push_back(front + end);
    const std::string front = "SELECT * FROM Outbox WHERE ";
    for (const char* piece : {"(", "NOT ", "-", "ID IN (SELECT ID FROM Outbox WHERE ",
                              "ID = 1 AND ", "ID IN (", "Subject & "}) {
        std::string nested = front;
        for (int i = 0; i < 3000; ++i)
            nested += piece;
        texts.push_back(nested);
        texts.push_back(nested + "1");
    }
    for (const std::string& text : texts)
        EXPECT_EQ(Execute(text), 3075) << text.substr(0, 60);
    EXPECT_EQ(Rows("SELECT count(*) FROM Outbox"), "3");
}

/// Whatever a changed character makes of a statement, it is refused or SQLite understands it.
TEST_F(SqlPlanTest, DamagedStatementsNeverReachSqlite) {
    const auto check = [this](const std::string& text) {
        const auto plan = PlanStatement(text, Schema());
        if (plan.Failed()) return;
        std::vector<std::string> statements = plan->statements;
        if (!plan->query.empty()) statements.push_back(plan->query);
        RunSql("SAVEPOINT damaged");
        for (const TableDef& table : plan->createdTables)
            Create(table);
        for (const std::string& statement : statements)
            EXPECT_TRUE(TryRun(statement)) << text << statement << Failure();
        RunSql("ROLLBACK TO damaged; RELEASE damaged");
        for (const TableDef& table : plan->createdTables)
            tables_.erase(table.name);
    };
    for (const std::string opening :
         {"(1 + ", "(ID = 1 AND (ID = 2 OR ", "NOT ", "-", "ID IN (1, ", "Subject & ", "ID = 1 OR ",
          "ID IN (SELECT ID FROM Outbox WHERE Date Is Null OR "}) {
        const auto open = std::count(opening.begin(), opening.end(), '(');
        std::string nested = "1";
        for (int depth = 0; depth < 130; ++depth) {
            nested = opening + nested + std::string(static_cast<std::size_t>(open), ')');
            check("SELECT * FROM Outbox WHERE 1 = (" + nested + ")");
        }
    }
    for (const StatementCase& row : Statements) {
        const std::string text = Split(row.statements)[0];
        for (std::size_t i = 0; i < text.size(); ++i) {
            check(text.substr(0, i));
            check(text.substr(0, i) + text.substr(i + 1));
            for (const char damage : {'\'', '[', ']', '#', ';', '(', '.', '\0'}) {
                std::string changed = text;
                changed[i] = damage;
                check(changed);
            }
        }
    }
}

/// Tables in which every row has every row of the other for a partner.
TEST_F(SqlPlanTest, JoinsOfLargeTablesDoNotMultiply) {
    constexpr int RowCount = 20000;
    for (const char* name : {"L", "R"}) {
        Create({name, 0, {Column("a"), Column("b")}, {}});
        RunSql("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
               std::to_string(RowCount) + ") INSERT INTO " + name + " SELECT 'same', i FROM n");
    }
    int hundreds = 0;
    sqlite3_progress_handler(
        database_, 100,
        [](void* count) {
            ++*static_cast<int*>(count);
            return 0;
        },
        &hundreds);
    for (const char* sql :
         {"SELECT DISTINCTROW L.* INTO N1 FROM L, R WHERE L.a = R.a",
          "SELECT DISTINCTROW L.* INTO N2 FROM L LEFT JOIN R ON L.a = R.a WHERE R.a Is Null",
          "SELECT DISTINCTROW L.* INTO N3 FROM L, R WHERE L.b = R.b AND L.a <> R.b",
          "SELECT DISTINCTROW L.* INTO N4 FROM L WHERE L.b In (SELECT b FROM L As Tmp GROUP BY b "
          "HAVING Count(*)>1)",
          "DELETE L.*, R.* FROM L, R WHERE L.a = R.a"}) {
        hundreds = 0;
        EXPECT_EQ(Execute(sql), 0) << sql;
        EXPECT_LT(hundreds, RowCount) << sql;  // 100 steps of SQLite's machine for each row
    }
    EXPECT_EQ(Rows("SELECT count(*) FROM N1 UNION ALL SELECT count(*) FROM N2 UNION ALL "
                   "SELECT count(*) FROM N3 UNION ALL SELECT count(*) FROM R"),
              "20000; 0; 20000; 0");
}

#undef C
#undef Q
#undef QC
#undef QQ
#undef SAME

}  // namespace
}  // namespace mailvane
