#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/net/LoopbackServer.h"
#include "platform/net/http/HttpRequest.h"

namespace mailvane {
namespace {

using testing::HasSubstr;
using testing::Not;

struct Heard {
    std::string line;
    std::string head;
    std::string body;
};

Heard ReadRequest(test::Peer& peer) {
    Heard heard;
    heard.line = peer.ReadLine().value_or("");
    std::size_t length = 0;
    while (const auto line = peer.ReadLine()) {
        if (line->empty()) break;
        if (line->starts_with("Content-Length: ")) length = std::stoul(line->substr(16));
        heard.head += *line + "\n";
    }
    heard.body = peer.ReadBytes(length);
    return heard;
}

/// Answers each request with the next of its answers and hangs up.
struct WebServer {
    explicit WebServer(std::vector<std::string> theAnswers) : answers(std::move(theAnswers)) {}
    std::string Url(const std::string& path) const {
        return "http://127.0.0.1:" + std::to_string(server.Port()) + path;
    }

    std::vector<std::string> answers;
    std::vector<Heard> heard;
    test::LoopbackServer server{[this](test::Peer& peer, int number) {
        heard.push_back(ReadRequest(peer));
        peer.Send(answers.at(static_cast<std::size_t>(number)));
    }};
};

const std::string Fine = "HTTP/1.1 200 OK\r\nContent-Length: 4\r\nX: y\r\n\r\nfine";
const KeepWaiting Patient = [] { return true; };

TEST(HttpRequest, SendsWhatItIsTold) {
    const struct {
        HttpMethod method;
        const char* path;
        const char* query;
        const char* line;
        const char* body;
        const char* content = "fine";
    } rows[] = {
        {HttpMethod::Get, "/a.pl", "x=1&y=%26+z", "GET /a.pl?x=1&y=%26+z HTTP/1.1", ""},
        {HttpMethod::Get, "", "", "GET / HTTP/1.1", ""},
        {HttpMethod::Get, "/a?k=v#top", "x=1", "GET /a?k=v&x=1 HTTP/1.1", ""},
        {HttpMethod::Get, "/a b", "n=[First Name]#\"\xC3\xA4",
         "GET /a%20b?n=[First%20Name]%23%22%C3%A4 HTTP/1.1", ""},
        {HttpMethod::Get, "/a", "x\r\nHost: evil", "GET /a?x%0D%0AHost:%20evil HTTP/1.1", ""},
        {HttpMethod::Post, "/a?k=v", "x=1&y=%26", "POST /a?k=v HTTP/1.1", "x=1&y=%26"},
        {HttpMethod::Head, "/a", "x=1", "HEAD /a?x=1 HTTP/1.1", "",
         "HTTP/1.1 200 OK\r\nContent-Length: 4\r\nX: y\r\n\r\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        WebServer web({row.method == HttpMethod::Head ? Fine.substr(0, Fine.size() - 4) : Fine});
        HttpRequest request{.url = web.Url(row.path), .method = row.method, .query = row.query};
        request.referer = "http://from/\r\nEvil: 1";
        const HttpAnswer answer = SendHttpRequest(request, Patient);
        EXPECT_TRUE(answer.error.Ok()) << answer.error.description;
        EXPECT_EQ(answer.status, 200);
        EXPECT_EQ(answer.content, row.content);
        ASSERT_EQ(web.heard.size(), 1u);
        EXPECT_EQ(web.heard[0].line, row.line);
        EXPECT_EQ(web.heard[0].body, row.body);
        EXPECT_THAT(web.heard[0].head, HasSubstr("Referer: http://from/Evil: 1\n"));
        EXPECT_THAT(web.heard[0].head, Not(HasSubstr("Expect:")));
    }
}

TEST(HttpRequest, FollowsDirections) {
    const std::string length = "Content-Length: 0\r\n\r\n";
    WebServer web({"HTTP/1.1 307 x\r\nLocation: /b?c=d\r\n" + length,
                   "HTTP/1.1 303 x\r\nLocation: /e\r\n" + length, Fine});
    const HttpAnswer answer = SendHttpRequest(
        {.url = web.Url("/a"), .method = HttpMethod::Post, .query = "q=1"}, Patient);
    EXPECT_EQ(answer.content, "fine");
    ASSERT_EQ(web.heard.size(), 3u);
    EXPECT_EQ(web.heard[1].line + web.heard[1].body, "POST /b?c=d HTTP/1.1q=1");
    EXPECT_EQ(web.heard[2].line + web.heard[2].body, "GET /e HTTP/1.1");

    WebServer circle({20, "HTTP/1.1 302 x\r\nLocation: /a\r\n" + length});
    EXPECT_EQ(SendHttpRequest({.url = circle.Url("/a")}, Patient).error.code, net_error::BadReply);
    EXPECT_EQ(circle.heard.size(), 11u);
    WebServer file({"HTTP/1.1 302 x\r\nLocation: file:///etc/hostname\r\n" + length});
    EXPECT_TRUE(SendHttpRequest({.url = file.Url("/a")}, Patient).error.Failed());
}

TEST(HttpRequest, GoesThroughAProxyAndTakesReportsOfErrorsForAnswers) {
    WebServer web({"HTTP/1.1 404 Gone\r\nContent-Length: 2\r\n\r\nno"});
    HttpRequest request{.url = "somewhere.invalid/a?u=http://b", .proxyServer = "127.0.0.1"};
    request.proxyPort = web.server.Port();
    const HttpAnswer answer = SendHttpRequest(request, Patient);
    EXPECT_TRUE(answer.error.Ok());
    EXPECT_EQ(answer.status, 404);
    EXPECT_EQ(answer.content, "no");
    EXPECT_EQ(web.heard.at(0).line, "GET http://somewhere.invalid/a?u=http://b HTTP/1.1");
}

TEST(HttpRequest, RefusesWhatIsNoWebAddress) {
    for (const char* url :
         {"", "http://", "file:///etc/passwd", "ftp://127.0.0.1/x", "http://a b/"})
        EXPECT_TRUE(SendHttpRequest({.url = url}, Patient).error.Failed()) << url;
}

TEST(HttpRequest, GivesUp) {
    const auto silent = [](test::Peer& peer, int) {
        while (peer.ReadLine())
            continue;
    };
    const auto answerWith = [](const std::string& text) {
        return [text](test::Peer& peer, int) {
            ReadRequest(peer);
            peer.Send(text);
        };
    };
    const struct {
        const char* name;
        test::LoopbackServer::Talk talk;
        int calls;  ///< of keepWaiting, before it says no
        int code;
    } rows[] = {
        {"a server without an answer", silent, 1000, net_error::TimedOut},
        {"the user", silent, 2, net_error::Canceled},
        {"a server that hangs up", answerWith(""), 1000, net_error::ConnectionLost},
        {"an answer cut off", answerWith(Fine.substr(0, Fine.size() - 1)), 1000,
         net_error::ConnectionLost},
        {"an answer without end", answerWith("HTTP/1.1 200 OK\r\n\r\n" + std::string(5000, 'x')),
         1000, net_error::TooLarge},
    };
    for (const auto& row : rows) {
        test::LoopbackServer server(row.talk);
        HttpRequest request{.url = "127.0.0.1:" + std::to_string(server.Port())};
        request.answerTimeout = 1;
        request.longestAnswer = 4;
        int calls = 0;
        const HttpAnswer answer = SendHttpRequest(request, [&] { return ++calls < row.calls; });
        EXPECT_EQ(answer.error.code, row.code) << row.name << ": " << answer.error.description;
        EXPECT_EQ(answer.content, "") << row.name;
    }
}

}  // namespace
}  // namespace mailvane
