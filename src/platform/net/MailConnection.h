#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/net/CurlHandles.h"
#include "platform/net/Direction.h"
#include "platform/net/MailAccount.h"
#include "platform/net/NetError.h"
#include "platform/net/NetWait.h"

namespace mailvane {

/// Where a mail connection goes, and how.
struct MailPeer {
    MailAccount account;
    std::string dnsServers;   ///< as ResolveName takes them
    int connectTimeout = 30;  ///< seconds, for the name and the connection
    int answerTimeout = 300;  ///< seconds, for each answer of the server's from then on
};

/// A TCP connection to a mail server, secured as asked for. libcurl makes it and goes through the
/// beginning of the protocol (greeting, EHLO, STARTTLS; greeting, CAPA, STLS), then it carries
/// bytes.
class MailConnection {
public:
    enum class Outcome { Done, Again, Closed };

    /// `onBeginning` is told the lines of that beginning, with their line ends.
    explicit MailConnection(std::function<void(Direction, std::string_view)> onBeginning);
    ~MailConnection();
    MailConnection(const MailConnection&) = delete;
    MailConnection& operator=(const MailConnection&) = delete;

    /// Closes an open connection first. Fails with ConnectFailed, NameNotFound, TlsFailed,
    /// TimedOut, Canceled, or with BadReply when the server refused; its words went to
    /// `onBeginning`.
    NetError Open(const MailPeer& peer, const KeepWaiting& keepWaiting);
    void Close();

    bool IsOpen() const { return open_; }
    bool IsSecured() const { return secured_; }
    /// The server is this machine: a loopback address, or the address that the connection comes
    /// from.
    bool IsLocalPeer() const { return local_; }
    /// Whether a password may go over it: it is secured, leads to this machine, or no security was
    /// wanted. Else LogonImpossible; NotConnected when it is not open.
    NetError MayCarrySecrets() const;
    /// How this machine introduced itself to an SMTP server.
    const std::string& LocalName() const { return localName_; }

    /// Neither blocks. Receive is repeated until Again before anybody waits: bytes can stand in the
    /// TLS layer while the socket has none.
    Outcome Send(std::string_view bytes, std::size_t& sent);
    Outcome Receive(char* buffer, std::size_t size, std::size_t& received);
    /// Waits until there is something to receive, or room to send; at most `milliseconds`.
    void Wait(bool forSending, int milliseconds) const;

private:
    NetError SetUrl(const MailAccount& account, const std::string& host);
    void SetOptions(const MailPeer& peer);
    NetError Resolve(const MailPeer& peer, const std::string& host, NetClock::time_point deadline,
                     const KeepWaiting& keepWaiting);
    void ChooseLocalName(const MailPeer& peer, const KeepWaiting& keepWaiting);
    NetError Connect(const MailPeer& peer, NetClock::time_point deadline,
                     const KeepWaiting& keepWaiting);
    NetError Failure(CURLcode code) const;
    NetError TakeOver(const MailPeer& peer);
    static int OnDebug(CURL* easy, curl_infotype type, char* data, size_t size, void* self);

    std::function<void(Direction, std::string_view)> onBeginning_;
    // Kept between connections: it holds the certificates that were read.
    MultiHandle multi_;
    EasyHandle easy_;
    UrlHandle url_;
    CurlList addresses_;
    std::string firstAddress_;  // of those that the server has
    std::string ownName_;       // of this machine, in full; looked up once
    bool ownNameKnown_ = false;
    std::string localName_;
    Security security_ = Security::Automatic;
    std::array<char, CURL_ERROR_SIZE> errorText_{};
    std::string early_;  // received while the connection was taken over
    curl_socket_t socket_ = CURL_SOCKET_BAD;
    bool heard_ = false;  // the server said something since this was last asked
    bool open_ = false;
    bool secured_ = false;
    bool local_ = false;
};

}  // namespace mailvane
