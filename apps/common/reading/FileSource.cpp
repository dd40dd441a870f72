#include "reading/FileSource.h"

#include "FileContent.h"
#include "reading/Spreadsheet.h"

FileSource sourceOf(const QString& path, const FileMapping& mapping)
{
    FileSource source{contentOfFile(path), mapping};
    if (isSpreadsheet(source.content)) {
        const SheetText sheet = readSheet(path, source.content, mapping.sheet);
        source.content = sheet.utf8;
        source.mapping.encoding = FileEncoding::Utf8;
        source.mapping.delimiter = '\t';
        source.mapping.decimalSign = u'.';
        // Numbers are days as the workbook counts them; other times are texts.
        source.mapping.possibleTimeFormats = {TimeFormat::YearMonthDay, TimeFormat::DayMonthYear,
                                              TimeFormat::MonthDayYear};
        source.mapping.possibleTimeFormats += sheet.days;
    }
    return source;
}
