#include "import/AnyFile.h"

#include "ags/AgsGroups.h"
#include "ags/AgsProposal.h"
#include "ags/AgsReading.h"

MeasuredFile readAnyFile(const QString& path, const QByteArray& content, const FileMapping& mapping,
                         BadRowKeeping keeping)
{
    return readMeasuredText(path, content, mapping.encoding, [&](const QByteArray& text, MeasuredFile& file) {
        if (ags::isAgs(path, text)) {
            ags::readReadings(text, mapping, keeping, file);
        } else {
            readTable(text, mapping, keeping, file);
        }
    });
}

MappingProposal proposeMappingOfAny(const QString& path, const QByteArray& content, const FileMapping& given)
{
    const FileText text = readFileText(content, given.encoding);
    return text.problem.isEmpty() && ags::isAgs(path, text.utf8) ? ags::proposeMapping(path, text.utf8, given)
                                                                 : proposeMapping(path, content, given);
}
