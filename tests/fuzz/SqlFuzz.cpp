// Statements and conditions of the SQL dialect: whatever the text, the outcome is rows, a number of
// changed rows or an error of the engine, and SQLite never sees a statement that it cannot read.

#include <algorithm>
#include <array>

#include "fuzz/FuzzTarget.h"
#include "platform/dao/file/Workspace.h"
#include "platform/dao/sql/SqlContext.h"
#include "platform/dao/sql/SqlConvert.h"
#include "platform/dao/sql/SqlLexer.h"
#include "platform/dao/sql/SqlLike.h"
#include "platform/dao/sql/SqlParser.h"
#include "platform/dao/sql/SqlPlan.h"
#include "support/TempFolder.h"

namespace mailvane::fuzz {
namespace {

/// More tables than this in one statement only make it slow.
constexpr std::size_t MaxSources = 9;

constexpr std::array AllTypes = {FieldType::Boolean,    FieldType::Byte,     FieldType::Integer,
                                 FieldType::Long,       FieldType::Currency, FieldType::Single,
                                 FieldType::Double,     FieldType::Date,     FieldType::Text,
                                 FieldType::LongBinary, FieldType::Memo};

/// As many tables as the statement can join at most.
std::size_t MostSources(const std::string& sql) {
    const auto tokens = LexSql(sql).ValueOr({});
    return static_cast<std::size_t>(
        std::count_if(tokens.begin(), tokens.end(), [](const SqlToken& token) {
            return token.text == "," || SameName(token.text, "join") ||
                   SameName(token.text, "from");
        }));
}

/// A file with a few tables of awkward names. Every statement is undone, so that all inputs meet
/// the same rows.
class Tables {
public:
    Tables() : database_(workspace_->CreateDatabase(folder_.File("fuzz.db")).ValueOr(nullptr)) {
        Require(database_ != nullptr, "the database can be made");
        Field number{"ID", FieldType::Long, 0, AutoIncrementAttribute};
        Make({"Clients",
              0,
              {number,
               {"First Name", FieldType::Text, 50},
               {"E-mail"},
               {"Born", FieldType::Date},
               {"Score", FieldType::Double},
               {"Active", FieldType::Boolean},
               {"Notes", FieldType::Memo}},
              {{"PrimaryKey", {"ID"}, true, true}}});
        Make({"O'Brien \"x\"", 0, {number, {"E-mail"}, {"City", FieldType::Text, 5}}, {}});
        Make({"a",
              0,
              {{"k", FieldType::Long},
               {"v", FieldType::Integer},
               {"p", FieldType::Currency},
               {"b", FieldType::Byte}},
              {{"u", {"k"}, false, true}}});
        Fill("INSERT INTO Clients VALUES (1, 'Ann', 'ANN@a.com', #1/2/2003#, 1.5, True, 'x')");
        Fill("INSERT INTO Clients VALUES (2, 'ÄRGER', '50% [ok]', Null, Null, False, '')");
        Fill(
            "INSERT INTO Clients VALUES (5, Null, 'it''s', #5/5/2010 4:05:06 PM#, -4, True, Null)");
        Fill("INSERT INTO [O'Brien \"x\"] VALUES (1, 'ann@A.com', 'Rome')");
        Fill("INSERT INTO [O'Brien \"x\"] VALUES (2, Null, 'Oslo')");
        Fill("INSERT INTO a VALUES (1, 10, 1.25, 7)");
        Fill("INSERT INTO a VALUES (Null, Null, Null, Null)");
        before_ = RowCounts();
    }

    void Try(const std::string& sql) {
        const DaoResult<SqlStatement> parsed = ParseSqlStatement(sql);
        const DaoResult<SqlPlan> plan = PlanStatement(sql, [this](const std::string& name) {
            const DaoResult<TableDef> table = database_->GetTableDef(name);
            return table.Ok() ? std::optional<TableDef>(*table) : std::nullopt;
        });
        if (parsed.Failed()) {
            Require(parsed.Error().number == dao_error::QuerySyntax, "a parser's error is 3075");
            Require(plan.Failed() && plan.Error().number == dao_error::QuerySyntax,
                    "what cannot be parsed has no plan");
        }
        if (plan.Failed()) {
            Require(IsPlanError(plan.Error().number), "a plan fails with a known number");
            return;
        }
        if (MostSources(sql) > MaxSources) return;
        Undone([&] {
            if (plan->kind == SqlPlan::Kind::Select)
                Walk(sql);
            else
                Change(sql);
        });
    }

    void TryCondition(const std::string& condition) {
        const DaoResult<SqlExpressionPtr> parsed = ParseSqlCondition(condition);
        TryCondition(condition, parsed.Ok(), *database_->OpenRecordset("Clients").ValueOr(nullptr));
        TryCondition(condition, parsed.Ok(), *Filtered("SELECT * FROM Clients"));
        TryCondition(condition, parsed.Ok(),
                     *Filtered("SELECT DISTINCT Notes, Score FROM Clients"));
    }

