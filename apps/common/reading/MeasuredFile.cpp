#include "reading/MeasuredFile.h"

#include "reading/RowReader.h"

namespace {

void readTable(const QByteArray& text, const FileMapping& mapping, BadRowKeeping keeping, MeasuredFile& file)
{
    const TableColumns columns = readTableColumns(text, mapping, file.problems, file.unclear);
    file.ignoredColumns = columns.ignored;
    file.holdsForeignBytes = columns.isHeaderForeign;
    if (file.problems.isEmpty()) {
        RowReader(text, mapping, columns, file).read(keeping);
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
    if (text.problem.isEmpty()) {
        readTable(text.utf8, mapping, keeping, file);
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
