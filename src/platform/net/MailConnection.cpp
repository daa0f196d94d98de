#include "platform/net/MailConnection.h"

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

#include "platform/net/dns/NameResolver.h"
#include "platform/net/dns/OwnName.h"

namespace mailvane {

namespace {

using std::chrono::seconds;

constexpr long Milliseconds = 1000;
constexpr std::size_t EarlyRoom = 4096;

/// On these ports servers speak TLS from the first byte (RFC 8314 section 7).
bool IsImplicitTls(const MailAccount& account) {
    if (account.ConnectionSecurity == Security::ImplicitTls) return true;
    const bool smtp = account.MailProtocol == MailAccount::Protocol::Smtp;
    return account.ConnectionSecurity == Security::Automatic &&
           account.MailPort == (smtp ? 465 : 995);
}

std::string WithoutBrackets(const std::string& host) {
    const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    return bracketed ? host.substr(1, host.size() - 2) : host;
}

std::string WithBrackets(const std::string& host) {
    return host.find(':') == std::string::npos ? host : '[' + host + ']';
}

bool IsLoopback(const std::string& address) {
    return address.compare(0, 4, "127.") == 0 || address == "::1" ||
           address.compare(0, 11, "::ffff:127.") == 0;
}

int CodeOf(CURLcode code) {
    switch (code) {
        case CURLE_COULDNT_RESOLVE_HOST:
            return net_error::NameNotFound;
        case CURLE_OPERATION_TIMEDOUT:
            return net_error::TimedOut;
        case CURLE_WEIRD_SERVER_REPLY:
        case CURLE_REMOTE_ACCESS_DENIED:
        case CURLE_LOGIN_DENIED:
            return net_error::BadReply;
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_SSL_CERTPROBLEM:
        case CURLE_SSL_CIPHER:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_SSL_ISSUER_ERROR:
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_USE_SSL_FAILED:
            return net_error::TlsFailed;
        case CURLE_RECV_ERROR:
        case CURLE_SEND_ERROR:
        case CURLE_GOT_NOTHING:
            return net_error::ConnectionLost;
        default:
            return net_error::ConnectFailed;
    }
}

}  // namespace

MailConnection::MailConnection(std::function<void(Direction, std::string_view)> onBeginning)
    : onBeginning_(std::move(onBeginning)), multi_(curl_multi_init()) {}

MailConnection::~MailConnection() {
    Close();
}

void MailConnection::Close() {
    // A removed handle closes its connection; a handle that may be used no more is removed first.
    if (easy_) curl_multi_remove_handle(multi_.get(), easy_.get());
    easy_.reset();
    url_.reset();
    addresses_.reset();
    early_.clear();
    socket_ = CURL_SOCKET_BAD;
    open_ = secured_ = local_ = false;
}

NetError MailConnection::Open(const MailPeer& peer, const KeepWaiting& keepWaiting) {
    Close();
    const std::string host = WithoutBrackets(peer.account.MailServer);
    const auto deadline = NetClock::now() + seconds(peer.connectTimeout);
    easy_.reset(curl_easy_init());
    errorText_.front() = '\0';
    security_ = peer.account.ConnectionSecurity;
    NetError error = SetUrl(peer.account, host);
    if (error.Ok()) error = Resolve(peer, host, deadline, keepWaiting);
    if (error.Ok()) {
        ChooseLocalName(peer, keepWaiting);
        SetOptions(peer);
        error = Connect(peer, deadline, keepWaiting);
    }
    if (error.Ok()) error = TakeOver(peer);
    if (error.Failed()) Close();
    return error;
}

NetError MailConnection::SetUrl(const MailAccount& account, const std::string& host) {
    const bool smtp = account.MailProtocol == MailAccount::Protocol::Smtp;
    const std::string scheme =
        std::string(smtp ? "smtp" : "pop3") + (IsImplicitTls(account) ? "s" : "");
    const std::string port = std::to_string(account.MailPort);
    url_.reset(curl_url());
    CURLU* url = url_.get();
    if (curl_url_set(url, CURLUPART_SCHEME, scheme.c_str(), 0) == CURLUE_OK &&
        curl_url_set(url, CURLUPART_HOST, WithBrackets(host).c_str(), 0) == CURLUE_OK &&
        curl_url_set(url, CURLUPART_PORT, port.c_str(), 0) == CURLUE_OK)
        return {};
    return {net_error::ConnectFailed, "\"" + account.MailServer + "\", port " + port +
                                          ", is no valid name of a mail server."};
}

NetError MailConnection::Resolve(const MailPeer& peer, const std::string& host,
                                 NetClock::time_point deadline, const KeepWaiting& keepWaiting) {
    const ResolvedName resolved = ResolveName(host, peer.dnsServers, deadline, keepWaiting);
    if (resolved.error.Failed()) return resolved.error;
    firstAddress_ = resolved.addresses.front();
    if (IsIpAddress(host)) return {};
    std::string entry = host + ':' + std::to_string(peer.account.MailPort);
    char separator = ':';
    for (const std::string& address : resolved.addresses) {
        entry += separator + WithBrackets(address);
        separator = ',';
    }
    addresses_.reset(curl_slist_append(nullptr, entry.c_str()));
    return {};
}

/// The full name of this machine; without one the address that it has on the way to the server
/// (RFC 5321 section 4.1.4).
void MailConnection::ChooseLocalName(const MailPeer& peer, const KeepWaiting& keepWaiting) {
    if (peer.account.MailProtocol != MailAccount::Protocol::Smtp) return;
    localName_ = HelloName(peer.account.LocalName);
    if (!localName_.empty()) return;
    if (!ownNameKnown_) ownName_ = HelloName(OwnFullName(keepWaiting));
    ownNameKnown_ = true;
    localName_ = ownName_.empty() ? OwnAddressLiteral(firstAddress_) : ownName_;
}

void MailConnection::SetOptions(const MailPeer& peer) {
    CURL* easy = easy_.get();
    // libcurl's EHLO tells the path of the URL.
    curl_url_set(url_.get(), CURLUPART_PATH, ("/" + localName_).c_str(), CURLU_URLENCODE);
    curl_easy_setopt(easy, CURLOPT_CURLU, url_.get());
    curl_easy_setopt(easy, CURLOPT_CONNECT_ONLY, 1L);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_PROXY, "");
    curl_easy_setopt(easy, CURLOPT_RESOLVE, addresses_.get());
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, errorText_.data());
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, peer.connectTimeout * Milliseconds);
    curl_easy_setopt(easy, CURLOPT_SERVER_RESPONSE_TIMEOUT, peer.answerTimeout + 60L);
    curl_easy_setopt(easy, CURLOPT_VERBOSE, 1L);
    curl_easy_setopt(easy, CURLOPT_DEBUGFUNCTION, &MailConnection::OnDebug);
    curl_easy_setopt(easy, CURLOPT_DEBUGDATA, this);

    long useSsl = CURLUSESSL_TRY;
    if (security_ == Security::RequireStartTls) useSsl = CURLUSESSL_ALL;
    if (security_ == Security::None) useSsl = CURLUSESSL_NONE;
    const MailAccount& account = peer.account;
    curl_easy_setopt(easy, CURLOPT_USE_SSL, useSsl);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, account.VerifyCertificate ? 1L : 0L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, account.VerifyCertificate ? 2L : 0L);
    if (!account.CertificateAuthorities.empty()) {
        curl_easy_setopt(easy, CURLOPT_CAINFO, account.CertificateAuthorities.c_str());
        curl_easy_setopt(easy, CURLOPT_CAPATH, nullptr);
    }
}

