// The SMTP conversation: the input is what the server says, in the pieces in which it comes. Beside
// the session runs a model of the conversation that hears the same lines; the two must agree.

#include <algorithm>

#include "fuzz/FuzzTarget.h"
#include "platform/net/smtp/SmtpSession.h"

namespace mailvane::fuzz {
namespace {

// The first byte of an input chooses recipients and message. Of what follows, each of these bytes
// begins a piece, and says how much of the waiting output goes out before it comes.
constexpr char WriteAll = '\x01';
constexpr char WriteNothing = '\x02';
constexpr char WriteByte = '\x03';
constexpr char WriteHalf = '\x04';
constexpr std::string_view PieceStarts = "\x01\x02\x03\x04";

constexpr std::string_view Secret = "c2VjcmV0";
constexpr std::size_t BigBody = 600 * 1024;  ///< more than goes out in one chunk

/// Of a reply's line; -1 for another.
int CodeOf(std::string_view line) {
    const auto digit = [](char c) { return c >= '0' && c <= '9'; };
    return line.size() >= 3 && std::all_of(line.begin(), line.begin() + 3, digit)
               ? std::stoi(std::string(line.substr(0, 3)))
               : -1;
}

/// The message of a case, and its bytes on the wire.
struct Message {
    explicit Message(int kind) {
        if (kind == 1) {
            asChunk = ".\r\n..leading dots\r\n.\r\n";
            asData = "..\r\n...leading dots\r\n..\r\n";
        }
        if (kind == 2) asData = asChunk = std::string("\xC3\xA4 line\0x\r\n", 11);
        if (kind == 3) asData = asChunk = std::string(BigBody, 'x') + "\r\n";
        body = asChunk;
        asChunk.insert(0, head);
        asData.insert(0, head);
    }

    std::string head = "Subject: x\r\n\r\n";
    std::string body;
    std::string asChunk = "Hello.\r\n";  ///< as BDAT sends it
    std::string asData = asChunk;        ///< as DATA sends it, without the end of data
};

/// What one operation must have said and heard, made from the lines that the session tells.
class Model {
public:
    explicit Model(const Message& message) : message_(message) {}

    void Begin() {
        expected.clear();
        commands_.clear();
        answers_.clear();
        chunked_ = 0;
        refusedRecipients = acceptedRecipients = 0;
        failed = ended = accepted = false;
    }

    void OnLine(Direction direction, std::string_view line) {
        Require(line.find_first_of("\r\n") == std::string_view::npos, "a line is one line");
        if (direction == Direction::Sent) OnSent(line);
        if (direction == Direction::Received) OnReceived(line);
    }

    /// Every byte that the operation may have written so far, in order.
    std::string expected;
    bool failed = false;    ///< the message was refused
    bool ended = false;     ///< the end of the data is among `expected`
    bool accepted = false;  ///< a 2xx came as the answer to that
    std::size_t refusedRecipients = 0;
    std::size_t acceptedRecipients = 0;
    std::size_t recipients = 0;

private:
    void OnSent(std::string_view line) {
        if (line == "***") line = Secret;
        if (failed)
            Require(line == "RSET" || line == "QUIT" || (line == "." && dataAsked_),
                    "after a failure come RSET and QUIT alone");
        expected.append(line).append("\r\n");
        commands_.emplace_back(line);
        if (line.starts_with("BDAT ")) {
            const std::size_t count = std::stoul(std::string(line.substr(5)));
            Require(count <= message_.asChunk.size() - chunked_, "a chunk is of the message");
            expected.append(message_.asChunk, chunked_, count);
            chunked_ += count;
            const bool last = line.ends_with(" LAST");
            Require(last == (chunked_ == message_.asChunk.size()), "the last chunk is the last");
            ended = last;
        }
    }

    /// Replies and commands go in step; what does not fit them is the session's to refuse.
    void OnReceived(std::string_view line) {
        const int code = CodeOf(line);
        if (code < 0 || (line.size() > 3 && line[3] == '-')) return;
        if (answers_.size() == commands_.size()) return;
        const std::string command = commands_[answers_.size()];
        answers_.push_back(code);
        if (command == "RSET") return;
        if (command.starts_with("RCPT")) {
            ++(code < 300 ? acceptedRecipients : refusedRecipients);
        } else if (command == "DATA") {
            dataAsked_ = code == 354;
            if (dataAsked_ && !failed) SendData();
        } else if (command == EndOfData || (command.starts_with("BDAT") && ended)) {
            accepted = code < 300;
        }
        if (refusedRecipients == recipients || (code >= 400 && IsOfMessage(command))) failed = true;
    }

    static bool IsOfMessage(std::string_view command) {
        return command.starts_with("MAIL") || command == "DATA" || command == EndOfData ||
               command.starts_with("BDAT");
    }

    void SendData() {
        expected.append(message_.asData).append(EndOfData);
        commands_.emplace_back(EndOfData);
        ended = true;
    }

