// From the start of the process to a drawn main window, with an empty store and with a full one.
// Usage: StartBench [--messages N] [--rounds N] [--folder DIR]

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "HeadlessProgram.h"
#include "Tools.h"
#include "platform/qt/QtWindows.h"
#include "store/MessageStore.h"

namespace {

using namespace mailvane;
using namespace mailvane::bench;

constexpr double MostGrowth = 1.2;  ///< of the time, from no messages to many

/// The program as its user starts it, until its window has been drawn.
void StartOnce(const std::string& folder, int argc, char** argv) {
    SystemClock clock;
    SystemProcesses processes;
    QtWindows windows(argc, argv, clock);
    Platform platform{
        windows, clock, processes, folder, MAILVANE_SHARE_DIR, folder + "/registry.ini"};
    Workbench wb(platform);
    DatabaseService databases(wb);
    SendService sending(wb);
    wb.forms.Load<frmMain>().Start({});
    windows.PumpEvents();  // the window paints itself
    std::_Exit(0);
}

double TimeStart(const std::string& folder) {
    const Stopwatch watch;
    bench::Tool({BuildFolder() + "/StartBench", "--once", folder}).Wait();
    return watch.Seconds() * 1000;
}

/// In a process of its own, so that this one holds no store open.
void FillStoreApart(const std::string& folder, int count) {
    const pid_t child = fork();
    if (child == 0) {
        std::_Exit(RunBench([&] {
            SystemClock clock;
            HeadlessProgram program(folder, clock);
            const DaoError outcome = program.wb.state.MessageStore->Transaction([&]() -> DaoError {
                MessageRecord record;
                record.From = "sender@example.com";
                record.To = "recipient@example.com";
                record.Body = std::string(2000, 'x');
                for (int i = 0; i < count; ++i) {
                    record.Subject = "Message " + std::to_string(i);
                    if (DaoError failed = TrySaveMessageRecord(program.wb, record, "", InboxFolder,
                                                               false, 0, "Read", false);
                        failed.Failed())
                        return failed;
                }
                return {};
            });
            if (outcome.Failed()) Fail(outcome.description);
        }));
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || status != 0) Fail("No messages were made.");
}

void Run(const Options& options) {
    const int messages = options.Number("--messages", 50000);
    const ScratchFolder scratch(options.Text("--folder", BuildFolder()));
    FillStoreApart(scratch.File("empty"), 0);
    FillStoreApart(scratch.File("full"), messages);
    TimeStart(scratch.File("empty"));  // the program's own pages come off the disk
    Rates empty;
    Rates full;
    for (int round = 0; round < options.Number("--rounds", 9); ++round) {
        empty.Add(TimeStart(scratch.File("empty")));
        full.Add(TimeStart(scratch.File("full")));
    }
    Report("start_no_messages", empty.Median(), "ms");
    // Like the other targets a least ratio: what is allowed over what is taken.
    Report("start_many_messages", full.Median(), "ms", MostGrowth * empty.Median() / full.Median(),
           1);
}

}  // namespace

int main(int argc, char** argv) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    if (argc == 3 && std::string(argv[1]) == "--once") StartOnce(argv[2], argc, argv);
    return RunBench([&] { Run(Options(argc, argv)); });
}
