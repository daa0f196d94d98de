#pragma once

#include <string>

#include "platform/net/NetError.h"
#include "platform/net/NetWait.h"

namespace mailvane {

enum class HttpMethod { Get, Post, Head };

/// One request to a web server. The query goes behind the URL, or is the body of Post; characters
/// in it that no URL may have are encoded, all else goes as it stands.
struct HttpRequest {
    std::string url;  ///< http or https; http when it names no scheme
    HttpMethod method = HttpMethod::Get;
    std::string referer;
    std::string query;
    std::string proxyServer;  ///< "": straight to the server
    int proxyPort = 80;
    std::string dnsServers;      ///< as ResolveName takes them
    int connectTimeout = 30;     ///< seconds, for the name and the connection
    int answerTimeout = 300;     ///< seconds in which nothing comes from the server
    int longestAnswer = 64'000;  ///< kilobytes; a longer one fails
};

struct HttpAnswer {
    NetError error;       ///< an answer that reports an error is none
    int status = 0;       ///< of the last answer, 0 without one
    std::string content;  ///< the body; the head for HttpMethod::Head
};

/// Sends the request, follows where the server directs it, and waits for the answer. `keepWaiting`
/// is called meanwhile; false ends it with Canceled.
HttpAnswer SendHttpRequest(const HttpRequest& request, const KeepWaiting& keepWaiting);

}  // namespace mailvane
