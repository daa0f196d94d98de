// Messages a second of a send run, against Postfix's smtp-source and Python's smtplib with one
// session each, all to the same server: on the loopback and over a line with 20 ms round trips.
// Usage: SendBench --tools DIR [--messages N] [--slow-messages N] [--rounds N] [--folder DIR]
//                  [--memory-folder DIR]
// DIR of --tools holds Postfix's smtp-source and smtp-sink.

#include <fcntl.h>
#include <unistd.h>

#include <optional>
#include <string>

#include "DelayProxy.h"
#include "HeadlessProgram.h"
#include "MailSink.h"
#include "PassingClock.h"
#include "Tools.h"
#include "core/Paths.h"
#include "send/run/frmStatusEmail.h"
#include "store/MessageStore.h"
#include "store/view/frmViewEmail.h"

namespace {

using namespace mailvane;
using namespace mailvane::bench;
using namespace std::chrono_literals;

constexpr int MessageBytes = 2048;

/// The rates of one kind of run, in messages a second.
struct RunRates {
    Rates messages;  ///< from the end of the first message to that of the last
    Rates whole;     ///< from the press of the button to the end, without its waiting
};

/// A program with a full Outbox.
class SendCampaign {
public:
    SendCampaign(const std::string& folder, int port, int count)
        : program_(folder, clock_), count_(count) {
        frmSettings& settings = program_.Settings();
        settings.txtSMTPServer.SetText("127.0.0.1");
        settings.txtSMTPPort.SetText(std::to_string(port));
        settings.chkSaveSentMessages.SetChecked(false);
        const DaoError queued = Store().Transaction([this] {
            for (int i = 1; i <= count_; ++i)
                Queue(i);
            return DaoError();
        });
        if (queued.Failed()) Fail(queued.description);
        program_.wb.forms.Get<frmViewEmail>().cmdRefresh.Press();
        program_.Settle();
    }

    void Run(RunRates& rates) {
        // The bar steps on behind each message.
        std::optional<Stopwatch> watch;
        double seconds = 0;
        Subscription steps;
        const Subscription made = program_.wb.forms.created.Observe([&](Form& form) {
            auto* status = dynamic_cast<frmStatusEmail*>(&form);
            if (!status) return;
            ProgressBar& bar = status->Progress1;
            steps = bar.changed.Observe([&](Property property) {
                if (property != Property::Value || seconds > 0) return;
                if (bar.Value() == 1) watch.emplace();
                if (watch && bar.Value() == count_) seconds = watch->Seconds();
            });
        });
        const Stopwatch whole;
        program_.Settings().cmdSendEmail.Press();
        const double wholeSeconds = whole.Seconds();
        program_.CheckPrompts();
        const auto outbox = Store().OpenRecordset(OutboxFolder);
        if (outbox.Failed() || (*outbox)->RecordCount() != 0 || seconds == 0)
            Fail("The run has not sent all messages.\n" +
                 ReadFileText(program_.wb.state.ProjectFolder + "/errorlog.txt"));
        rates.messages.Add((count_ - 1) / seconds);
        rates.whole.Add(count_ / wholeSeconds);
    }

private:
    Database& Store() { return *program_.wb.state.MessageStore; }

    void Queue(int number) {
        MessageRecord record;
        record.From = "Sender <sender@example.com>";
        record.To = "recipient" + std::to_string(number) + "@example.com";
        record.Subject = "Benchmark";
        record.ContentType = "text";
        record.Priority = "3";
        while (record.Body.size() < static_cast<std::size_t>(MessageBytes))
            record.Body += "A line of text as long as lines of mail usually are, no more.\r\n";
        SaveMessageRecord(program_.wb, record, "", OutboxFolder, false, 0, "Unread", false);
    }

