#pragma once

#include <curl/curl.h>

#include <memory>

namespace rk {

struct FreeCurl
{
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct FreeCurlMulti
{
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
struct FreeCurlList
{
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

// libcurl's handles, freed with their owner. CURL and CURLM are void, so one deleter cannot serve both.
using CurlEasy = std::unique_ptr<CURL, FreeCurl>;
using CurlMulti = std::unique_ptr<CURLM, FreeCurlMulti>;
using CurlList = std::unique_ptr<curl_slist, FreeCurlList>;

} // namespace rk
