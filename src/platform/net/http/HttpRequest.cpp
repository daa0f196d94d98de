#include "platform/net/http/HttpRequest.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/net/CurlHandles.h"
#include "platform/net/dns/NameResolver.h"

namespace mailvane {

namespace {

using std::chrono::seconds;

constexpr int MostRedirections = 10;

/// Characters that no URL may have, encoded.
std::string Escaped(std::string_view text) {
    constexpr std::string_view Digits = "0123456789ABCDEF";
    std::string result;
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (code > ' ' && code < 0x7F && std::string_view("\"<>#").find(c) == std::string::npos) {
            result += c;
        } else {
            result.append(1, '%').append(1, Digits[code >> 4]).append(1, Digits[code & 15]);
        }
    }
    return result;
}

/// The URL on the wire, without its fragment.
std::string Target(const HttpRequest& request) {
    std::string url = Escaped(std::string_view(request.url).substr(0, request.url.find('#')));
    const std::size_t scheme = url.find("://");
    if (scheme == std::string::npos || scheme > url.find_first_of("/?")) url.insert(0, "http://");
    if (request.method == HttpMethod::Post || request.query.empty()) return url;
    return url + (url.find('?') == std::string::npos ? '?' : '&') + Escaped(request.query);
}

/// One piece of a URL; "" when it is no URL or has none.
std::string UrlPart(const std::string& url, CURLUPart part) {
    CURLU* parsed = curl_url();
    char* text = nullptr;
    std::string result;
    if (curl_url_set(parsed, CURLUPART_URL, url.c_str(), 0) == CURLUE_OK &&
        curl_url_get(parsed, part, &text, CURLU_DEFAULT_PORT) == CURLUE_OK)
        result = text;
    curl_free(text);
    curl_url_cleanup(parsed);
    return result;
}

std::string WithoutLineEnds(std::string text) {
    std::erase_if(text, [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
    return text;
}

int CodeOf(CURLcode code) {
    switch (code) {
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_RESOLVE_PROXY:
            return net_error::NameNotFound;
        case CURLE_OPERATION_TIMEDOUT:
            return net_error::TimedOut;
        case CURLE_WEIRD_SERVER_REPLY:
        case CURLE_UNSUPPORTED_PROTOCOL:
            return net_error::BadReply;
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_PEER_FAILED_VERIFICATION:
            return net_error::TlsFailed;
        case CURLE_RECV_ERROR:
        case CURLE_SEND_ERROR:
        case CURLE_GOT_NOTHING:
        case CURLE_PARTIAL_FILE:
            return net_error::ConnectionLost;
        default:
            return net_error::ConnectFailed;
    }
}

/// One question and its answer.
class Exchange {
public:
    Exchange(const HttpRequest& request, HttpMethod method, std::string url,
             const KeepWaiting& keepWaiting)
        : request_(request), method_(method), url_(std::move(url)), keepWaiting_(keepWaiting) {}
    ~Exchange() { curl_multi_remove_handle(multi_.get(), easy_.get()); }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

    NetError Run();
    int Status() const { return static_cast<int>(Number(CURLINFO_RESPONSE_CODE)); }
    /// Where the server directs to; "" when the answer stands.
    std::string Direction() const;
    std::string Content() && { return std::move(content_); }

private:
    NetError Resolve();
    void SetOptions();
    void SetMethod();
    NetError Perform();
    NetError Result() const;
    long Number(CURLINFO info) const;
    curl_off_t BytesMoved() const;
    static size_t OnContent(char* data, size_t size, size_t count, void* self);
    static size_t OnHead(char* data, size_t size, size_t count, void* self);
    size_t Keep(std::string_view bytes);

    const HttpRequest& request_;
    HttpMethod method_;
    std::string url_;
    std::string body_ = Escaped(request_.query);
    const KeepWaiting& keepWaiting_;
    NetClock::time_point deadline_ = NetClock::now() + seconds(request_.connectTimeout);
    MultiHandle multi_{curl_multi_init()};
    EasyHandle easy_{curl_easy_init()};
    CurlList addresses_;
    // No question whether the body may come: it comes.
    CurlList headers_{curl_slist_append(nullptr, "Expect:")};
    std::array<char, CURL_ERROR_SIZE> errorText_{};
    std::string content_;
    bool tooLong_ = false;
};

NetError Exchange::Run() {
    NetError error = Resolve();
    if (error.Failed()) return error;
    SetOptions();
    SetMethod();
    return Perform();
}

/// A look-up inside libcurl could not be ended. Through a proxy only the proxy's name is needed.
NetError Exchange::Resolve() {
    const bool proxied = !request_.proxyServer.empty();
    const std::string host = proxied ? request_.proxyServer : UrlPart(url_, CURLUPART_HOST);
    const std::string port =
        proxied ? std::to_string(request_.proxyPort) : UrlPart(url_, CURLUPART_PORT);
    if (host.empty())
        return {net_error::ConnectFailed, "\"" + request_.url + "\" is no valid web address."};
    if (host.front() == '[' || IsIpAddress(host)) return {};
    const ResolvedName resolved = ResolveName(host, request_.dnsServers, deadline_, keepWaiting_);
    if (resolved.error.Failed()) return resolved.error;
    std::string entry = host + ':' + port;
    char separator = ':';
    for (const std::string& address : resolved.addresses) {
        const bool bracketed = address.find(':') != std::string::npos;
        entry += separator + (bracketed ? '[' + address + ']' : address);
        separator = ',';
    }
    addresses_.reset(curl_slist_append(nullptr, entry.c_str()));
    return {};
}

void Exchange::SetOptions() {
    CURL* easy = easy_.get();
    curl_easy_setopt(easy, CURLOPT_URL, url_.c_str());
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_PROXY, request_.proxyServer.c_str());
    curl_easy_setopt(easy, CURLOPT_PROXYPORT, static_cast<long>(request_.proxyPort));
    curl_easy_setopt(easy, CURLOPT_RESOLVE, addresses_.get());
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_USERAGENT, "Mailvane");
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers_.get());
    const std::string referer = WithoutLineEnds(request_.referer);
    if (!referer.empty()) curl_easy_setopt(easy, CURLOPT_REFERER, referer.c_str());
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, request_.connectTimeout * 1000L);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, errorText_.data());
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &Exchange::OnContent);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
}

