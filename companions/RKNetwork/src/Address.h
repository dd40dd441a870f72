#pragma once

#include <QByteArray>
#include <QString>

namespace rk {

/// True for text that begins with "http://" or "https://", in any case, and a host, and holds no NUL.
bool isWebAddress(const QByteArray& url);

/// True when both have the same scheme, host and port (RFC 6454, 5); false when one cannot be read, unless
/// `url` only continues `other` behind its last "/": then both go to the same place or nowhere.
bool haveSameOrigin(const QByteArray& url, const QByteArray& other);

/// The URL without the user name and password before its host.
QString withoutSecrets(const QByteArray& url);

} // namespace rk
