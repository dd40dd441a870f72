#include "import/BadRowsFile.h"

#include "Failure.h"
#include "reading/FileEncoding.h"
#include "reading/TableColumns.h"

#include <QFile>
#include <QFileInfo>

namespace {

// A field that may hold anything.
QByteArray quoted(QByteArray text)
{
    return '"' + text.replace('"', "\"\"") + '"';
}

QByteArray aboveRows(const BadRows& bad)
{
    const QByteArray header =
        bad.header.isEmpty() ? QByteArray() : bad.header + bad.delimiter + badRowReasonTitle + '\n';
    return bad.above + header + bad.below;
}

void requireAlike(const MeasuredFile& first, const MeasuredFile& other)
{
    const bool areAlike =
        first.encoding == other.encoding && aboveRows(first.badRows) == aboveRows(other.badRows);
    if (!areAlike) {
        throw Failure(
            FailureKind::BadInput,
            QStringLiteral("%1 and %2 have bad rows, but not the same lines above them: import them "
                           "one by one, so that each gets a file of bad rows")
                .arg(first.path, other.path));
    }
}

} // namespace

void requireNewFile(const QString& path)
{
    const QFileInfo file(path);
    if (file.exists()) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("\"%1\" is there already; bad rows go to a new file").arg(path));
    }
    if (!QFileInfo(file.path()).isWritable()) {
        throw Failure(FailureKind::BadInput, QStringLiteral("no file can be made at \"%1\"").arg(path));
    }
}

QByteArray badRowsText(const QList<const MeasuredFile*>& files)
{
    const MeasuredFile* first = nullptr;
    QByteArray text;
    for (const MeasuredFile* file : files) {
        if (file->badRows.rows.isEmpty()) {
            continue;
        }
        if (first == nullptr) {
            first = file;
            text = aboveRows(file->badRows);
        }
        requireAlike(*first, *file);
        for (const BadRow& row : file->badRows.rows) {
            const QString reason = QStringLiteral("%1:%2: %3").arg(file->path).arg(row.line).arg(row.reason);
            text += row.text + file->badRows.delimiter + quoted(reason.toUtf8()) + '\n';
        }
    }
    return first == nullptr ? QByteArray() : bytesOf(text, first->encoding);
}

void writeNewFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    const bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::NewOnly) &&
                           file.write(content) == content.size() && file.flush();
    if (!isWritten) {
        throw Failure(FailureKind::Other,
                      QStringLiteral("cannot write \"%1\": %2").arg(path, file.errorString()));
    }
}
