#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "HeadlessProgram.h"
#include "database/view/frmViewDatabase.h"
#include "merge/check/MergeCheck.h"
#include "merge/message/frmViewMerge.h"
#include "merge/run/MergeGenerator.h"
#include "merge/run/frmMerge.h"
#include "platform/dao/file/Workspace.h"
#include "store/MessageStore.h"

namespace mailvane::bench {

constexpr int UsualColumns = 10;

/// The recipients' columns with the values of the one with that number. Behind the usual ones
/// stand "Column11", "Column12" ...
inline std::vector<std::pair<std::string, std::string>> Recipient(int number,
                                                                  int columns = UsualColumns) {
    const std::string digits = std::to_string(number);
    std::vector<std::pair<std::string, std::string>> row{
        {"Email", "recipient" + digits + "@example.com"},
        {"FirstName", "Given" + digits},
        {"LastName", "Family" + digits},
        {"Company", "Company number " + digits},
        {"Street", digits + " Long Street"},
        {"City", "Springfield"},
        {"Zip", "00123"},
        {"Country", "Nowhere"},
        {"Phone", "+1 555 0100 " + digits},
        {"Code", "C" + digits}};
    for (int i = UsualColumns + 1; i <= columns; ++i)
        row.emplace_back("Column" + std::to_string(i), "Value " + std::to_string(i));
    return row;
}

/// A text of `bytes` bytes in lines of mail's usual length, with six tags in it.
inline std::string TaggedBody(std::size_t bytes) {
    std::string body = "Dear [FirstName] [LastName],\r\n\r\n";
    const std::string end =
        "\r\n[Company], [City]\r\nYour code is [Code], your address is [Email].\r\n";
    const std::string line = "A line of text as long as lines of mail usually are, no more.\r\n";
    while (body.size() + line.size() + end.size() <= bytes)
        body += line;
    return body + end;
}

/// A page of about `bytes` bytes with the tags of the first `tags` columns spread over it.
inline std::string TaggedPage(std::size_t bytes, int tags) {
    const std::string line = "<p>A line of a page as long as they usually are, no more.</p>\r\n";
    std::string page = "<html><body>\r\n";
    std::size_t end = 0;
    for (const auto& [column, value] : Recipient(0, tags)) {
        page += "<p>[" + column + "]</p>\r\n";
        end += bytes / static_cast<std::size_t>(tags);
        while (page.size() + line.size() <= end)
            page += line;
    }
    return page + "</body></html>\r\n";
}

inline void MakeRecipients(const std::string& path, int count, int columns = UsualColumns) {
    const auto workspace = Workspace::Create();
    const auto database = workspace->CreateDatabase(path);
    if (database.Failed()) Fail(database.Error().description);
    TableDef table;
    table.name = "People";
    for (const auto& [column, value] : Recipient(0, columns))
        table.fields.push_back({.name = column});
    DaoError outcome = (*database)->AppendTable(table);
    const auto rows = (*database)->OpenRecordset("People");
    if (outcome.Failed() || rows.Failed()) Fail("The recipients' table cannot be made.");
    outcome = (*database)->Transaction([&]() -> DaoError {
        for (int i = 1; i <= count; ++i) {
            if (DaoError failed = (*rows)->AddNew(); failed.Failed()) return failed;
            std::size_t column = 0;
            for (const auto& [name, value] : Recipient(i, columns))
                if (DaoError failed = (*rows)->Set(column++, value); failed.Failed()) return failed;
            if (DaoError failed = (*rows)->Update(); failed.Failed()) return failed;
        }
        return {};
    });
    if (outcome.Failed()) Fail(outcome.description);
}

/// A program that shows a table of recipients and a message to them, ready to start.
class MergeCampaign {
public:
    MergeCampaign(const std::string& folder, const std::string& recipients, std::string body)
        : program_(folder, clock_) {
        program_.Settings().txtAccessDBPath.SetText(recipients);
        program_.wb.forms.Get<frmViewDatabase>();
        frmViewMerge& view = program_.wb.forms.Get<frmViewMerge>();
        view.txtFrom.SetText("Sender <sender@example.com>");
        view.txtSubject.SetText("News for [FirstName] [LastName]");
        view.txtBody.SetText(std::move(body));
        view.CheckAndStartMerge(false);
        program_.Settle();
    }

    /// Every message gets the page of that file.
    void UsePage(const std::string& file) {
        program_.wb.forms.Get<frmViewMerge>().lstHTML.SetItems({file});
    }

    /// Builds the message of every recipient, without storing any; the seconds that it took.
    double Build(int messages) {
        const MergePlan plan = MakeMergePlan(program_.wb, {});
        const auto recipients = plan.recipients;
        MergeGenerator generator(program_.wb, plan);
        const Stopwatch watch;
        const DaoError failed = plan.database->OneRead([&]() -> DaoError {
            if (DaoError first = recipients->MoveFirst(); first.Failed()) return first;
            for (int i = 0; i < messages; ++i) {
                if (DaoError built = generator.BuildMessage(); built.Failed()) return built;
                if (DaoError moved = recipients->MoveNext(); moved.Failed()) return moved;
            }
            return {};
        });
        if (failed.Failed() || !recipients->EndOfFile()) Fail("Not all messages were built.");
        return watch.Seconds();
    }

    /// The check before sending of the whole table.
    std::vector<MergeFinding> Check() {
        return CheckMerge(program_.wb, MakeMergePlan(program_.wb, {}),
                          [](std::int64_t) { return true; });
    }

    /// The run, from the press of Start to its end; the seconds that it took.
    double Run(int messages) {
        frmMerge* dialog = program_.wb.forms.Find<frmMerge>();
        if (!dialog) Fail("The merge dialog did not open.");
        const Stopwatch watch;
        dialog->cmdStart.Press();
        const double seconds = watch.Seconds();
        program_.CheckPrompts();
        const auto outbox = program_.wb.state.MessageStore->OpenRecordset(OutboxFolder);
        if (outbox.Failed() || (*outbox)->RecordCount() != messages)
            Fail("The run has not made all messages.");
        return seconds;
    }

    std::string StorePath() const { return MessageStorePath(program_.wb); }

private:
    SystemClock clock_;
    HeadlessProgram program_;
};

}  // namespace mailvane::bench