int MailConnection::OnDebug(CURL* /*easy*/, curl_infotype type, char* data, size_t size,
                            void* self) {
    MailConnection& connection = *static_cast<MailConnection*>(self);
    if (type == CURLINFO_HEADER_IN) {
        connection.heard_ = true;
        connection.onBeginning_(Direction::Received, {data, size});
    } else if (type == CURLINFO_HEADER_OUT) {
        connection.onBeginning_(Direction::Sent, {data, size});
    }
    return 0;
}

NetError MailConnection::Connect(const MailPeer& peer, NetClock::time_point deadline,
                                 const KeepWaiting& keepWaiting) {
    curl_multi_add_handle(multi_.get(), easy_.get());
    heard_ = false;
    bool connected = false;
    int running = 1;
    while (true) {
        curl_multi_perform(multi_.get(), &running);
        if (running == 0) break;
        if (!keepWaiting()) return {net_error::Canceled, "The connection was canceled."};
        curl_off_t connectTime = 0;
        curl_easy_getinfo(easy_.get(), CURLINFO_CONNECT_TIME_T, &connectTime);
        if (!connected && connectTime > 0) {
            // From here on the server's patience counts, not that of connecting.
            connected = heard_ = true;
            curl_easy_setopt(easy_.get(), CURLOPT_CONNECTTIMEOUT_MS, 24L * 3600 * Milliseconds);
        }
        if (std::exchange(heard_, false)) {
            deadline = NetClock::now() + seconds(peer.answerTimeout);
        }
        if (NetClock::now() >= deadline) {
            return {net_error::TimedOut,
                    connected ? "The server did not answer in time."
                              : "Connecting to " + peer.account.MailServer + " took too long."};
        }
        curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(WaitStep.count()), nullptr);
    }
    int left = 0;
    const CURLMsg* message = curl_multi_info_read(multi_.get(), &left);
    const CURLcode code = message == nullptr ? CURLE_COULDNT_CONNECT : message->data.result;
    return code == CURLE_OK ? NetError{} : Failure(code);
}

