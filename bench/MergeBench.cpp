// Messages a second that a merge run writes to the Outbox, against a bare loop over SQLite's own
// interface that inserts the very same rows into the same table with the same journal. Then with a
// page for a message, against one pass over that page in memory; with few columns and with many.
// Usage: MergeBench [--rows N] [--rounds N] [--folder DIR]

#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "MergeCampaign.h"
#include "core/Paths.h"
#include "merge/tags/TagList.h"

namespace {

using namespace mailvane;
using namespace mailvane::bench;

constexpr std::size_t BodyBytes = 2048;

constexpr std::size_t PageBytes = 20 * 1024;
constexpr int PageTags = 20;
constexpr int FewColumns = 20;  ///< the page has a tag for each
constexpr int ManyColumns = 80;

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};
struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
struct FreeValue {
    void operator()(sqlite3_value* value) const { sqlite3_value_free(value); }
};
using SqliteDatabase = std::unique_ptr<sqlite3, CloseDatabase>;
using SqliteStatement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;
using SqliteValue = std::unique_ptr<sqlite3_value, FreeValue>;

SqliteDatabase OpenFile(const std::string& path) {
    sqlite3* database = nullptr;
    if (sqlite3_open(path.c_str(), &database) != SQLITE_OK) Fail("Cannot open " + path);
    return SqliteDatabase(database);
}

SqliteStatement Prepare(const SqliteDatabase& database, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database.get(), sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
        Fail(sql + ": " + sqlite3_errmsg(database.get()));
    return SqliteStatement(statement);
}