    PassingClock clock_;
    HeadlessProgram program_;
    int count_;
};

void SendFrom(const std::string& parent, int port, int count, RunRates& rates) {
    const ScratchFolder folder(parent);
    SendCampaign campaign(folder.File("program"), port, count);
    SettleDisk();
    campaign.Run(rates);
}

/// How often a second the disk takes a page for good, over and over in a file that is there: no
/// durable run can be faster.
double FlushRate(const std::string& parent) {
    constexpr int Count = 500;
    constexpr int PageBytes = 4096;
    const ScratchFolder folder(parent);
    const int fd = open(folder.File("pages").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    const std::string page(PageBytes, 'x');
    const auto write = [&](int number) {
        return pwrite(fd, page.data(), page.size(), off_t{number} * PageBytes) == PageBytes;
    };
    bool written = fd >= 0;
    for (int i = 0; i < Count; ++i)
        written = written && write(i);
    fsync(fd);
    const Stopwatch watch;
    for (int i = 0; i < Count; ++i)
        written = written && write(i) && fdatasync(fd) == 0;
    const double seconds = watch.Seconds();
    close(fd);
    if (!written) Fail("Cannot write in " + parent);
    return Count / seconds;
}

struct Setting {
    std::string tools;
    std::string folder;
    std::string memoryFolder;
    int rounds = 0;
};

void CompareOnLoopback(const Setting& setting, int sink, int chunkingSink, int count) {
    RunRates disk;
    RunRates memory;
    RunRates chunks;
    Rates source;
    Rates smtplib;
    Rates flushes;
    for (int round = 0; round < setting.rounds; ++round) {
        SendFrom(setting.folder, sink, count, disk);
        flushes.Add(FlushRate(setting.folder));
        source.Add(SmtpSourceRate(setting.tools, sink, count, MessageBytes));
        SendFrom(setting.memoryFolder, sink, count, memory);
        smtplib.Add(SmtplibRate(sink, count, MessageBytes));
        SendFrom(setting.memoryFolder, chunkingSink, count, chunks);
    }
    Report("send_smtp_source", source.Median(), "messages/s");
    Report("send_smtplib", smtplib.Median(), "messages/s", Ratio(smtplib, source));
    Report("send_disk_flushes", flushes.Median(), "flushes/s", Ratio(flushes, source));
    Report("send_run_durable", disk.messages.Median(), "messages/s", Ratio(disk.messages, source),
           0.5);
    Report("send_run_durable_whole", disk.whole.Median(), "messages/s", Ratio(disk.whole, source));
    Report("send_run_in_memory", memory.messages.Median(), "messages/s",
           Ratio(memory.messages, source));
    Report("send_run_in_memory_whole", memory.whole.Median(), "messages/s",
           Ratio(memory.whole, source));
    Report("send_run_in_memory_chunking", chunks.messages.Median(), "messages/s",
           Ratio(chunks.messages, source));
}

void CompareOnSlowLine(const Setting& setting, int sink, int chunkingSink, int count) {
    constexpr auto OneWay = 10ms;
    const ForkedServer line = StartDelayProxy(sink, OneWay);
    const ForkedServer chunkingLine = StartDelayProxy(chunkingSink, OneWay);
    RunRates run;
    RunRates chunks;
    Rates source;
    Rates smtplib;
    for (int round = 0; round < setting.rounds; ++round) {
        SendFrom(setting.folder, line.Port(), count, run);
        source.Add(SmtpSourceRate(setting.tools, line.Port(), count, MessageBytes));
        SendFrom(setting.folder, chunkingLine.Port(), count, chunks);
        smtplib.Add(SmtplibRate(line.Port(), count, MessageBytes));
    }
    Report("send_slow_smtp_source", source.Median(), "messages/s");
    Report("send_slow_smtplib", smtplib.Median(), "messages/s", Ratio(smtplib, source));
    Report("send_slow_run", run.messages.Median(), "messages/s", Ratio(run.messages, source), 1.9);
    Report("send_slow_run_chunking", chunks.messages.Median(), "messages/s",
           Ratio(chunks.messages, source), 3.8);
}

void Run(const Options& options) {
    const Setting setting{options.Text("--tools", "."), options.Text("--folder", BuildFolder()),
                          options.Text("--memory-folder", "/dev/shm"),
                          options.Number("--rounds", 3)};
    const PostfixSink sink(setting.tools);
    const ForkedServer chunkingSink = StartMailSink(Offer::Chunking);
    CompareOnLoopback(setting, sink.Port(), chunkingSink.Port(),
                      options.Number("--messages", 5000));
    CompareOnSlowLine(setting, sink.Port(), chunkingSink.Port(),
                      options.Number("--slow-messages", 200));
}

}  // namespace

int main(int argc, char** argv) {
    return RunBench([&] { Run(Options(argc, argv)); });
}
