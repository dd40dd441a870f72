#include "reading/FileEncoding.h"

#include <QTextCodec>

#include <algorithm>
#include <array>
#include <memory>

namespace {

struct EncodingNames
{
    FileEncoding encoding;
    const char* name;
    const char* codec;
    const char* mark;
};

constexpr std::array<EncodingNames, 5> encodings{{
    {FileEncoding::Utf8, "utf-8", "UTF-8", "\xef\xbb\xbf"},
    {FileEncoding::Utf16LittleEndian, "utf-16le", "UTF-16LE", "\xff\xfe"},
    {FileEncoding::Utf16BigEndian, "utf-16be", "UTF-16BE", "\xfe\xff"},
    {FileEncoding::Gb18030, "gb18030", "GB18030", ""},
    {FileEncoding::Windows1252, "windows-1252", "windows-1252", ""},
}};

const EncodingNames& namesOf(FileEncoding encoding)
{
    return encodings.at(static_cast<std::size_t>(encoding));
}

bool hasMark(const QByteArray& content, FileEncoding encoding)
{
    const QByteArray mark(namesOf(encoding).mark);
    return !mark.isEmpty() && content.startsWith(mark);
}

FileEncoding encodingByMark(const QByteArray& content)
{
    const auto found = std::find_if(encodings.cbegin(), encodings.cend(), [&](const EncodingNames& known) {
        return hasMark(content, known.encoding);
    });
    return found == encodings.cend() ? FileEncoding::Utf8 : found->encoding;
}

bool isOfTwoBytes(FileEncoding encoding)
{
    return encoding == FileEncoding::Utf16LittleEndian || encoding == FileEncoding::Utf16BigEndian;
}

// Five bytes mean nothing in windows-1252, which the codec takes for control characters.
// Half of a character that two halves make, without the other.
bool isLoneHalf(const QString& text, int index)
{
    return (text[index].isHighSurrogate() &&
            (index + 1 == text.size() || !text[index + 1].isLowSurrogate())) ||
           (text[index].isLowSurrogate() && (index == 0 || !text[index - 1].isHighSurrogate()));
}

// Five bytes mean nothing in windows-1252, which the codec takes for control characters.
bool isForeign(const QString& text, int index, FileEncoding encoding)
{
    const QChar character = text[index];
    const bool isMeaningless = character.isNull() || character == QChar(QChar::ReplacementCharacter);
    return isMeaningless || isLoneHalf(text, index) ||
           (encoding == FileEncoding::Windows1252 &&
            QStringView(u"\x81\x8d\x8f\x90\x9d").contains(character));
}

// The text that `content` is in `encoding`, and where it is none.
struct Decoded
{
    QString text;
    int firstForeign = -1;
};

Decoded decode(const QByteArray& content, FileEncoding encoding)
{
    const QByteArray mark(hasMark(content, encoding) ? namesOf(encoding).mark : "");
    const QTextCodec* codec = QTextCodec::codecForName(namesOf(encoding).codec);
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    Decoded decoded;
    decoded.text = codec->toUnicode(content.constData() + mark.size(), content.size() - mark.size(), &state);
    int index = 0;
    while (index < decoded.text.size() && !isForeign(decoded.text, index, encoding)) {
        ++index;
    }
    const bool isWhole = index == decoded.text.size() && state.remainingChars == 0;
    decoded.firstForeign = isWhole ? -1 : index;
    return decoded;
}

int lineAt(const QString& text, int index)
{
    return 1 + static_cast<int>(std::count(text.cbegin(), text.cbegin() + index, QChar(u'\n')));
}

} // namespace

QString nameOf(FileEncoding encoding)
{
    return QLatin1String(namesOf(encoding).name);
}

std::optional<FileEncoding> encodingNamed(const QString& name)
{
    for (const EncodingNames& known : encodings) {
        if (name.compare(QLatin1String(known.name), Qt::CaseInsensitive) == 0) {
            return known.encoding;
        }
    }
    return std::nullopt;
}

QStringList encodingNames()
{
    QStringList names;
    for (const EncodingNames& known : encodings) {
        names.append(QLatin1String(known.name));
    }
    return names;
}

FileText readFileText(const QByteArray& content, std::optional<FileEncoding> encoding)
{
    FileText text;
    text.encoding = encoding ? *encoding : encodingByMark(content);
    if (text.encoding == FileEncoding::Utf8) {
        text.utf8 = hasMark(content, FileEncoding::Utf8) ? content.mid(3) : content;
        if (const int index = text.utf8.indexOf('\0'); index >= 0) {
            text.problem = QStringLiteral("the file is not UTF-8 text (UTF-16?)");
            text.line = 1 + static_cast<int>(text.utf8.left(index).count('\n'));
        }
        return text;
    }
    const Decoded decoded = decode(content, text.encoding);
    if (decoded.firstForeign >= 0) {
        text.problem = QStringLiteral("the text is not %1").arg(nameOf(text.encoding).toUpper());
        text.line = lineAt(decoded.text, decoded.firstForeign);
    }
    text.utf8 = decoded.text.toUtf8();
    return text;
}

QByteArray bytesOf(const QByteArray& utf8, FileEncoding encoding)
{
    if (encoding == FileEncoding::Utf8) {
        return utf8;
    }
    const std::unique_ptr<QTextEncoder> encoder(
        QTextCodec::codecForName(namesOf(encoding).codec)->makeEncoder(QTextCodec::IgnoreHeader));
    return namesOf(encoding).mark + encoder->fromUnicode(QString::fromUtf8(utf8));
}

QStringList encodingsThatRead(const QByteArray& content)
{
    QStringList names;
    for (const EncodingNames& known : encodings) {
        // Nearly any bytes are some characters of two bytes; only text has characters of one byte's range.
        const bool isLikely = isOfTwoBytes(known.encoding) == content.contains('\0');
        if (isLikely && decode(content, known.encoding).firstForeign < 0) {
            names.append(nameOf(known.encoding));
        }
    }
    return names;
}
