#include "import/ProjectClock.h"

#include "TimeZones.h"
#include "import/AnyFile.h"
#include "reading/FileSource.h"

MeasuredFile readOnProjectClock(ServiceSession& session, const QString& path, const FileMapping& mapping,
                                BadRowKeeping keeping, const ImportNotes& notes)
{
    FileSource source = sourceOf(path, mapping);
    const MeasuredFile file = readAnyFile(path, source.content, source.mapping, keeping);
    if (!file.hasTypes || !file.unclear.utcOffset) {
        return file;
    }
    const std::optional<QTimeZone> zone = zones::ofProject(session);
    if (!zone) {
        return file;
    }
    notes({ImportNote::Kind::Information,
           QStringLiteral("%1: its times name no offset and are read as those of the project, %2")
               .arg(path, QString::fromUtf8(zone->id()))});
    source.mapping.zone = *zone;
    return readAnyFile(path, source.content, source.mapping, keeping);
}