void Execute(const SqliteDatabase& database, const std::string& sql) {
    if (sqlite3_exec(database.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        Fail(sql + ": " + sqlite3_errmsg(database.get()));
}

/// The finished rows of an Outbox, in memory, without their identities.
class FinishedRows {
public:
    explicit FinishedRows(const std::string& store) {
        const SqliteDatabase database = OpenFile(store);
        const SqliteStatement schema = Prepare(
            database, "SELECT sql FROM sqlite_schema WHERE tbl_name = 'Outbox' AND sql NOT NULL");
        while (sqlite3_step(schema.get()) == SQLITE_ROW)
            schema_.emplace_back(
                reinterpret_cast<const char*>(sqlite3_column_text(schema.get(), 0)));
        const SqliteStatement rows = Prepare(database, "SELECT * FROM Outbox ORDER BY rowid");
        while (sqlite3_step(rows.get()) == SQLITE_ROW)
            for (int i = 0; i < sqlite3_column_count(rows.get()); ++i)
                Keep(rows.get(), i);
        if (schema_.empty() || values_.empty()) Fail("The Outbox is empty.");
    }

    /// Inserts all of them into the same table of a new file, `group` rows a commit; the seconds
    /// that it took.
    double InsertInto(const std::string& path, std::size_t group) const {
        const SqliteDatabase database = OpenFile(path);
        Execute(database, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL");
        for (const std::string& sql : schema_)
            Execute(database, sql);
        const SqliteStatement insert =
            Prepare(database, "INSERT INTO Outbox (" + names_ + ") VALUES (" + Places() + ")");
        SettleDisk();
        const Stopwatch watch;
        for (std::size_t row = 0; row < Count(); ++row) {
            if (group > 1 && row % group == 0) Execute(database, "BEGIN");
            for (std::size_t i = 0; i < columns_; ++i)
                sqlite3_bind_value(insert.get(), static_cast<int>(i) + 1,
                                   values_[row * columns_ + i].get());
            if (sqlite3_step(insert.get()) != SQLITE_DONE) Fail(sqlite3_errmsg(database.get()));
            sqlite3_reset(insert.get());
            if (group > 1 && (row % group == group - 1 || row + 1 == Count()))
                Execute(database, "COMMIT");
        }
        return watch.Seconds();
    }

    std::size_t Count() const { return values_.size() / columns_; }

private:
    void Keep(sqlite3_stmt* rows, int column) {
        const std::string name = sqlite3_column_name(rows, column);
        if (name == "ID") return;
        values_.emplace_back(sqlite3_value_dup(sqlite3_column_value(rows, column)));
        if (values_.size() > columns_ && complete_) return;
        complete_ = column + 1 == sqlite3_column_count(rows);
        names_ += (names_.empty() ? "\"" : ", \"") + name + "\"";
        columns_ = values_.size();
    }

    std::string Places() const {
        std::string places = "?";
        for (std::size_t i = 1; i < columns_; ++i)
            places += ", ?";
        return places;
    }

    std::vector<std::string> schema_;
    std::string names_;
    std::size_t columns_ = 0;
    bool complete_ = false;
    std::vector<SqliteValue> values_;
};

/// Bodies a second in which all tags are replaced, without a database.
double TagRate(int count) {
    std::vector<std::string> names;
    std::vector<std::string> values;
    for (const auto& [name, value] : Recipient(12345)) {
        names.push_back(name);
        values.push_back(value);
    }
    const TagList tags(names);
    const std::string body = TaggedBody(BodyBytes);
    std::size_t bytes = 0;
    const Stopwatch watch;
    for (int i = 0; i < count; ++i) {
        std::string text = body;
        if (!tags.Replace(text, [&values](std::size_t column) { return &values[column]; }))
            Fail("The text became too long.");
        bytes += text.size();
    }
    const double seconds = watch.Seconds();
    if (bytes == body.size() * static_cast<std::size_t>(count)) Fail("No tag was replaced.");
    return count / seconds;
}

using Values = std::unordered_map<std::string, std::string>;

/// The text with its tags replaced in one pass.
std::string FillInPlain(const std::string& text, const Values& values) {
    std::string result;
    std::size_t copied = 0;
    std::size_t open = text.find('[');
    while (open != std::string::npos) {
        const std::size_t end = text.find(']', open);
        if (end == std::string::npos) break;
        if (const auto value = values.find(text.substr(open + 1, end - open - 1));
            value != values.end()) {
            result.append(text, copied, open - copied).append(value->second);
            copied = end + 1;
        }
        open = text.find('[', end);
    }
    return result.append(text, copied);
}

/// Pages a second that one plain pass fills in.
double PlainRate(const std::string& page, int count) {
    Values values;
    for (const auto& [name, value] : Recipient(12345, FewColumns))
        values.emplace(name, value);
    std::size_t bytes = 0;
    const Stopwatch watch;
    for (int i = 0; i < count; ++i)
        bytes += FillInPlain(page, values).size();
    const double seconds = watch.Seconds();
    if (bytes == page.size() * static_cast<std::size_t>(count)) Fail("No tag was replaced.");
    return count / seconds;
}

/// What a merge of pages to recipients with so many columns comes to.
struct PageRates {
    Rates built;  ///< messages that are not stored
    Rates run;
};

void MergePages(const ScratchFolder& scratch, int columns, int count, PageRates& rates) {
    const ScratchFolder folder(scratch.File(""));
    MakeRecipients(folder.File("recipients.db"), count, columns);
    MergeCampaign campaign(folder.File("program"), folder.File("recipients.db"), "Hello");
    campaign.UsePage(scratch.File("page.html"));
    SettleDisk();
    rates.built.Add(count / campaign.Build(count));
    rates.run.Add(count / campaign.Run(count));
}

void RunPages(const ScratchFolder& scratch, int count, int rounds) {
    const std::string page = TaggedPage(PageBytes, PageTags);
    if (!WriteFileText(scratch.File("page.html"), page)) Fail("The page cannot be written.");
    Rates plain;
    PageRates few;
    PageRates many;
    for (int round = 0; round < rounds; ++round) {
        plain.Add(PlainRate(page, 10 * count));
        MergePages(scratch, FewColumns, count, few);
        MergePages(scratch, ManyColumns, count, many);
    }
    Report("merge_page_plain_pass", plain.Median(), "pages/s");
    Report("merge_page_built", few.built.Median(), "messages/s", Ratio(few.built, plain));
    Report("merge_page_run", few.run.Median(), "messages/s", Ratio(few.run, plain));
    // Four times the columns: a quarter if the cost grew with their number, a sixteenth if it grew
    // with its square.
    Report("merge_page_built_many_columns", many.built.Median(), "messages/s",
           Ratio(many.built, few.built));
    Report("merge_page_run_many_columns", many.run.Median(), "messages/s",
           Ratio(many.run, few.run));
}

void RunTexts(const ScratchFolder& scratch, int count, int rounds) {
    MakeRecipients(scratch.File("recipients.db"), count);

    Rates merge;
    Rates bare;
    Rates grouped;
    Rates whole;
    Rates tags;
    for (int round = 0; round < rounds; ++round) {
        const ScratchFolder folder(scratch.File(""));
        std::string store;
        {
            MergeCampaign campaign(folder.File("program"), scratch.File("recipients.db"),
                                   TaggedBody(BodyBytes));
            store = campaign.StorePath();
            SettleDisk();
            merge.Add(count / campaign.Run(count));
        }
        const FinishedRows rows(store);
        const auto rowCount = static_cast<double>(rows.Count());
        bare.Add(rowCount / rows.InsertInto(folder.File("bare.db"), 1));
        grouped.Add(rowCount / rows.InsertInto(folder.File("grouped.db"), 100));
        whole.Add(rowCount / rows.InsertInto(folder.File("whole.db"), rows.Count()));
        tags.Add(TagRate(4 * count));
    }
    Report("merge_run", merge.Median(), "messages/s", Ratio(merge, bare), 0.5);
    Report("merge_bare_commit_each", bare.Median(), "rows/s");
    Report("merge_bare_commit_100", grouped.Median(), "rows/s", Ratio(grouped, bare));
    Report("merge_bare_commit_all", whole.Median(), "rows/s", Ratio(whole, bare));
    Report("merge_tags_only", tags.Median(), "bodies/s", Ratio(tags, bare));
}

void Run(const Options& options) {
    const int count = options.Number("--rows", 50000);
    const int rounds = options.Number("--rounds", 3);
    const ScratchFolder scratch(options.Text("--folder", BuildFolder()));
    RunTexts(scratch, count, rounds);
    RunPages(scratch, std::max(count / 10, 1), rounds);
}

}  // namespace

int main(int argc, char** argv) {
    return RunBench([&] { Run(Options(argc, argv)); });
}
