#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "send/SendService.h"
#include "send/run/frmMSGSndRecvError.h"
#include "send/run/frmStatusEmail.h"
#include "store/MessageStore.h"
#include "store/SentLedger.h"
#include "store/view/frmViewEmail.h"
#include "support/FakeSmtpServer.h"
#include "support/TestBench.h"

namespace mailvane::test {

/// A workbench with an open project whose SMTP server is a fake one on the loopback.
struct SendBench : TestBench {
    SendBench() {
        UseProject();
        settings.txtSMTPServer.SetText("127.0.0.1");
        settings.txtSMTPPort.SetText(std::to_string(server.Port()));
        AnswerErrorPrompt(false);
    }

    static MessageRecord Message(const std::string& to,
                                 const std::string& from = "Ann <ann@example.com>") {
        MessageRecord record;
        record.From = from;
        record.To = to;
        record.Subject = "Hello";
        record.Body = "Text";
        return record;
    }
    void Queue(MessageRecord record, const char* where = OutboxFolder) {
        EXPECT_TRUE(TrySaveMessageRecord(wb, record, "", where, false, 0, "Read", false).Ok());
    }
    void Queue(const std::string& to) { Queue(Message(to)); }
    /// Gives what `Recipients` does then.
    std::string QueueMany(int count) {
        for (int i = 1; i <= count; ++i)
            Queue("p" + std::to_string(i) + "@example.com");
        return Recipients(OutboxFolder);
    }
    /// The server does not take recipients that begin so.
    void Refuse(const std::string& beginning, const std::string& answer) {
        server.answerToRecipient = [=](const std::string& address) {
            return address.starts_with(beginning) ? answer : "";
        };
    }
    /// As a run does that dies at once after it.
    void RecordAccepted(std::int32_t id) {
        const auto ledger = SentLedger::Open(*wb.state.MessageStore);
        EXPECT_TRUE(ledger.Ok() && SentLedger::Record(**ledger, id, clock.Now()).Ok());
    }
    void Send() { settings.cmdSendEmail.Press(); }
    /// The run's last question gets this answer; until then it gets No.
    void AnswerErrorPrompt(bool yes) {
        answering_ = windows.idle.Observe([this, yes] {
            auto* prompt = wb.forms.Find<frmMSGSndRecvError>();
            if (!prompt) return;
            promptText = prompt->lblText.Text();
            (yes ? prompt->cmdYes : prompt->cmdNo).Press();
        });
    }
    void LeaveErrorPromptOpen() { answering_ = {}; }
    /// Does something to the status form once, as soon as the run yields and it is `due`.
    void PressOnce(const std::function<bool()>& due,
                   const std::function<void(frmStatusEmail&)>& press) {
        pressed = false;
        pressing_ = windows.yielded.Observe([this, due, press] {
            auto* status = wb.forms.Find<frmStatusEmail>();
            if (!status || pressed || !due()) return;
            pressed = true;
            press(*status);
        });
    }

    std::vector<MessageRecord> Rows(const std::string& name) {
        std::vector<MessageRecord> rows;
        const auto opened = wb.state.MessageStore->OpenRecordset(name);
        for (; opened.Ok() && !(*opened)->EndOfFile(); (*opened)->MoveNext().Ignore())
            rows.push_back(*ReadMessageRow(**opened));
        return rows;
    }
    std::string Recipients(const std::string& name) {
        std::string all;
        for (const MessageRecord& row : Rows(name))
            all += row.To + " ";
        return all;
    }
    std::string ErrorLog() const { return ReadFileText(wb.state.ProjectFolder + "/errorlog.txt"); }
    /// To whom the server got messages, in order.
    std::string Delivered() const { return TakenBy(server); }
    static std::string TakenBy(const FakeSmtpServer& host) {
        std::string all;
        for (const auto& message : host.Messages())
            for (const std::string& to : message.to)
                all += to + " ";
        return all;
    }
    /// The text of the first message box; "" when there was none.
    std::string FirstBox() {
        return Prompts().Shown().empty() ? std::string() : Prompts().Shown()[0].text;
    }

    std::string promptText;  ///< of the run's last question; "" when it was not asked
    bool pressed = false;    ///< by PressOnce
    FakeSmtpServer server;
    SendService service{wb};
    frmViewEmail& view = wb.forms.Get<frmViewEmail>();
    frmSettings& settings = wb.forms.Get<frmSettings>();

private:
    Subscription answering_;
    Subscription pressing_;
};

}  // namespace mailvane::test
