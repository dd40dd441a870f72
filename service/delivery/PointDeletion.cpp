#include "delivery/PointDeletion.h"

#include "delivery/DeliveryRecord.h"
#include "delivery/JudgementNews.h"
#include "delivery/PointRevision.h"
#include "domain/SampleText.h"
#include "query/Matcher.h"
#include "store/StoreError.h"

#include <limits>
#include <utility>

namespace monitorservice {

namespace {

StoredPoint storedPoint(const Session& session, const PointLocation& location)
{
    std::optional<StoredPoint> stored =
        session.measurements().findPoint(location.cell, location.subCategory, location.name, location.depth);
    if (!stored) {
        throw StoreError(StoreFailure::InputOutput, "a point is there and cannot be found");
    }
    return *std::move(stored);
}

// Tries samples against a condition.
class SampleMatcher
{
public:
    explicit SampleMatcher(const Where& where) : m_matcher(where) {}

    bool matches(const Sample& sample)
    {
        m_text.clear();
        appendSample(m_text, sample);
        return m_matcher.matches(m_parser.parse(m_text));
    }

private:
    Matcher m_matcher;
    simdjson::dom::parser m_parser;
    std::string m_text;
};

std::vector<Sample> matchingSamples(const Session& session, std::int64_t point, const Where& where)
{
    SampleMatcher matcher(where);
    std::vector<Sample> samples;
    session.measurements().visitSamples(point, std::numeric_limits<Instant>::min(),
                                        std::numeric_limits<Instant>::max(), [&](const Sample& sample) {
                                            if (where.isEmpty() || matcher.matches(sample)) {
                                                samples.push_back(sample);
                                            }
                                        });
    return samples;
}

} // namespace

void removeWholePoint(Session& session, const DeliveryTarget& target, const StoredPoint& stored,
                      const Author& author, Judgement& judgement)
{
    const auto location = fromDocument<PointLocation>(stored.document);
    DeliveryTrail trail(session, target.quantity, location, author);
    for (const Sample& sample : matchingSamples(session, stored.key, Where())) {
        trail.sampleRemoved(sample);
    }
    trail.pointRemoved();
    judgement.forget(stored.key, location.name);
    session.measurements().removePoint(stored.key);
}

Withdrawal deletePoint(Session& session, const PointLocation& location, const std::string& owner)
{
    const Author author{owner, isoText(session.now())};
    const DeliveryTarget target = targetOf(session, location.cell, location.subCategory);
    Judgement judgement(session, target.quantity, *target.days, author);
    removeWholePoint(session, target, storedPoint(session, location), author, judgement);
    noteRemoved(session, target.quantity, location.insertCount, author);
    Withdrawal withdrawal;
    withdrawal.removed = location.insertCount;
    withdrawal.removedPoints = 1;
    withdrawal.alarms = finishAndTell(session, judgement).touchedAlarms();
    return withdrawal;
}

Withdrawal deleteSamples(Session& session, const PointLocation& location, const Where& where,
                         const std::string& owner)
{
    Withdrawal withdrawal;
    const StoredPoint stored = storedPoint(session, location);
    const std::vector<Sample> samples = matchingSamples(session, stored.key, where);
    if (samples.empty()) {
        return withdrawal;
    }
    const Author author{owner, isoText(session.now())};
    const DeliveryTarget target = targetOf(session, location.cell, location.subCategory);
    Judgement judgement(session, target.quantity, *target.days, author);
    PointRevision revision(session, target, stored, author);
    for (const Sample& sample : samples) {
        revision.remove(sample);
    }
    judgement.judge(revision.finish(std::nullopt));
    noteRemoved(session, target.quantity, revision.removed(), author);
    withdrawal.removed = revision.removed();
    withdrawal.alarms = finishAndTell(session, judgement).touchedAlarms();
    return withdrawal;
}

} // namespace monitorservice
