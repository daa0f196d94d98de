// Messages a second to a mail sink on loopback, in the three forms of a transaction.
// Usage: SmtpBench [--messages N] [--bytes N] [--rounds N]

#include <array>
#include <string>

#include "BenchSupport.h"
#include "MailSink.h"
#include "platform/net/smtp/SmtpClient.h"

namespace {

using namespace mailvane;
using namespace mailvane::bench;

double MessagesPerSecond(int port, int count, std::size_t bytes) {
    SmtpClient client;
    client.MailServer = "127.0.0.1";
    client.MailPort = port;
    client.LocalName = "bench";
    client.From = "Sender <sender@example.com>";
    client.SendTo = "recipient@example.com";
    client.Subject = "Benchmark";
    client.OtherHeaders = "Content-Type: text/plain; charset=us-ascii\r\nReply-To: \r\n";
    while (client.MessageText.size() < bytes)
        client.MessageText += "A line of text as long as lines of mail usually are, no more.\r\n";
    NetError error = client.SetAction(SmtpClient::Action::Connect);
    const Stopwatch watch;
    for (int i = 0; i < count && error.Ok(); ++i)
        error = client.SetAction(SmtpClient::Action::Send);
    if (error.Failed()) Fail(error.description);
    const double seconds = watch.Seconds();
    client.SetAction(SmtpClient::Action::Disconnect).Ignore();
    return count / seconds;
}

void Run(const Options& options) {
    const int count = options.Number("--messages", 20000);
    const auto bytes = static_cast<std::size_t>(options.Number("--bytes", 2048));
    const std::array<ForkedServer, 3> sinks{StartMailSink(Offer::Nothing),
                                            StartMailSink(Offer::Pipelining),
                                            StartMailSink(Offer::Chunking)};
    std::array<Rates, 3> rates;
    for (int round = 0; round < options.Number("--rounds", 3); ++round)
        for (std::size_t form = 0; form < sinks.size(); ++form)
            rates[form].Add(MessagesPerSecond(sinks[form].Port(), count, bytes));
    const std::array names{"smtp_one_by_one", "smtp_pipelining", "smtp_chunking"};
    for (std::size_t form = 0; form < sinks.size(); ++form)
        Report(names[form], rates[form].Median(), "messages/s", Ratio(rates[form], rates[0]));
}

}  // namespace

int main(int argc, char** argv) {
    return RunBench([&] { Run(Options(argc, argv)); });
}
