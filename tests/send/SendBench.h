#pragma once

#include <string>
#include <vector>

#include "core/Settings.h"
#include "core/frmSettings.h"
#include "send/SendService.h"
#include "send/frmMSGSndRecvError.h"
#include "send/frmStatusEmail.h"
#include "store/MessageStore.h"
#include "store/SentLedger.h"
#include "store/frmViewEmail.h"
#include "support/FakeSmtpServer.h"
#include "support/TestBench.h"

namespace mailvane::test {

/// A workbench with an open project whose SMTP server is a fake one on the loopback.
struct SendBench : TestBench {
    SendBench() {
        UseProject();
        settings.txtSMTPServer.SetText("127.0.0.1");
        settings.txtSMTPPort.SetText(std::to_string(server.Port()));
    }

    void Queue(const std::string& to, const std::string& subject = "Hello",
               const std::string& body = "Text") {
        MessageRecord record;
        record.From = "Ann <ann@example.com>";
        record.To = to;
        record.Subject = subject;
        record.Body = body;
        SaveMessageRecord(wb, record, "", OutboxFolder, false, 0, "Read", false);
    }
    void QueueMany(int count) {
        for (int i = 1; i <= count; ++i)
            Queue("p" + std::to_string(i) + "@example.com");
    }
    /// As a run does that dies at once after it.
    void RecordAccepted(std::int32_t id) {
        const auto ledger = SentLedger::Open(*wb.state.MessageStore);
        EXPECT_TRUE(ledger.Ok() && SentLedger::Record(**ledger, id, clock.Now()).Ok());
    }
    void Send() { settings.cmdSendEmail.Press(); }
    /// The run's last question gets this answer.
    void AnswerErrorPrompt(bool yes) {
        answering_ = windows.idle.Observe([this, yes] {
            auto* prompt = wb.forms.Find<frmMSGSndRecvError>();
            if (!prompt) return;
            promptText = prompt->lblText.Text();
            (yes ? prompt->cmdYes : prompt->cmdNo).Press();
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
    std::string Delivered() const {
        std::string all;
        for (const auto& message : server.Messages())
            for (const std::string& to : message.to)
                all += to + " ";
        return all;
    }

    std::string promptText;  ///< of the run's last question
    FakeSmtpServer server;
    SendService service{wb};
    frmViewEmail& view = wb.forms.Get<frmViewEmail>();
    frmSettings& settings = wb.forms.Get<frmSettings>();

private:
    Subscription answering_;
};

}  // namespace mailvane::test
