#pragma once

#include "notify/Transport.h"

#include <curl/curl.h>

#include <array>
#include <memory>
#include <string>

namespace monitorservice {

/// One exchange with a server, whose certificate is verified where TLS is spoken. To be used by one thread.
class CurlTransfer
{
public:
    /// `caFile`: the certificates that are trusted; empty: the system's.
    CurlTransfer(const std::string& url, const std::string& caFile, const std::atomic<bool>& stop);

    /// Throws std::runtime_error when this libcurl does not know the option.
    template <typename Value>
    void set(CURLoption option, Value value)
    {
        check(curl_easy_setopt(m_easy.get(), option, value));
    }
    /// The bytes to be sent; they must outlive run().
    void setUpload(const std::string& bytes);

    /// Accepted when the server has accepted what was sent.
    SendResult run();
    /// Of the answer to HTTP.
    long status() const;

private:
    struct Cleanup
    {
        void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
    };

    static void check(CURLcode code);
    static int onProgress(void* stop, curl_off_t /*toReceive*/, curl_off_t /*received*/,
                          curl_off_t /*toSend*/, curl_off_t /*sent*/);
    static std::size_t onAnswer(char* bytes, std::size_t size, std::size_t count, void* ignored);
    static std::size_t onUpload(char* buffer, std::size_t size, std::size_t count, void* transfer);

    std::unique_ptr<CURL, Cleanup> m_easy;
    std::array<char, CURL_ERROR_SIZE> m_error{};
    const std::string* m_upload = nullptr;
    std::size_t m_uploaded = 0;
};

/// A list of texts as libcurl takes it.
class CurlList
{
public:
    void add(const std::string& line);
    const curl_slist* get() const { return m_lines.get(); }

private:
    struct Cleanup
    {
        void operator()(curl_slist* lines) const { curl_slist_free_all(lines); }
    };

    std::unique_ptr<curl_slist, Cleanup> m_lines;
};

/// To be called before the first thread that sends is started.
void prepareCurl();

} // namespace monitorservice