void Exchange::SetMethod() {
    CURL* easy = easy_.get();
    if (method_ == HttpMethod::Head) {
        curl_easy_setopt(easy, CURLOPT_NOBODY, 1L);
        curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &Exchange::OnHead);
        curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    } else if (method_ == HttpMethod::Post) {
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body_.size()));
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, body_.c_str());
    }
}

/// Until the connection stands its own time-out counts, and from then on the server's patience: the
/// time since bytes last went either way.
NetError Exchange::Perform() {
    curl_multi_add_handle(multi_.get(), easy_.get());
    bool connected = false;
    curl_off_t moved = 0;
    int running = 1;
    while (true) {
        curl_multi_perform(multi_.get(), &running);
        if (running == 0) return Result();
        if (!keepWaiting_()) return {net_error::Canceled, "The request was canceled."};
        if (const curl_off_t now = BytesMoved(); now != moved) {
            moved = now;
            connected = true;
            deadline_ = NetClock::now() + seconds(request_.answerTimeout);
        }
        if (NetClock::now() >= deadline_)
            return {net_error::TimedOut, connected ? "The server did not answer in time."
                                                   : "Connecting to the server took too long."};
        curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(WaitStep.count()), nullptr);
    }
}

NetError Exchange::Result() const {
    if (tooLong_) return {net_error::TooLarge, "The server's answer is too long."};
    int left = 0;
    const CURLMsg* message = curl_multi_info_read(multi_.get(), &left);
    const CURLcode code = message == nullptr ? CURLE_COULDNT_CONNECT : message->data.result;
    if (code == CURLE_OK) return {};
    const std::string text =
        errorText_.front() == '\0' ? curl_easy_strerror(code) : errorText_.data();
    return {CodeOf(code), text.ends_with('.') ? text : text + "."};
}

long Exchange::Number(CURLINFO info) const {
    long number = 0;
    curl_easy_getinfo(easy_.get(), info, &number);
    return number;
}

curl_off_t Exchange::BytesMoved() const {
    curl_off_t down = 0;
    curl_off_t up = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_SIZE_DOWNLOAD_T, &down);
    curl_easy_getinfo(easy_.get(), CURLINFO_SIZE_UPLOAD_T, &up);
    return down + up + Number(CURLINFO_HEADER_SIZE) + Number(CURLINFO_REQUEST_SIZE);
}

std::string Exchange::Direction() const {
    constexpr std::array Directing{301, 302, 303, 307, 308};
    if (std::ranges::find(Directing, Status()) == Directing.end()) return {};
    const char* url = nullptr;
    curl_easy_getinfo(easy_.get(), CURLINFO_REDIRECT_URL, &url);
    return url == nullptr ? std::string() : std::string(url);
}

size_t Exchange::Keep(std::string_view bytes) {
    constexpr std::size_t Kilobyte = 1000;
    tooLong_ = content_.size() + bytes.size() >
               static_cast<std::size_t>(request_.longestAnswer) * Kilobyte;
    if (tooLong_) return 0;
    content_.append(bytes);
    return bytes.size();
}

size_t Exchange::OnContent(char* data, size_t size, size_t count, void* self) {
    return static_cast<Exchange*>(self)->Keep({data, size * count});
}

/// A head that only announces another one, or that of a proxy's, is not the answer's.
size_t Exchange::OnHead(char* data, size_t size, size_t count, void* self) {
    auto& exchange = *static_cast<Exchange*>(self);
    const std::string_view line(data, size * count);
    if (line.starts_with("HTTP/")) exchange.content_.clear();
    return exchange.Keep(line);
}

/// Post becomes Get where the server says to look elsewhere, and stays where the script has moved.
HttpMethod MethodBehind(HttpMethod method, int status) {
    const bool moved = status == 307 || status == 308;
    return method == HttpMethod::Post && !moved ? HttpMethod::Get : method;
}

}  // namespace

HttpAnswer SendHttpRequest(const HttpRequest& request, const KeepWaiting& keepWaiting) {
    HttpMethod method = request.method;
    std::string url = Target(request);
    HttpAnswer answer;
    for (int directed = 0; directed <= MostRedirections; ++directed) {
        Exchange exchange(request, method, url, keepWaiting);
        answer.error = exchange.Run();
        answer.status = exchange.Status();
        url = exchange.Direction();
        method = MethodBehind(method, answer.status);
        if (answer.error.Ok() && !url.empty()) continue;
        if (answer.error.Ok()) answer.content = std::move(exchange).Content();
        return answer;
    }
    answer.error = {net_error::BadReply, "The server directs to ever more other addresses."};
    return answer;
}

}  // namespace mailvane
