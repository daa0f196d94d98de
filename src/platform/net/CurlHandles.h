#pragma once

#include <curl/curl.h>

#include <memory>

namespace mailvane {

struct CloseEasy {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct CloseMulti {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
struct FreeUrl {
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

// libcurl's handles, given back when their owner goes.
using EasyHandle = std::unique_ptr<CURL, CloseEasy>;
using MultiHandle = std::unique_ptr<CURLM, CloseMulti>;
using UrlHandle = std::unique_ptr<CURLU, FreeUrl>;
using CurlList = std::unique_ptr<curl_slist, FreeList>;

}  // namespace mailvane
