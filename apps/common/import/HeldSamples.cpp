#include "import/HeldSamples.h"

#include "Lookup.h"
#include "PointNames.h"

SampleSlot slotOf(const RKPointLocationData& sample)
{
    return {sample.time.toMSecsSinceEpoch(), sample.count};
}

HeldSamples::HeldSamples(ServiceSession& session, const QSet<PointKey>& points) : m_session(session)
{
    for (const PointKey& point : points) {
        m_names[point.target.cellId].append(point.name);
    }
    for (QStringList& names : m_names) {
        names.removeDuplicates();
    }
}

std::optional<QHash<PointKey, SamplesHeld>> HeldSamples::read(const HeldRequest& request)
{
    RKPointLocationCondition condition;
    condition.cellId = request.cellId;
    condition.names = request.names;
    condition.isAllTime = false;
    condition.startTime = request.first;
    condition.endTime = request.last; // and a day after it
    QList<RKPointLocation> points;
    m_session.ask(QStringLiteral("read what is held"),
                  [&] { return m_session.projectData().getPointLocation(condition, points, false); });
    m_session.data().clear(); // their samples
    const PointDirectory& directory = directoryOf(request.cellId);
    QHash<PointKey, SamplesHeld> held;
    for (const RKPointLocation& point : qAsConst(points)) {
        const QString subCategory = directory.subCategoryOf(point.id);
        if (subCategory.isEmpty()) {
            return std::nullopt;
        }
        SamplesHeld& samples = held[{{request.cellId, subCategory}, point.name, plainDepth(point.depth)}];
        for (const RKPointLocationData& sample : point.data) {
            samples.insert(slotOf(sample), sample);
        }
    }
    return held;
}

const PointDirectory& HeldSamples::directoryOf(const QString& cellId)
{
    const auto found = m_directories.find(cellId);
    if (found != m_directories.end()) {
        return found->second;
    }
    const RKMonitoring monitoring = lookup::monitoringById(m_session, cellId);
    return m_directories.try_emplace(cellId, m_session, monitoring, m_names.value(cellId)).first->second;
}
