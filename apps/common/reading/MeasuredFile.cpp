#include "reading/MeasuredFile.h"

#include "Failure.h"
#include "ags/AgsGroups.h"
#include "ags/AgsReading.h"
#include "reading/RowReader.h"
#include "reading/TableRows.h"

namespace {

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

} // namespace

MeasuredFile readMeasuredFile(const QString& path, const QByteArray& content, const FileMapping& mapping,
                              BadRowKeeping keeping)
{
    MeasuredFile file;
    file.path = path;
    const FileText text = readFileText(content, mapping.encoding);
    file.encoding = text.encoding;
    if (!text.problem.isEmpty()) {
        file.problems.add(text.line, text.problem);
    } else if (ags::isAgs(path, text.utf8)) {
        ags::readReadings(text.utf8, mapping, keeping, file);
    } else {
        readTable(text.utf8, mapping, keeping, file);
    }
    const bool isForeign = file.holdsForeignBytes || !text.problem.isEmpty();
    if (isForeign) {
        file.unclear.encodings = encodingsThatRead(content);
        file.unclear.encodings.removeAll(nameOf(text.encoding));
    }
    file.isReadable = file.isFormatKnown && !isForeign && !file.unclear.utcOffset;
    return file;
}
