#include "HttpMessages.h"

namespace rk {

QByteArray HttpAnswer::header(const char* name) const
{
    for (const auto& [key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0) {
            return value;
        }
    }
    return {};
}

void HttpAnswer::fail(QNetworkReply::NetworkError code, const QString& text)
{
    isWhole = false;
    body.clear();
    error = code;
    errorText = text;
}

} // namespace rk
