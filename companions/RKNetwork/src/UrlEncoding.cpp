#include "UrlEncoding.h"

#include <QStringView>

#include <algorithm>
#include <array>

namespace rk {

namespace {

// The query parameters of the service's resources.
const std::array<QLatin1String, 13> parameterNames = {
    QLatin1String("where"),    QLatin1String("skip"),  QLatin1String("limit"),   QLatin1String("only_count"),
    QLatin1String("expand"),   QLatin1String("order"), QLatin1String("type"),    QLatin1String("cascade"),
    QLatin1String("category"), QLatin1String("key"),   QLatin1String("samples"), QLatin1String("rollup"),
    QLatin1String("open")};

// RFC 3986, 2.3.
bool isUnreserved(char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           byte == '-' || byte == '.' || byte == '_' || byte == '~';
}

// The text as UTF-8; written out because QString::toUtf8 turns half a surrogate pair into a question mark.
QByteArray utf8(QStringView text)
{
    QString whole = text.toString();
    for (int i = 0; i < whole.size(); ++i) {
        if (whole.at(i).isHighSurrogate() && i + 1 < whole.size() && whole.at(i + 1).isLowSurrogate()) {
            ++i;
        } else if (whole.at(i).isSurrogate()) {
            whole[i] = QChar(QChar::ReplacementCharacter);
        }
    }
    return whole.toUtf8();
}

void appendEncoded(QByteArray& out, QStringView text, bool keepSlash)
{
    static const char digits[] = "0123456789ABCDEF";
    const QByteArray bytes = utf8(text);
    const int begin = out.size();
    out.resize(begin + 3 * bytes.size()); // as long as it may become
    char* next = out.data() + begin;
    for (const char byte : bytes) {
        if (isUnreserved(byte) || (keepSlash && byte == '/')) {
            *next++ = byte;
        } else {
            const auto value = static_cast<unsigned char>(byte);
            *next++ = '%';
            *next++ = digits[value >> 4U];
            *next++ = digits[value & 0x0FU];
        }
    }
    out.truncate(static_cast<int>(next - out.constData()));
}

// The parameter whose "name=" stands at `position`; empty when there is none.
QLatin1String parameterAt(QStringView text, qsizetype position)
{
    const QStringView rest = text.mid(position);
    const auto* const found =
        std::find_if(parameterNames.begin(), parameterNames.end(), [&rest](QLatin1String name) {
            return rest.size() > name.size() && rest.startsWith(name) &&
                   rest.at(name.size()) == QLatin1Char('=');
        });
    return found == parameterNames.end() ? QLatin1String() : *found;
}

// Where `mark` next begins a parameter, from `position` on; the end of the text when it does not.
qsizetype nextParameter(QStringView text, QChar mark, qsizetype position)
{
    for (qsizetype i = position; i < text.size(); ++i) {
        if (text.at(i) == mark && !parameterAt(text, i + 1).isEmpty()) {
            return i;
        }
    }
    return text.size();
}

// Behind the brace that closes the object which begins at `position`; -1 when it is never closed.
qsizetype endOfObject(QStringView text, qsizetype position)
{
    int depth = 0;
    bool inString = false;
    for (qsizetype i = position; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (inString) {
            if (c == QLatin1Char('\\')) {
                ++i;
            } else if (c == QLatin1Char('"')) {
                inString = false;
            }
        } else if (c == QLatin1Char('"')) {
            inString = true;
        } else if (c == QLatin1Char('{')) {
            ++depth;
        } else if (c == QLatin1Char('}') && --depth == 0) {
            return i + 1;
        }
    }
    return -1;
}

qsizetype endOfWhere(QStringView text, qsizetype position)
{
    if (position >= text.size() || text.at(position) != QLatin1Char('{')) {
        return text.size();
    }
    const qsizetype end = endOfObject(text, position);
    const bool closed = end == text.size() || (end > 0 && text.at(end) == QLatin1Char('&') &&
                                               !parameterAt(text, end + 1).isEmpty());
    return closed ? end : text.size();
}

qsizetype endOfValue(QStringView text, QLatin1String name, qsizetype position)
{
    if (name == QLatin1String("where")) {
        return endOfWhere(text, position);
    }
    if (name == QLatin1String("category")) {
        const QString key = QStringLiteral("&key=");
        for (qsizetype i = text.size() - key.size(); i >= position; --i) {
            if (text.mid(i).startsWith(key)) {
                return i;
            }
        }
        return text.size();
    }
    return nextParameter(text, QLatin1Char('&'), position);
}

// How much of the URL stands as it is.
int lengthOfBase(const QString& url, const QString& base)
{
    if (!base.isEmpty() && url.startsWith(base)) {
        return base.size();
    }
    const int authority = url.indexOf(QLatin1String("://"));
    if (authority < 0) {
        return 0;
    }
    for (int i = authority + 3; i < url.size(); ++i) {
        if (url.at(i) == QLatin1Char('/') || url.at(i) == QLatin1Char('?')) {
            return i;
        }
    }
    return url.size();
}

} // namespace

QByteArray encodedUrl(const QString& url, const QString& base)
{
    const int baseLength = lengthOfBase(url, base);
    const QStringView text = QStringView(url).mid(baseLength);
    QByteArray out = url.left(baseLength).toUtf8();

    qsizetype position = nextParameter(text, QLatin1Char('?'), 0);
    appendEncoded(out, text.left(position), true);
    while (position < text.size()) {
        out += text.at(position).toLatin1(); // the "?" or the "&"
        const QLatin1String name = parameterAt(text, position + 1);
        out.append(name.data(), name.size());
        out += '=';
        const qsizetype begin = position + 1 + name.size() + 1;
        position = endOfValue(text, name, begin);
        appendEncoded(out, text.mid(begin, position - begin), false);
    }
    return out;
}

} // namespace rk
