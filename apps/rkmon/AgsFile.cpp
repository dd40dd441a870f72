#include "AgsFile.h"

#include "Failure.h"
#include "PointNames.h"
#include "ags/AgsExport.h"

#include <QDateTime>

#include <algorithm>

namespace {

ags::MeasuredSeries seriesOf(const RKPointLocation& point, const PointMeaning& meaning)
{
    if (meaning.subCategory.name.isEmpty()) {
        throw Failure(FailureKind::Other,
                      QStringLiteral("it is not clear what %1 measures, which an AGS file must say")
                          .arg(pointText(point.name, point.depth)));
    }
    return {point, meaning.subCategory.name, meaning.subCategory.alias, meaning.subCategory.unit,
            meaning.initialValue};
}

QString projectName(Session& session)
{
    const QString id = session.project();
    const QString name =
        session.extensions().has(Extension::Projects) ? session.extensions().project(id).name : QString();
    return name.isEmpty() ? id : name;
}

} // namespace

void addAgsFile(Session& session, const RKMonitoring& monitoring, const QList<RKPointLocation>& points,
                const PointMeanings& meanings)
{
    ags::Monitored monitored;
    monitored.projectId = session.project();
    monitored.projectName = projectName(session);
    monitored.producer = QStringLiteral("rkmon");
    monitored.monitoring = monitoring.name;
    monitored.day = QDateTime::currentDateTimeUtc().toTimeZone(session.zone()).date();
    for (const RKPointLocation& point : points) {
        monitored.series.append(seriesOf(point, meanings.value(point.id)));
    }
    const QByteArray file = ags::fileOf(monitored);
    const bool isAscii = std::all_of(file.cbegin(), file.cend(),
                                     [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
    if (!isAscii) {
        session.warn(
            QStringLiteral("texts of the file are not ASCII, which AGS asks for; they stand in it as "
                           "UTF-8, which other programs may read wrongly"));
    }
    session.output().addDocument(file);
}
