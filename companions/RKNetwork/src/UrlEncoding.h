#pragma once

#include <QByteArray>
#include <QString>

namespace rk {

/// The wire form of a URL given as raw text: `base` stands as it is, what follows is percent-encoded
/// (RFC 3986) so that each character of a path or a value arrives as it was typed. A URL that does not begin
/// with `base` keeps its scheme and authority instead.
///
/// Raw text cannot say where a value ends, so the text is read as the service's resources are written:
/// - the path goes up to the first "?" that begins a parameter of the service;
/// - a "where" value is one JSON document, read to its closing brace; when it is none, it is all the rest;
/// - a "category" value goes up to the last "&key=";
/// - any other value goes up to the next "&" that begins a parameter of the service.
/// A half of a surrogate pair becomes U+FFFD.
QByteArray encodedUrl(const QString& url, const QString& base);

} // namespace rk
