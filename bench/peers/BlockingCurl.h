#pragma once

#include <curl/curl.h>

#include <memory>
#include <stdexcept>
#include <string>

/// HTTP as a command-line program would do it: libcurl's easy interface, one kept connection, the caller
/// blocks.
class BlockingCurl
{
public:
    BlockingCurl()
        : m_easy(curl_easy_init()), m_json(curl_slist_append(nullptr, "Content-Type: application/json"))
    {
        curl_easy_setopt(m_easy.get(), CURLOPT_NOPROXY, "*");
        curl_easy_setopt(m_easy.get(), CURLOPT_WRITEFUNCTION, &append);
        curl_easy_setopt(m_easy.get(), CURLOPT_WRITEDATA, &m_body);
    }

    /// The answer's body, valid until the next call. Throws when there is none.
    const std::string& get(const std::string& url)
    {
        curl_easy_setopt(m_easy.get(), CURLOPT_HTTPGET, 1L);
        return perform(url);
    }
    const std::string& post(const std::string& url, const std::string& body)
    {
        curl_easy_setopt(m_easy.get(), CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
        curl_easy_setopt(m_easy.get(), CURLOPT_POSTFIELDS, body.data());
        curl_easy_setopt(m_easy.get(), CURLOPT_HTTPHEADER, m_json.get());
        return perform(url);
    }

private:
    struct Free
    {
        void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    static size_t append(char* data, size_t size, size_t count, void* body)
    {
        static_cast<std::string*>(body)->append(data, size * count);
        return size * count;
    }

    const std::string& perform(const std::string& url)
    {
        m_body.clear();
        curl_easy_setopt(m_easy.get(), CURLOPT_URL, url.c_str());
        const CURLcode code = curl_easy_perform(m_easy.get());
        if (code != CURLE_OK) {
            throw std::runtime_error(curl_easy_strerror(code));
        }
        return m_body;
    }

    std::unique_ptr<CURL, Free> m_easy;
    std::unique_ptr<curl_slist, Free> m_json;
    std::string m_body;
};