NetError MailConnection::Failure(CURLcode code) const {
    const std::string text =
        errorText_.front() == '\0' ? curl_easy_strerror(code) : errorText_.data();
    // Two of libcurl's texts for the same code, in the words used everywhere else.
    if (text.starts_with("response reading failed")) {
        return {net_error::ConnectionLost, "The server closed the connection."};
    }
    if (text.starts_with("Too large response headers")) {
        return {net_error::BadReply, "The server's answer has no end."};
    }
    return {CodeOf(code), text.ends_with('.') ? text : text + "."};
}

NetError MailConnection::TakeOver(const MailPeer& peer) {
    CURL* easy = easy_.get();
    curl_easy_setopt(easy, CURLOPT_VERBOSE, 0L);
    if (curl_easy_getinfo(easy, CURLINFO_ACTIVESOCKET, &socket_) != CURLE_OK) {
        return {net_error::ConnectFailed, "The connection was closed by the server."};
    }
    // The first receive ties the handle to its connection again; only then it knows of its TLS.
    early_.resize(EarlyRoom);
    std::size_t count = 0;
    curl_easy_recv(easy, early_.data(), early_.size(), &count);
    early_.resize(count);
    const curl_tlssessioninfo* tls = nullptr;
    curl_easy_getinfo(easy, CURLINFO_TLS_SSL_PTR, &tls);
    secured_ = tls != nullptr && tls->internals != nullptr;
    if (!secured_ && (security_ == Security::RequireStartTls || IsImplicitTls(peer.account))) {
        return {net_error::TlsFailed, "The server does not secure the connection."};
    }
    const char* server = nullptr;
    const char* own = nullptr;
    curl_easy_getinfo(easy, CURLINFO_PRIMARY_IP, &server);
    curl_easy_getinfo(easy, CURLINFO_LOCAL_IP, &own);
    if (server != nullptr && own != nullptr) {
        local_ = IsLoopback(server) || std::strcmp(server, own) == 0;
    }
    open_ = true;
    return {};
}

NetError MailConnection::MayCarrySecrets() const {
    if (!open_) return {net_error::NotConnected, "Socket is not connected."};
    if (secured_ || local_ || security_ == Security::None) return {};
    return {net_error::LogonImpossible,
            "The password was not sent, because the connection to the server is not secured."};
}

MailConnection::Outcome MailConnection::Send(std::string_view bytes, std::size_t& sent) {
    sent = 0;
    switch (curl_easy_send(easy_.get(), bytes.data(), bytes.size(), &sent)) {
        case CURLE_OK:
            return Outcome::Done;
        case CURLE_AGAIN:
            return Outcome::Again;
        default:
            return Outcome::Closed;
    }
}

MailConnection::Outcome MailConnection::Receive(char* buffer, std::size_t size,
                                                std::size_t& received) {
    if (!early_.empty()) {
        received = std::min(size, early_.size());
        std::memcpy(buffer, early_.data(), received);
        early_.erase(0, received);
        return Outcome::Done;
    }
    received = 0;
    switch (curl_easy_recv(easy_.get(), buffer, size, &received)) {
        case CURLE_OK:
            return received == 0 ? Outcome::Closed : Outcome::Done;
        case CURLE_AGAIN:
            return Outcome::Again;
        default:
            return Outcome::Closed;
    }
}

void MailConnection::Wait(bool forSending, int milliseconds) const {
    pollfd polled{socket_, static_cast<short>(forSending ? POLLIN | POLLOUT : POLLIN), 0};
    poll(&polled, 1, milliseconds);
}

}  // namespace mailvane
