#include "notify/CurlTransfer.h"

#include <algorithm>
#include <stdexcept>

namespace monitorservice {

namespace {

constexpr long connectSeconds = 15;
constexpr long transferSeconds = 60;

} // namespace

void prepareCurl()
{
    static const CURLcode prepared = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (prepared != CURLE_OK) {
        throw std::runtime_error(std::string("libcurl cannot be used: ") + curl_easy_strerror(prepared));
    }
}

CurlTransfer::CurlTransfer(const std::string& url, const std::string& caFile, const std::atomic<bool>& stop)
    : m_easy(curl_easy_init())
{
    if (!m_easy) {
        throw std::runtime_error("libcurl cannot be used");
    }
    set(CURLOPT_ERRORBUFFER, m_error.data());
    set(CURLOPT_URL, url.c_str());
    set(CURLOPT_PROTOCOLS_STR, "smtp,smtps,http,https");
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // the end does not wait for a name server
    set(CURLOPT_FORBID_REUSE, 1L);
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    if (!caFile.empty()) {
        set(CURLOPT_CAINFO, caFile.c_str());
    }
    set(CURLOPT_CONNECTTIMEOUT, connectSeconds);
    set(CURLOPT_TIMEOUT, transferSeconds);
    set(CURLOPT_NOPROGRESS, 0L);
    set(CURLOPT_XFERINFOFUNCTION, &CurlTransfer::onProgress);
    set(CURLOPT_XFERINFODATA, const_cast<std::atomic<bool>*>(&stop));
    set(CURLOPT_WRITEFUNCTION, &CurlTransfer::onAnswer);
}

void CurlTransfer::check(CURLcode code)
{
    if (code != CURLE_OK) {
        throw std::runtime_error(std::string("libcurl: ") + curl_easy_strerror(code));
    }
}

void CurlTransfer::setUpload(const std::string& bytes)
{
    m_upload = &bytes;
    set(CURLOPT_UPLOAD, 1L);
    set(CURLOPT_READFUNCTION, &CurlTransfer::onUpload);
    set(CURLOPT_READDATA, this);
}

SendResult CurlTransfer::run()
{
    const CURLcode code = curl_easy_perform(m_easy.get());
    if (code == CURLE_OK) {
        return {SendResult::Outcome::Accepted};
    }
    if (code == CURLE_ABORTED_BY_CALLBACK) {
        return {SendResult::Outcome::Stopped};
    }
    const bool isExplained = m_error.front() != '\0';
    return {SendResult::Outcome::Failed, isExplained ? m_error.data() : curl_easy_strerror(code)};
}

long CurlTransfer::status() const
{
    long status = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
    return status;
}

int CurlTransfer::onProgress(void* stop, curl_off_t /*toReceive*/, curl_off_t /*received*/,
                             curl_off_t /*toSend*/, curl_off_t /*sent*/)
{
    return *static_cast<const std::atomic<bool>*>(stop) ? 1 : 0;
}

// What a server says besides its status is nothing that anybody reads.
std::size_t CurlTransfer::onAnswer(char* /*bytes*/, std::size_t size, std::size_t count, void* /*ignored*/)
{
    return size * count;
}

std::size_t CurlTransfer::onUpload(char* buffer, std::size_t size, std::size_t count, void* transfer)
{
    auto& self = *static_cast<CurlTransfer*>(transfer);
    const std::size_t length = std::min(size * count, self.m_upload->size() - self.m_uploaded);
    std::copy_n(self.m_upload->data() + self.m_uploaded, length, buffer);
    self.m_uploaded += length;
    return length;
}

void CurlList::add(const std::string& line)
{
    curl_slist* const longer = curl_slist_append(m_lines.get(), line.c_str());
    if (longer == nullptr) {
        throw std::bad_alloc();
    }
    static_cast<void>(m_lines.release()); // it is the beginning of the longer one
    m_lines.reset(longer);
}

} // namespace monitorservice
