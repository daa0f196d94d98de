#include "send/run/SendRun.h"

#include "core/run/LongRun.h"
#include "send/run/OutboxWalk.h"
#include "send/run/SendEnding.h"
#include "send/run/SendSettings.h"

namespace mailvane {

namespace {

std::string HowFarText(const SendJob& job) {
    std::string text = std::to_string(job.sent.size()) + " of " + std::to_string(job.count) +
                       " messages are sent, " + std::to_string(job.left) +
                       " are left in the Outbox";
    if (job.doubtful > 0)
        text += " (" + std::to_string(job.doubtful) +
                " of them may have been accepted all the same: see the error log)";
    return text;
}

class SendRun {
public:
    SendRun(Workbench& wb, frmSettings& settings, SendMemory& memory)
        : job_(wb, settings, memory),
          run_(wb, {"Sending messages", Holds::Store | Holds::Settings}) {
        run_.howFar = [this] { return HowFarText(job_); };
        run_.onEndAsked = [this] { transfer_.StopSoon(); };
        job_.onStopTransfer = [this] {
            run_.Cancel();
            transfer_.Stop();
        };
        job_.onGiveUpMessage = [this] { transfer_.GiveUpMessage(); };
    }

    void Run() {
        if (run_.Began()) EndSending(job_, transfer_, run_, Send());
    }

private:
    SendOutcome Send() {
        OpenOutbox outbox;
        if (const auto ended = PrepareSending(job_, outbox)) return *ended;
        return OutboxWalk(job_, outbox, transfer_).Walk(run_);
    }

    SendJob job_;
    MessageTransfer transfer_{job_};
    LongRun run_;  ///< the last, so that it ends while the others can say how far it came
};

}  // namespace

void SendAll(Workbench& wb, frmSettings& settings, SendMemory& memory) {
    if (ValidateSendSettings(wb, settings, memory.dialPromptShown)) {
        if (wb.state.FinalRunStep) memory.dialPromptShown = false;
        return;
    }
    SendRun(wb, settings, memory).Run();
}

}  // namespace mailvane
