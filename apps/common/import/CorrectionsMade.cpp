#include "import/CorrectionsMade.h"

#include "extensions/AnswerObject.h"
#include "extensions/ServiceExtensions.h"

#include <QJsonArray>
#include <QStringList>

#include <algorithm>

namespace {

const QString tellingCorrections = QStringLiteral("tell what was corrected");

// The samples of an entry; `samples` is its member `place`.
QList<AnswerObject> samplesOf(const QJsonValue& samples, const QString& place)
{
    if (!samples.isArray()) {
        throw Failure(FailureKind::BadAnswer,
                      QStringLiteral("cannot %1: \"%2\" is not a list").arg(tellingCorrections, place));
    }
    return objectsOf(tellingCorrections, samples.toArray(), place);
}

void addCorrections(const AuditEntry& entry, const DeliveredPoint& point,
                    QVector<CorrectedSample>& corrections)
{
    const QList<AnswerObject> before = samplesOf(entry.before, QStringLiteral("before"));
    const QList<AnswerObject> after = samplesOf(entry.after, QStringLiteral("after"));
    for (int i = 0; i < std::min(before.size(), after.size()); ++i) {
        CorrectedSample sample;
        sample.name = point.name;
        sample.depth = point.depth;
        sample.time = after[i].time("time");
        sample.count = after[i].smallInteger("count");
        sample.oldValue = before[i].number("value");
        sample.newValue = after[i].number("value");
        sample.oldFlag = before[i].text("timeFlag");
        sample.newFlag = after[i].text("timeFlag");
        corrections.append(sample);
    }
}

AuditQuery queryFor(const QList<DeliveredPoint>& points)
{
    QJsonArray identifiers;
    for (const DeliveredPoint& point : points) {
        identifiers.append(point.id);
    }
    AuditQuery query;
    query.where = {{QStringLiteral("action"), QStringLiteral("sample.corrected")},
                   {QStringLiteral("subject"), QJsonObject{{QStringLiteral("$in"), identifiers}}}};
    return query;
}

// Reads entries, the newest first, until all corrections of the points are among them, or enough are.
void readCorrections(ServiceSession& session, const QList<DeliveredPoint>& points,
                     QVector<CorrectedSample>& corrections)
{
    constexpr int pageEntries = 20; // of up to 1000 samples
    const AuditQuery query = queryFor(points);
    qint64 wanted = corrections.size();
    for (const DeliveredPoint& point : points) {
        wanted += point.corrected;
    }
    wanted = std::min<qint64>(wanted, SampleOutcome::keptCorrections);
    QSet<QString> seen; // others may add entries between two pages
    for (int skip = 0; corrections.size() < wanted; skip += pageEntries) {
        const QList<AuditEntry> page =
            session.extensions().changes(session.project(), query, skip, pageEntries);
        for (const AuditEntry& entry : page) {
            const auto point =
                std::find_if(points.cbegin(), points.cend(), [&](const DeliveredPoint& candidate) {
                    return candidate.id == entry.subject && candidate.deliveryId == entry.deliveryId;
                });
            if (point != points.cend() && !seen.contains(entry.id)) {
                addCorrections(entry, *point, corrections);
            }
            seen.insert(entry.id);
        }
        if (page.size() < pageEntries) {
            return;
        }
    }
}

} // namespace

QVector<CorrectedSample> correctionsMade(ServiceSession& session, const DeliveryAnswers& answers)
{
    constexpr int pointsAtOnce = 100; // so many identifiers fit into a condition
    const QList<DeliveredPoint>& points = answers.correctedPoints();
    QVector<CorrectedSample> corrections;
    for (int i = 0; i < points.size() && corrections.size() < SampleOutcome::keptCorrections;
         i += pointsAtOnce) {
        readCorrections(session, points.mid(i, pointsAtOnce), corrections);
    }
    sortCorrections(corrections);
    return corrections;
}
