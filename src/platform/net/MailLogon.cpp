#include "platform/net/MailLogon.h"

#include <algorithm>

#include "platform/net/mime/Base64.h"
#include "platform/net/mime/TextCoding.h"

namespace mailvane {

namespace {

bool HasWord(std::string_view text, std::string_view word) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        if (EqualsIgnoringCase(text.substr(0, end), word)) return true;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return false;
}

}  // namespace

std::vector<LogonLine> LogonLines(const MailAccount& account, std::string_view mechanisms) {
    if (account.User.empty()) return {};
    if (account.MailProtocol == MailAccount::Protocol::Pop3)
        return {{"USER " + account.User}, {"PASS " + account.Password, true}};
    if (HasWord(mechanisms, "PLAIN") && !HasWord(mechanisms, "LOGIN")) {
        const std::string both = '\0' + account.User + '\0' + account.Password;
        return {{"AUTH PLAIN " + Base64Line(both), true}};
    }
    return {{"AUTH LOGIN"}, {Base64Line(account.User)}, {Base64Line(account.Password), true}};
}

std::string WithoutSecret(std::string_view line) {
    const std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos) return "***";
    return std::string(line.substr(0, blank)) + " ***";
}

}  // namespace mailvane
