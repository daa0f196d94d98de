#include "merge/tags/CgiTag.h"

#include "core/Paths.h"
#include "core/settings/Proxy.h"
#include "core/text/Text.h"
#include "merge/tags/FieldTags.h"
#include "platform/net/http/HttpRequest.h"

namespace mailvane {

namespace {

constexpr const char* UnsavedResultFile = "/tmp.tmp";

HttpMethod MethodOf(const std::string& name) {
    if (EqualText(name, "post")) return HttpMethod::Post;
    return EqualText(name, "head") ? HttpMethod::Head : HttpMethod::Get;
}

}  // namespace

std::string TagEntry(const CgiTagRecord& tag) {
    return std::to_string(tag.TagNumber) + ". execute " +
           FileNameFromPath(tag.ScriptUrl, "/", false) +
           (tag.IncludeResult ? " CGI script and include results."
                              : " CGI script and do not include results.");
}

std::string CgiTag::FindCgiTag(const MessageRecord& record) {
    auto number = FirstTagNumber(record.Body, CgiTagKind);
    if (!number) number = FirstTagNumber(record.HTMLCode, CgiTagKind);
    if (!number) return NoExecuteTag;
    record_ = LoadTag<CgiTagRecord>(setting_.wb, *number, setting_.missingFile);
    return *number;
}

void CgiTag::Find(MessageRecord& message) {
    if (FindCgiTag(message) != NoExecuteTag) found_ = true;
}

bool CgiTag::FillIn(MessageRecord&, const TagList::ValueOf* row) {
    if (!row || !found_) return true;
    ValuesWithoutNul values(*row);
    std::string encoded;
    return setting_.columns.Replace(record_.QueryString,
                                    [&](std::size_t column) -> const std::string* {
                                        const std::string* value = values(column);
                                        if (value == nullptr) return nullptr;
                                        encoded = UrlEncode(*value);
                                        return &encoded;
                                    });
}

void CgiTag::Run(const std::function<bool()>& keepWaiting) const {
    if (!found_) return;
    ShowTagStatus(setting_.wb, "Executing CGI script...");
    HttpRequest request;
    request.url = record_.ScriptUrl;
    request.method = MethodOf(record_.RequestMethod);
    request.referer = record_.Referer;
    request.query = record_.QueryString;
    if (const ProxySettings proxy = ReadProxySettings(setting_.wb); proxy.useProxy) {
        request.proxyServer = proxy.server;
        if (IsNumeric(proxy.port)) request.proxyPort = static_cast<int>(NumberOf(proxy.port));
    }
    const HttpAnswer answer = SendHttpRequest(request, keepWaiting);
    // Nobody reads the file on the way, and the message goes out without it too.
    if (answer.error.Ok())
        WriteFileText(record_.SaveResult ? record_.ResultFile
                                         : setting_.wb.platform.programFolder + UnsavedResultFile,
                      answer.content);
}

std::string CgiTag::Objection(const std::string& text) const {
    const auto number = FirstTagNumber(text, CgiTagKind);
    if (!number) return {};
    const CgiTagRecord record = LoadTag<CgiTagRecord>(setting_.wb, *number, MissingTagFile::Leave);
    if (!record.ScriptUrl.empty()) return {};
    return "The tag " + ExecuteTagText(CgiTagKind, *number) + " has no script";
}

}  // namespace mailvane