    /// A text that stands in quotes, or a name in brackets, is that text or name.
    void TryLiterals(const std::string& text) {
        if (text.empty() || text.find('\0') != std::string::npos) return;
        std::string literal;
        for (const char character : text)
            literal.append(character == '\'' ? 2 : 1, character);
        const bool isName = text.find(']') == std::string::npos;
        const std::string name = isName ? text : "Value";
        const auto rows = database_->OpenRecordset("SELECT '" + literal + "' AS [" + name +
                                                   "] FROM [O'Brien \"x\"] WHERE ID = 1");
        Require(rows.Ok(), "any text can be asked for");
        Require((*rows)->Fields()[0].name == name, "a name in brackets keeps its characters");
        const DaoResult<DaoValue> value = (*rows)->Get(0);
        Require(value.Ok() && value->TextOrEmpty() == text, "a text in quotes comes back");
    }

private:
    std::shared_ptr<Recordset> Filtered(const std::string& sql) {
        const auto rows = database_->OpenRecordset(sql).ValueOr(nullptr);
        Require(rows != nullptr, "a query opens");
        rows->SetFilter("Score Is Null Or Score < 100");
        return rows->OpenFiltered().ValueOr(nullptr);
    }

    static void TryCondition(const std::string& condition, bool isCondition, Recordset& rows) {
        const DaoError found = rows.FindFirst(condition);
        Require(found.Ok() || IsPlanError(found.number), "a condition fails with a known number");
        rows.SetFilter(condition);
        const auto filtered = rows.OpenFiltered();
        if (condition.empty()) return;
        Require(filtered.Ok() == found.Ok(), "what can be searched for, and only that, can filter");
        Require(isCondition || found.Failed(), "what cannot be parsed is not searched for");
        if (found.Failed()) return;
        Require(((*filtered)->RecordCount() == 0) == rows.NoMatch(),
                "searching and filtering agree");
    }

    void Make(const TableDef& table) { Require(database_->AppendTable(table).Ok(), "a table"); }
    void Fill(const std::string& sql) { Require(database_->Execute(sql).Ok(), "a row"); }

    static bool IsPlanError(int number) {
        constexpr std::array Known = {
            dao_error::QuerySyntax,          dao_error::TableNotFound, dao_error::TooFewParameters,
            dao_error::UnknownFieldInInsert, dao_error::TableExists,   dao_error::TableDoesNotExist,
            sql_error::AmbiguousColumn,      sql_error::ValueCount,    sql_error::TypeMismatch};
        return std::find(Known.begin(), Known.end(), number) != Known.end();
    }

    /// What a statement that has a plan may still meet: names that the engine refuses, and values.
    static bool IsRunError(int number) {
        constexpr std::array Known = {dao_error::DuplicateKey,     dao_error::NullInPrimaryKey,
                                      dao_error::InvalidName,      dao_error::FieldTooSmall,
                                      dao_error::RequiredField,    dao_error::DataConversion,
                                      dao_error::FieldDefinedTwice};
        return std::find(Known.begin(), Known.end(), number) != Known.end();
    }

    template <class Work>
    void Undone(Work work) {
        const DaoError undo = MakeDaoError(dao_error::EngineFailure);
        database_
            ->Transaction([&] {
                work();
                return undo;
            })
            .Ignore();
    }

    void Walk(const std::string& sql) {
        const auto opened = database_->OpenRecordset(sql);
        if (opened.Failed()) {
            Complain(opened.Error(), sql);
            return;
        }
        Recordset& rows = **opened;
        std::int64_t walked = 0;
        for (; !rows.EndOfFile(); ++walked) {
            for (std::size_t i = 0; i < rows.Fields().size(); ++i)
                Require(rows.Get(i).Ok(), "every value of a row can be read");
            Require(rows.MoveNext().Ok(), "the next row can be reached");
        }
        Require(walked == rows.RecordCount(), "the rows are as many as counted");
    }

    void Change(const std::string& sql) {
        const DaoResult<std::int64_t> changed = database_->Execute(sql);
        if (changed.Ok()) {
            Require(*changed >= 0, "a number of rows");
            RowCounts();
            return;
        }
        Complain(changed.Error(), sql);
        Require(RowCounts() == before_, "a statement that fails changes nothing");
    }

    static void Complain(const DaoError& error, const std::string& sql) {
        if (IsRunError(error.number)) return;
        std::cerr << error.number << ' ' << error.description << "\nin " << sql << std::endl;
        Require(false, "what was planned can be run");
    }

    std::vector<std::string> RowCounts() const {
        std::vector<std::string> counts;
        for (const std::string& table : database_->TableNames().ValueOr({})) {
            const auto rows = database_->OpenRecordset("[" + table + "]");
            Require(rows.Ok(), "every table opens");
            counts.push_back(table + " " + std::to_string((*rows)->RecordCount()));
        }
        return counts;
    }

    test::TempFolder folder_;
    std::shared_ptr<Workspace> workspace_ = Workspace::Create();
    std::shared_ptr<Database> database_;
    std::vector<std::string> before_;
};

/// Where a value fits a type, converting it again changes nothing.
void TryConversions(const std::string& text) {
    for (const FieldType type : AllTypes) {
        const DaoValue once = ConvertValue(text, type);
        Require(ConvertValue(once, type) == once, "a converted value stays as it is");
        const DaoValue shown = once.TextOrEmpty();
        static_cast<void>(ConvertValue(shown, type));
    }
}

}  // namespace

void TryInput(const std::string& text) {
    // Made once for all inputs, as the interface leaves no other place for what is costly to make.
    static Tables tables;
    tables.Try(text);
    tables.TryCondition(text);
    tables.TryLiterals(text);
    TryConversions(text);
    Require(LikeMatch(EscapeLike(text), text), "an escaped text matches itself");
}

}  // namespace mailvane::fuzz
