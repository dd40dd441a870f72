#include "ImportReport.h"

#include "PointNames.h"

#include <QLocale>
#include <RKPub.h>

#include <algorithm>

namespace {

// So many are told one by one; programs get more.
constexpr int toldCorrections = 20;
constexpr int toldNames = 10;

// Names, those of several depths once; the first of many.
QString namesText(QStringList names)
{
    names.removeDuplicates();
    const QString more =
        names.size() > toldNames ? QStringLiteral(" and %1 more").arg(names.size() - toldNames) : QString();
    return names.mid(0, toldNames).join(QStringLiteral(", ")) + more;
}

QString numberText(double value)
{
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QVariant countOf(const ImportResult& result, qint64 SampleOutcome::*count)
{
    return result.outcome ? QVariant((*result.outcome).*count) : QVariant(QString());
}

QVariant newPointsCell(const QList<PointKey>& points)
{
    QStringList names;
    for (const PointKey& point : points) {
        names.append(point.name);
    }
    return points.isEmpty()
               ? QVariant(0)
               : cell::shownAs(points.size(),
                               QStringLiteral("%1: %2").arg(points.size()).arg(namesText(names)));
}

QVariantList newPointList(const QList<PointKey>& points)
{
    QVariantList list;
    for (const PointKey& point : points) {
        list.append(QVariantMap{{QStringLiteral("name"), point.name},
                                {QStringLiteral("depth"), point.depth},
                                {QStringLiteral("subCategoryId"), point.target.subCategoryId}});
    }
    return list;
}

QVariantList correctionList(const ImportResult& result)
{
    QVariantList list;
    if (!result.outcome) {
        return list;
    }
    for (const CorrectedSample& sample : result.outcome->corrections) {
        list.append(QVariantMap{{QStringLiteral("name"), sample.name},
                                {QStringLiteral("depth"), sample.depth},
                                {QStringLiteral("time"), RKPub::getQStringByDateTime(sample.time)},
                                {QStringLiteral("count"), sample.count},
                                {QStringLiteral("oldValue"), sample.oldValue},
                                {QStringLiteral("value"), sample.newValue},
                                {QStringLiteral("oldTimeFlag"), sample.oldFlag},
                                {QStringLiteral("timeFlag"), sample.newFlag}});
    }
    return list;
}

QVariant alarmsCell(const ImportResult& result)
{
    QStringList identifiers;
    for (const RaisedAlarm& alarm : result.alarms) {
        identifiers.append(alarm.id);
    }
    return cell::shownAs(identifiers,
                         result.isSent && result.outcome ? QString::number(identifiers.size()) : QString());
}

Sheet sheetOf(const ImportResult& result)
{
    return {
        {column::text("FILES", "files"), column::text("POINTS", "points"),
         column::text("NEW POINTS", "newPoints"), column::forPrograms("newPointList"),
         column::text("SAMPLES", "samples"), column::text("INSERTED", "inserted"),
         column::text("CORRECTED", "corrected"), column::forPrograms("corrections"),
         column::text("UNCHANGED", "unchanged"), column::text("DELIVERIES", "deliveries"),
         column::text("ALARMS", "alarms"), column::text("SENT", "sent")},
        {{result.files, result.points, newPointsCell(result.newPoints), newPointList(result.newPoints),
          result.samples, countOf(result, &SampleOutcome::inserted),
          countOf(result, &SampleOutcome::corrected), correctionList(result),
          countOf(result, &SampleOutcome::unchanged), result.deliveries, alarmsCell(result), result.isSent}}};
}

QString correctionText(const CorrectedSample& sample, bool isDone, const QTimeZone& zone)
{
    const QString flags =
        sample.oldFlag == sample.newFlag
            ? QString()
            : QStringLiteral(", time flag \"%1\" instead of \"%2\"").arg(sample.newFlag, sample.oldFlag);
    return QStringLiteral("%1 %2 at %3, count %4: %5 instead of %6%7")
        .arg(isDone ? QStringLiteral("corrected") : QStringLiteral("would correct"),
             pointText(sample.name, sample.depth), shownTime(sample.time, zone))
        .arg(sample.count)
        .arg(numberText(sample.newValue), numberText(sample.oldValue), flags);
}

void tellCorrections(Session& session, const ImportResult& result)
{
    const QVector<CorrectedSample>& corrections = result.outcome->corrections;
    for (const CorrectedSample& sample : corrections.mid(0, toldCorrections)) {
        session.noteAfterwards(correctionText(sample, result.isSent, session.shownZone()));
    }
    const qint64 more = result.outcome->corrected - std::min(corrections.size(), toldCorrections);
    if (more > 0 && !corrections.isEmpty()) {
        session.noteAfterwards(QStringLiteral("and %1 more corrections").arg(more));
    }
}

} // namespace

void report(Session& session, const ImportResult& result)
{
    session.output().addRecord(sheetOf(result));
    if (!result.outcome) {
        session.noteAfterwards(
            result.isSent
                ? QStringLiteral("the service does not tell what became of the samples")
                : QStringLiteral("what is held cannot be compared: the service does not tell of which "
                                 "sub-category a point is"));
    } else {
        tellCorrections(session, result);
    }
    for (const RaisedAlarm& alarm : result.alarms) {
        session.noteAfterwards(QStringLiteral("beyond a limit: %1; rkmon alarm detail %2 tells more")
                                   .arg(namesText(alarm.points), alarm.id));
    }
    for (const QString& missing : result.missingRights) {
        session.noteAfterwards(missing);
    }
}
