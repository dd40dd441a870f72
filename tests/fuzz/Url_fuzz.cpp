// Input: lines. The first is a path, each further one "name=value" of a parameter. What the URL is made of
// must come out again where it is taken apart as RFC 3986 says. The input is also encoded whole, as UTF-8 and
// as UTF-16.

#include "Fuzzer.h"
#include "UrlEncoding.h"

#include <QJsonDocument>
#include <QPair>
#include <QStringList>
#include <QVector>

#include <cstring>

namespace {

using fuzz::require;

const QString base = QStringLiteral("http://127.0.0.1:8080/monitor-service/");

// Only what an address may hold raw.
bool isPlain(char byte)
{
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
           (byte != '\0' && std::strchr("-._~/?&=", byte) != nullptr);
}

int hexDigit(char digit)
{
    const char* const digits = "0123456789ABCDEF";
    const char* const found = digit == '\0' ? nullptr : std::strchr(digits, digit);
    require(found != nullptr, "a % stands before two hexadecimal digits");
    return static_cast<int>(found - digits);
}

// RFC 3986, 2.1, of text that is made of what an address may hold.
QString decoded(const QByteArray& encoded)
{
    QByteArray bytes;
    for (int i = 0; i < encoded.size(); ++i) {
        if (encoded[i] != '%') {
            require(isPlain(encoded[i]), "an address holds no character that must be encoded",
                    [&] { return encoded.toStdString(); });
            bytes += encoded[i];
            continue;
        }
        require(i + 2 < encoded.size(), "a % is not the end");
        bytes += static_cast<char>(hexDigit(encoded[i + 1]) * 16 + hexDigit(encoded[i + 2]));
        i += 2;
    }
    // A byte-order mark that begins a text, and what follows a U+0000 of a QByteArray, would be left out.
    bytes.prepend('x');
    return QString::fromUtf8(bytes.constData(), bytes.size()).mid(1);
}

QByteArray withoutBase(const QByteArray& url)
{
    require(url.startsWith(base.toUtf8()), "the base stands as it is");
    return url.mid(base.size());
}

// Text with U+FFFD for each half of a surrogate pair.
QString wellFormed(const QString& text)
{
    QString result;
    for (const uint character : text.toUcs4()) {
        const bool isHalf = character >= 0xD800 && character <= 0xDFFF;
        if (QChar::requiresSurrogates(character)) {
            result.append(QChar(QChar::highSurrogate(character)))
                .append(QChar(QChar::lowSurrogate(character)));
        } else {
            result.append(isHalf ? QChar(QChar::ReplacementCharacter)
                                 : QChar(static_cast<ushort>(character)));
        }
    }
    return result;
}

void checkWhole(const QString& text)
{
    const QByteArray encoded = withoutBase(rk::encodedUrl(base + text, base));
    require(decoded(encoded) == wellFormed(text), "every character arrives",
            [&] { return encoded.toStdString(); });
    require(rk::encodedUrl(base + text, QString()).startsWith("http://127.0.0.1:8080/"),
            "an address keeps its scheme and authority");
}

const QStringList& parameterNames()
{
    static const QStringList names{QStringLiteral("where"),   QStringLiteral("skip"),
                                   QStringLiteral("limit"),   QStringLiteral("only_count"),
                                   QStringLiteral("expand"),  QStringLiteral("order"),
                                   QStringLiteral("type"),    QStringLiteral("cascade"),
                                   QStringLiteral("samples"), QStringLiteral("rollup")};
    return names;
}

bool beginsParameter(const QString& text, QChar mark)
{
    for (const QString& name : parameterNames()) {
        if (text.contains(mark + name + QLatin1Char('='))) {
            return true;
        }
    }
    return text.contains(mark + QStringLiteral("category=")) || text.contains(mark + QStringLiteral("key="));
}

using Parameters = QVector<QPair<QString, QString>>;

QString composed(const QString& path, const Parameters& parameters)
{
    QString text = path;
    for (int i = 0; i < parameters.size(); ++i) {
        text +=
            QLatin1Char(i == 0 ? '?' : '&') + parameters[i].first + QLatin1Char('=') + parameters[i].second;
    }
    return text;
}

// Takes the address apart at "?", "&" and "=", then decodes: what it is made of must be there.
void checkParts(const QString& path, const Parameters& parameters)
{
    const QByteArray encoded = withoutBase(rk::encodedUrl(base + composed(path, parameters), base));
    const int queryMark = encoded.indexOf('?');
    require(decoded(encoded.left(queryMark < 0 ? encoded.size() : queryMark)) == path,
            "the path arrives as it was typed", [&] { return encoded.toStdString(); });
    require((queryMark < 0) == parameters.isEmpty(), "a query is there when there are parameters");
    if (queryMark < 0) {
        return;
    }
    const QList<QByteArray> pieces = encoded.mid(queryMark + 1).split('&');
    require(pieces.size() == parameters.size(), "no parameter is added or lost",
            [&] { return encoded.toStdString(); });
    for (int i = 0; i < pieces.size(); ++i) {
        const int mark = pieces[i].indexOf('=');
        require(mark >= 0 && decoded(pieces[i].left(mark)) == parameters[i].first &&
                    decoded(pieces[i].mid(mark + 1)) == parameters[i].second,
                "a parameter arrives as it was typed", [&] { return pieces[i].toStdString(); });
    }
}

// The parameters that the lines name and that raw text can hold unambiguously, as the library writes them.
Parameters parametersOf(const QStringList& lines)
{
    Parameters parameters;
    for (const QString& line : lines) {
        const int mark = line.indexOf(QLatin1Char('='));
        const QString name = line.left(mark);
        const QString value = line.mid(mark + 1);
        if (mark < 0 || !parameterNames().contains(name)) {
            continue;
        }
        const bool isWhere = name == QStringLiteral("where");
        const bool isObject = value.startsWith(QLatin1Char('{')) && value.endsWith(QLatin1Char('}')) &&
                              QJsonDocument::fromJson(value.toUtf8()).isObject();
        if (isWhere ? isObject : !beginsParameter(value, QLatin1Char('&'))) {
            parameters.append({name, value});
        }
    }
    return parameters;
}

void checkPermissionQuery(const QString& path, const QString& category)
{
    for (const char* const action : {"create", "edit", "delete"}) {
        checkParts(path, {{QStringLiteral("category"), category},
                          {QStringLiteral("key"), QString::fromLatin1(action)}});
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    checkWhole(text);
    QString units;
    for (std::size_t i = 0; i + 1 < size; i += 2) {
        units += QChar(static_cast<ushort>(data[i] | data[i + 1] << 8U));
    }
    checkWhole(units);

    QStringList lines = text.split(QLatin1Char('\n'));
    const QString path = lines.takeFirst();
    if (!beginsParameter(path, QLatin1Char('?'))) {
        checkParts(path, parametersOf(lines));
    }
    if (!lines.isEmpty() && !beginsParameter(path, QLatin1Char('?'))) {
        checkPermissionQuery(path, lines.join(QLatin1Char('\n')));
    }
    return 0;
}