    static constexpr const char* EndOfData = ".\r\n";
    const Message& message_;
    std::vector<std::string> commands_;
    std::vector<int> answers_;
    std::size_t chunked_ = 0;
    bool dataAsked_ = false;
};

class Conversation {
public:
    Conversation(unsigned char choice, std::string_view server)
        : message_(choice >> 2 & 3), model_(message_), server_(server) {
        for (int i = 0; i <= (choice & 3); ++i)
            envelope_.recipients.push_back("r" + std::to_string(i) + "@example.com");
        envelope_.sender = "s@example.com";
        envelope_.eightBit = (choice & 16) != 0;
        model_.recipients = envelope_.recipients.size();
    }

    void Run() {
        session_.Open();
        if (!Greet()) return;
        if (!Do([this] { session_.Command(Secret, true); })) return;
        for (int i = 0; i < 2; ++i)
            if (!SendMessage()) return;
        Do([this] { session_.Quit(); });
        Require(!session_.Done() || session_.Broken(), "after QUIT the connection is over");
    }

private:
    /// The transport's part: whole lines up to the end of a reply. True when it is a good one.
    bool Greet() {
        if (session_.Observe(Direction::Sent, "EHLO client.example.com").Failed()) return false;
        while (!server_.empty()) {
            const std::size_t end = std::min(server_.find('\n'), server_.size() - 1) + 1;
            std::string line(server_.substr(0, end));
            std::erase_if(line, [](char c) { return PieceStarts.find(c) != PieceStarts.npos; });
            server_.remove_prefix(end);
            if (session_.Observe(Direction::Received, line).Failed()) return false;
            if (!session_.LastReply().Started()) return session_.LastReply().Accepted();
        }
        return false;
    }

    /// Carries one operation on while the server says something. True when the next one may begin.
    template <class Start>
    bool Do(Start start) {
        model_.Begin();
        written_ = 0;
        start();
        while (!session_.Done() && TakePiece()) {
        }
        Require(session_.Done() || !session_.Broken(), "a broken operation is over");
        return session_.Done() && !session_.Broken();
    }

    bool SendMessage() {
        MessageSource source;
        Require(source.Open(message_.head, message_.body, message_.asChunk.size(), "").Ok(),
                "a message without a file opens");
        const bool ready = Do([&] { session_.Send(envelope_, source); });
        CheckOutcome();
        return ready;
    }

    void CheckOutcome() const {
        const bool whole = model_.ended && written_ == model_.expected.size();
        if (!session_.Done()) {
            const NetError lost = session_.Interrupted({net_error::ConnectionLost, "Lost."});
            Require(lost.Failed(), "an interrupted message is not sent");
            if (whole && !model_.failed)
                Require(lost.code == net_error::AnswerLost, "a message that may be sent is told");
            return;
        }
        if (session_.Result().Failed()) {
            Require(!session_.Result().description.empty(), "a failure is told in words");
            Require(session_.Broken() || written_ == 0 || model_.expected.ends_with("RSET\r\n"),
                    "after a refused message the connection is made ready");
            return;
        }
        Require(whole, "what counts as sent went out whole");
        Require(model_.accepted, "what counts as sent was accepted at its end");
        Require(!model_.failed, "what was refused does not count as sent");
        Require(model_.acceptedRecipients > 0, "a message that was sent has a recipient");
        Require(session_.Refused().size() == model_.refusedRecipients,
                "each refused recipient is told");
        Require(session_.BytesSent() <= static_cast<std::int64_t>(message_.asData.size()),
                "no more is sent than the message");
    }

    bool TakePiece() {
        if (server_.empty()) return false;
        const bool told = PieceStarts.find(server_.front()) != std::string_view::npos;
        Write(told ? server_.front() : WriteAll);
        if (told) server_.remove_prefix(1);
        const std::size_t end = std::min(server_.find_first_of(PieceStarts), server_.size());
        const std::string piece(server_.substr(0, end));  // a copy has its bounds watched
        server_.remove_prefix(end);
        session_.Receive(piece);
        return true;
    }

    void Write(char how) {
        if (how == WriteNothing) return;
        while (!session_.Done()) {
            const std::string_view output = session_.Output();
            if (output.empty()) break;
            const std::size_t count = how == WriteByte   ? 1
                                      : how == WriteHalf ? (output.size() + 1) / 2
                                                         : output.size();
            Require(std::string_view(model_.expected)
                        .substr(written_)
                        .starts_with(output.substr(0, count)),
                    "only what was told goes out");
            written_ += count;
            session_.Written(count);
            if (how != WriteAll) break;
        }
    }

    Message message_;
    Model model_;
    SmtpSession session_{
        [this](Direction direction, std::string_view line) { model_.OnLine(direction, line); }};
    SmtpEnvelope envelope_;
    std::string_view server_;
    std::size_t written_ = 0;  ///< of the bytes that the model expects
};

}  // namespace

void TryInput(const std::string& input) {
    if (input.empty()) return;
    const auto choice = static_cast<unsigned char>(input[0]);
    Conversation(choice, std::string_view(input).substr(1)).Run();
}

}  // namespace mailvane::fuzz
