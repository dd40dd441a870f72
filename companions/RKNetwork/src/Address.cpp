#include "Address.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>

namespace rk {

namespace {

struct FreeUrl
{
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
using Url = std::unique_ptr<CURLU, FreeUrl>;

QByteArray part(const Url& url, CURLUPart which)
{
    char* text = nullptr;
    if (curl_url_get(url.get(), which, &text, CURLU_DEFAULT_PORT) != CURLUE_OK) {
        return {};
    }
    QByteArray result(text);
    curl_free(text);
    return result.toLower();
}

// "scheme host port"; empty when the URL cannot be read. libcurl reads it, so that what is compared is where
// the request goes.
QByteArray origin(const QByteArray& text)
{
    const Url url(curl_url());
    if (!url || curl_url_set(url.get(), CURLUPART_URL, text.constData(), CURLU_PATH_AS_IS) != CURLUE_OK) {
        return {};
    }
    return part(url, CURLUPART_SCHEME) + ' ' + part(url, CURLUPART_HOST) + ' ' + part(url, CURLUPART_PORT);
}

} // namespace

bool isWebAddress(const QByteArray& url)
{
    const QByteArray scheme = url.left(8).toLower();
    const int host = scheme.startsWith("https://") ? 8 : scheme.startsWith("http://") ? 7 : url.size();
    // Without a host libcurl would take the first segment of the path for one.
    return host < url.size() && !QByteArrayLiteral("/?#\\").contains(url.at(host)) && !url.contains('\0');
}

bool haveSameOrigin(const QByteArray& url, const QByteArray& other)
{
    // The usual case, without reading either: behind a "/" that comes after the host nothing changes the
    // host.
    if (isWebAddress(other) && other.endsWith('/') && url.startsWith(other)) {
        return true;
    }
    const QByteArray first = origin(url);
    return !first.isEmpty() && first == origin(other);
}

QString withoutSecrets(const QByteArray& url)
{
    const auto endsAuthority = [](char c) {
        return c == '/' || c == '?' || c == '#';
    };
    const int scheme = url.indexOf("://");
    const bool hasScheme = scheme >= 0 && std::none_of(url.begin(), url.begin() + scheme, endsAuthority);
    // An address whose scheme was forgotten begins with its user name.
    const int begin = hasScheme ? scheme + 3 : 0;
    const int end =
        static_cast<int>(std::find_if(url.begin() + begin, url.end(), endsAuthority) - url.begin());
    const int at = url.left(end).lastIndexOf('@');
    return QString::fromUtf8(at < begin ? url : url.left(begin) + url.mid(at + 1));
}

} // namespace rk
