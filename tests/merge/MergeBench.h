#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/run/frmStatus.h"
#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "database/view/frmViewDatabase.h"
#include "merge/message/frmViewMerge.h"
#include "merge/run/frmMerge.h"
#include "store/MessageRecord.h"
#include "store/view/frmViewEmail.h"
#include "support/TestBench.h"

namespace mailvane::test {

using Cell = std::optional<std::string>;  ///< empty: Null

/// A project with a recipients database, and the merge view over it.
struct MergeBench : TestBench {
    MergeBench() {
        UseProject();
        database = *wb.state.MainWorkspace->CreateDatabase(DatabasePath());
        // The notice at the end of a run waits for a click.
        SaveUserSetting(wb, "Messages", "Outbox", "1");
    }
    ~MergeBench() { EXPECT_EQ(Prompts().Failure(), std::nullopt); }

    std::string DatabasePath() const { return folder.File("recipients.db"); }
    std::string InProject(const std::string& name) const {
        return wb.state.ProjectFolder + "/" + name;
    }

    void MakeTable(const std::string& name, const std::vector<Field>& fields,
                   const std::vector<std::vector<Cell>>& rows) {
        TableDef table;
        table.name = name;
        table.fields = fields;
        ASSERT_TRUE(database->AppendTable(table).Ok());
        const auto recordset = *database->OpenRecordset(name);
        for (const auto& row : rows) {
            ASSERT_TRUE(recordset->AddNew().Ok());
            for (std::size_t i = 0; i < row.size(); ++i) {
                if (row[i]) {
                    ASSERT_TRUE(recordset->Set(i, *row[i]).Ok());
                }
            }
            ASSERT_TRUE(recordset->Update().Ok());
        }
    }

    /// Rows "a1@x", "a2@x" ... with a Name "N1", "N2" ...
    void MakeRecipients(int count, const std::string& name = "People") {
        std::vector<std::vector<Cell>> rows;
        for (int i = 1; i <= count; ++i)
            rows.push_back({"a" + std::to_string(i) + "@x", "N" + std::to_string(i)});
        MakeTable(name, {{.name = "Email"}, {.name = "Name"}}, rows);
    }

    /// The database is named in the project; the merge view is loaded with a message to send.
    frmViewMerge& Message(const std::string& body = "Body", const std::string& subject = "Subject",
                          const std::string& from = "me@here") {
        if (!wb.forms.Find<frmViewMerge>())
            wb.forms.Get<frmSettings>().txtAccessDBPath.SetText(DatabasePath());
        frmViewMerge& view = wb.forms.Get<frmViewMerge>();
        view.txtBody.SetText(body);
        view.txtSubject.SetText(subject);
        view.txtFrom.SetText(from);
        return view;
    }

    frmMerge& Dialog() {
        wb.forms.Get<frmViewMerge>().CheckAndStartMerge(false);
        frmMerge* dialog = wb.forms.Find<frmMerge>();
        if (!dialog) throw std::runtime_error("frmMerge did not open");
        return *dialog;
    }

    frmMerge& Packets(const std::string& size) {
        frmMerge& dialog = Dialog();
        dialog.optBulk.SetValue(true);
        dialog.txtPacket.SetText(size);
        return dialog;
    }
    frmMerge& Rows(const std::string& first, const std::string& last) {
        frmMerge& dialog = Dialog();
        dialog.chkFractional.SetChecked(true);
        dialog.txtFractional1.SetText(first);
        dialog.txtFractional2.SetText(last);
        return dialog;
    }

    std::vector<MessageRecord> Merged() { return Merged(Dialog()); }
    std::vector<MessageRecord> Merged(frmMerge& dialog) {
        dialog.cmdStart.Press();
        return Outbox();
    }

    std::vector<MessageRecord> Outbox() {
        std::vector<MessageRecord> messages;
        const auto rows = *wb.state.MessageStore->OpenRecordset("Outbox");
        for (; !rows->EndOfFile(); rows->MoveNext().Ignore())
            messages.push_back(*ReadMessageRow(*rows));
        return messages;
    }

    void EmptyOutbox() {
        EXPECT_TRUE(wb.state.MessageStore->Execute("DELETE * FROM [Outbox]").Ok());
    }

    /// The first column of each row, a blank behind each.
    std::string FirstColumn(const std::string& table) {
        const auto opened = database->OpenRecordset(table);
        if (opened.Failed()) return opened.Error().description;
        std::string texts;
        for (const auto& rows = *opened; !rows->EndOfFile(); rows->MoveNext().Ignore())
            texts += rows->Get(0)->TextOrEmpty() + " ";
        return texts;
    }

    /// Presses Cancel on the status window once it says that this message has been made.
    void CancelAfter(int message) {
        const std::string caption = "Generating message " + std::to_string(message) + " of";
        cancel_ = windows.yielded.Observe([this, caption] {
            auto* status = wb.forms.Find<frmStatus>();
            if (status && status->lblCaption1.Text().starts_with(caption)) {
                cancel_.End();
                status->cmdCancel.Press();
            }
        });
    }

    std::shared_ptr<Database> database;

private:
    Subscription cancel_;
};

/// A blank behind each.
inline std::string Recipients(const std::vector<MessageRecord>& messages) {
    std::string texts;
    for (const MessageRecord& message : messages)
        texts += message.To + " ";
    return texts;
}

}  // namespace mailvane::test
