#include "reading/MeasuredFile.h"

#include "Failure.h"
#include "reading/RowReader.h"
#include "reading/TableRows.h"

void readTable(const QByteArray& text, const FileMapping& mapping, BadRowKeeping keeping, MeasuredFile& file)
{
    if (!mapping.types.isEmpty()) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("%1 is no AGS file, and types of readings are given").arg(file.path));
    }
    const TableColumns columns = readTableColumns(text, mapping, file.problems, file.unclear);
    file.ignoredColumns = columns.ignored;
    file.holdsForeignBytes = columns.isHeaderForeign;
    if (file.problems.isEmpty()) {
        TableRows rows(text, mapping, columns);
        RowReader(rows, mapping, columns, file).read(keeping);
    }
}

MeasuredFile readMeasuredText(const QString& path, const QByteArray& content,
                              std::optional<FileEncoding> encoding, const TextReading& read)
{
    MeasuredFile file;
    file.path = path;
    const FileText text = readFileText(content, encoding);
    file.encoding = text.encoding;
    if (text.problem.isEmpty()) {
        read(text.utf8, file);
    } else {
        file.problems.add(text.line, text.problem);
    }
    const bool isForeign = file.holdsForeignBytes || !text.problem.isEmpty();
    if (isForeign) {
        file.unclear.encodings = encodingsThatRead(content);
        file.unclear.encodings.removeAll(nameOf(text.encoding));
    }
    file.isReadable = file.isFormatKnown && !isForeign && !file.unclear.utcOffset;
    return file;
}

MeasuredFile readMeasuredFile(const QString& path, const QByteArray& content, const FileMapping& mapping,
                              BadRowKeeping keeping)
{
    return readMeasuredText(path, content, mapping.encoding, [&](const QByteArray& text, MeasuredFile& file) {
        readTable(text, mapping, keeping, file);
    });
}
