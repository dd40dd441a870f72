#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/// How the characters of a file are written as bytes.
enum class FileEncoding
{
    Utf8,
    Utf16LittleEndian,
    Utf16BigEndian,
    Gb18030,
    Windows1252
};

/// "utf-8", "gb18030" and so on, as people choose it.
QString nameOf(FileEncoding encoding);
std::optional<FileEncoding> encodingNamed(const QString& name);
QStringList encodingNames();

/// The text of a file.
struct FileText
{
    /// Without a byte-order mark. Text that was UTF-8 is not checked.
    QByteArray utf8;
    FileEncoding encoding = FileEncoding::Utf8;
    /// Why it could not be read, in words, and the line that shows it; empty: nothing.
    QString problem;
    int line = 0;
};

/// Reads `content` in `encoding`; without one it is UTF-16 where a byte-order mark says so, else UTF-8.
FileText readFileText(const QByteArray& content, std::optional<FileEncoding> encoding);

/// The same text in bytes of a file, with a byte-order mark where the encoding needs one.
QByteArray bytesOf(const QByteArray& utf8, FileEncoding encoding);

/// Names of the encodings in which all of `content` is text.
QStringList encodingsThatRead(const QByteArray& content);
