#include "alarm/Judgement.h"

#include "alarm/NamedPoints.h"
#include "store/QuantityQuery.h"
#include "store/StoreError.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

namespace monitorservice {

namespace {

constexpr Instant endOfTime = std::numeric_limits<Instant>::max();

bool hasAlarms(const Session& session, const MonitoredQuantity& quantity)
{
    const QuantityQuery first(quantity, 1);
    bool found = false;
    session.documents(DocumentKind::Alarm).visit(first.query(), [&found](std::string_view /*document*/) {
        found = true;
    });
    return found;
}

JudgedValue::PreviousDay previousDay(const DaySummary& before, std::int64_t day)
{
    return {before.value, day - before.day};
}

// Whether the reading passes a limit of any of the groups; if it does, it is shown to `worst` for each.
bool isInExcess(const std::shared_ptr<const JudgedPoint>& point, const Reading& reading,
                const std::optional<JudgedValue::PreviousDay>& previous,
                const std::vector<const LimitingGroup*>& groups, WorstReadings* worst)
{
    bool isOver = false;
    for (const LimitingGroup* const group : groups) {
        const JudgedValue judged{point->reference, reading.value, previous};
        if (!isOverLimit(judged, group->limits)) {
            continue;
        }
        isOver = true;
        if (worst != nullptr) {
            worst->consider({point, reading, group, variationOf(judged, group->limits)});
        }
    }
    return isOver;
}

Reading readingOf(const Sample& sample)
{
    return {sample.time, sample.count, sample.offsetMinutes, sample.value};
}

} // namespace

// Judges what has changed of one point.
class Judgement::PointJudge
{
public:
    PointJudge(Judgement& all, const ChangedPoint& changed)
        : m_session(all.m_session), m_measurements(all.m_session.measurements()), m_days(all.m_days),
          m_book(all.m_book), m_groups(all.m_limits.of(changed.name)), m_changed(changed),
          m_next(changed.readings.begin()), m_nextRemoved(changed.removed.begin())
    {
    }

    void judge(std::map<std::string, News>& news)
    {
        const bool isMeasuredAnew = m_changed.initialValueChanged && m_changed.samplesHeld > 0;
        if (!isMeasuredAnew && m_changed.readings.empty() && m_changed.removed.empty()) {
            return;
        }
        findReference();
        const Instant from = m_judgesAll ? std::numeric_limits<Instant>::min() : m_days.beginOf(firstDay());
        if (m_judgesAll || !m_changed.isAppended) {
            m_session.excesses().visit(m_changed.key, from, endOfTime, [this](const ReadingInExcess& one) {
                m_held.emplace_hint(m_held.end(), ReadingKey(one.time, one.count), one.alarm);
            });
        }
        if (m_groups.empty() && m_held.empty()) {
            return;
        }
        m_news = &news[m_changed.name];
        withdrawRemoved();
        judgeDays();
        if (!m_changed.depth.empty()) {
            m_news->depthsSince = std::min(m_news->depthsSince.value_or(from), from);
        }
    }

private:
    void findReference()
    {
        const std::vector<Reading>& readings = m_changed.readings;
        double reference = m_changed.initialValue.value_or(0);
        if (isWhole()) {
            if (!m_changed.initialValue && !readings.empty()) {
                reference = readings.front().value;
            }
        } else {
            m_judgesAll = m_changed.initialValueChanged;
            if (!m_changed.initialValue) {
                const Sample earliest = earliestSample();
                reference = earliest.value;
                m_judgesAll = m_judgesAll || isEarliestOther({earliest.time, earliest.count});
            }
        }
        m_point = std::make_shared<JudgedPoint>(
            JudgedPoint{m_changed.key, m_changed.name, m_changed.depth, reference});
    }

    Sample earliestSample() const
    {
        const std::optional<Sample> earliest = m_measurements.earliestSample(m_changed.key);
        if (!earliest) {
            throw StoreError(StoreFailure::InputOutput, "a point has samples and they cannot be found");
        }
        return *earliest;
    }

    // Whether the earliest reading is another than before, or has another value.
    bool isEarliestOther(const ReadingKey& earliest) const
    {
        return (!m_changed.readings.empty() && m_changed.readings.front().key() == earliest) ||
               (!m_changed.removed.empty() && m_changed.removed.front() < earliest);
    }

    // Whether the readings changed are all that the point has.
    bool isWhole() const
    {
        return m_changed.samplesHeld == static_cast<std::int64_t>(m_changed.readings.size());
    }

    std::int64_t firstDay() const
    {
        if (m_changed.removed.empty()) {
            return m_days.dayOf(m_changed.readings.front().time);
        }
        const Instant removed = m_changed.removed.front().first;
        return m_days.dayOf(m_changed.readings.empty() ? removed
                                                       : std::min(removed, m_changed.readings.front().time));
    }

    std::int64_t lastDay() const
    {
        if (m_changed.removed.empty()) {
            return m_days.dayOf(m_changed.readings.back().time);
        }
        const Instant removed = m_changed.removed.back().first;
        return m_days.dayOf(m_changed.readings.empty() ? removed
                                                       : std::max(removed, m_changed.readings.back().time));
    }

    void withdrawRemoved()
    {
        for (const ReadingKey& key : m_changed.removed) {
            const auto held = m_held.find(key);
            if (held != m_held.end()) {
                m_session.excesses().remove(m_changed.key, key.first, key.second);
                ++m_news->rejudged[held->second];
                m_held.erase(held);
            }
        }
    }

    // The days to look at, with the measured day before the first and the one after the last. The store is
    // asked for what does not follow from the readings changed.
    std::vector<DaySummary> daysToJudge() const
    {
        std::vector<DaySummary> days;
        const auto add = [&days](const DaySummary& day) {
            days.push_back(day);
        };
        using Number = std::numeric_limits<std::int64_t>;
        if (isWhole()) {
            addDaysOfReadings(days);
            return days;
        }
        if (m_judgesAll) {
            m_measurements.visitDays(m_changed.key, Number::min(), Number::max(), add);
            return days;
        }
        const std::int64_t first = firstDay();
        if (const auto before = m_measurements.latestDayBefore(m_changed.key, first)) {
            add(*before);
        }
        if (m_changed.isAppended) {
            addDaysOfReadings(days);
            return days;
        }
        const std::int64_t last = lastDay();
        m_measurements.visitDays(m_changed.key, first, last, add);
        if (const auto after = m_measurements.earliestDayAfter(m_changed.key, last)) {
            add(*after);
        }
        return days;
    }

    void addDaysOfReadings(std::vector<DaySummary>& days) const
    {
        for (const Reading& reading : m_changed.readings) {
            const std::int64_t day = m_days.dayOf(reading.time);
            if (days.empty() || days.back().day != day) {
                days.emplace_back();
            }
            const std::int64_t samples = days.back().samples + 1;
            days.back() = {day, reading.time, reading.count, reading.offsetMinutes, reading.value, samples};
        }
    }

    // A day's readings are compared with the last one of the measured day before it: all of them are judged
    // when something has changed from that one on.
    void judgeDays()
    {
        std::optional<DaySummary> before;
        std::optional<ReadingKey> lastChange; // before the day
        for (const DaySummary& day : daysToJudge()) {
            std::optional<JudgedValue::PreviousDay> previous;
            if (before) {
                previous = previousDay(*before, day.day);
            }
            passRemoved(day.day, lastChange);
            const bool isReferenceChanged =
                lastChange && (!before || *lastChange >= ReadingKey(before->time, before->count));
            const auto first = m_next;
            while (m_next != m_changed.readings.end() && m_days.dayOf(m_next->time) == day.day) {
                ++m_next;
            }
            if ((m_judgesAll || isReferenceChanged) && std::distance(first, m_next) < day.samples) {
                for (const Reading& reading : readingsOf(day.day)) {
                    judge(reading, previous);
                }
            } else {
                std::for_each(first, m_next, [&](const Reading& reading) { judge(reading, previous); });
            }
            if (first != m_next) {
                lastChange = std::max(lastChange.value_or(first->key()), std::prev(m_next)->key());
            }
            before = day;
        }
    }

    void passRemoved(std::int64_t day, std::optional<ReadingKey>& lastChange)
    {
        for (; m_nextRemoved != m_changed.removed.end() && m_days.dayOf(m_nextRemoved->first) < day;
             ++m_nextRemoved) {
            lastChange = std::max(lastChange.value_or(*m_nextRemoved), *m_nextRemoved);
        }
    }

    std::vector<Reading> readingsOf(std::int64_t day) const
    {
        std::vector<Reading> readings;
        m_measurements.visitSamples(
            m_changed.key, m_days.beginOf(day), m_days.beginOf(day + 1),
            [&readings](const Sample& sample) { readings.push_back(readingOf(sample)); });
        return readings;
    }

    void judge(const Reading& reading, const std::optional<JudgedValue::PreviousDay>& previous)
    {
        const auto held = m_held.find({reading.time, reading.count});
        if (held != m_held.end()) {
            std::size_t& withdrawn = m_news->rejudged[held->second];
            if (!isInExcess(m_point, reading, previous, m_groups, nullptr)) {
                m_session.excesses().remove(m_point->key, reading.time, reading.count);
                ++withdrawn;
            }
        } else if (isInExcess(m_point, reading, previous, m_groups, &m_news->fresh)) {
            m_session.excesses().insert(m_point->key, {reading.time, reading.count, m_book.today()});
        }
    }

    Session& m_session;
    const Measurements& m_measurements;
    LocalDays& m_days;
    AlarmBook& m_book;
    const std::vector<const LimitingGroup*>& m_groups;
    const ChangedPoint& m_changed;
    std::vector<Reading>::const_iterator m_next; // not judged yet
    std::vector<ReadingKey>::const_iterator m_nextRemoved;
    bool m_judgesAll = false;
    AlarmsOfReadings m_held; // those in excess before
    std::shared_ptr<const JudgedPoint> m_point;
    News* m_news = nullptr;
};

Judgement::Judgement(Session& session, const MonitoredQuantity& quantity, LocalDays& days,
                     const Author& author)
    : m_session(session), m_quantity(quantity), m_days(days), m_limits(session, quantity),
      m_book(session, quantity, days, author), m_hasAlarms(hasAlarms(session, quantity))
{
}

void Judgement::expect(const Session& session, const MonitoredQuantity& quantity)
{
    QuantityLimits::expect(session, quantity);
    session.documents(DocumentKind::Alarm).expect(QuantityQuery(quantity, 1).query());
}

void Judgement::judge(const ChangedPoint& changed)
{
    if (concerns(changed.name)) {
        PointJudge(*this, changed).judge(m_news);
    }
}

void Judgement::forget(std::int64_t point, const std::string& name)
{
    if (!concerns(name)) {
        return;
    }
    News& news = m_news[name];
    std::vector<ReadingKey> readings;
    m_session.excesses().visit(point, std::numeric_limits<Instant>::min(), endOfTime,
                               [&](const ReadingInExcess& reading) {
                                   readings.emplace_back(reading.time, reading.count);
                                   ++news.rejudged[reading.alarm];
                               });
    for (const auto& [time, count] : readings) {
        m_session.excesses().remove(point, time, count);
    }
    // It may stand among the depths of a detail without being in excess itself.
    news.depthsSince = std::numeric_limits<Instant>::min();
}

Judgement::Outcome Judgement::finish()
{
    Outcome outcome;
    for (const auto& [name, news] : m_news) {
        const bool isAmongDepths = news.depthsSince && m_hasAlarms;
        if (news.fresh.isEmpty() && news.rejudged.empty() && !isAmongDepths) {
            continue;
        }
        const auto points = namedPoints(m_session, m_quantity, name);
        for (const std::string& alarm : alarmsOf(news, points)) {
            const auto rejudged = news.rejudged.find(alarm);
            std::size_t withdrawn = rejudged == news.rejudged.end() ? 0 : rejudged->second;
            const std::vector<AlarmDetail> worst = rejudged == news.rejudged.end()
                                                       ? addFresh(alarm, name, news)
                                                       : judgeAgain(alarm, name, points, withdrawn);
            m_book.update(alarm, name, worst, points, withdrawn);
        }
        if (!news.fresh.isEmpty()) {
            outcome.alarmOfName.emplace(name, m_book.today());
        }
    }
    AlarmBook::Closed closed = m_book.close();
    outcome.changedAlarms = std::move(closed.changed);
    outcome.removedAlarms = std::move(closed.removed);
    return outcome;
}

std::vector<std::string> Judgement::Outcome::touchedAlarms() const
{
    std::vector<std::string> alarms = changedAlarms;
    alarms.insert(alarms.end(), removedAlarms.begin(), removedAlarms.end());
    return alarms;
}

// The alarms whose details of the name may have changed.
std::set<std::string> Judgement::alarmsOf(const News& news,
                                          const std::vector<std::shared_ptr<const JudgedPoint>>& points)
{
    std::set<std::string> alarms;
    for (const auto& [alarm, withdrawn] : news.rejudged) {
        alarms.insert(alarm);
    }
    if (!news.fresh.isEmpty()) {
        alarms.insert(m_book.today());
    }
    if (news.depthsSince) {
        for (const auto& point : points) {
            m_session.excesses().visit(
                point->key, *news.depthsSince, endOfTime,
                [&alarms](const ReadingInExcess& reading) { alarms.insert(reading.alarm); });
        }
    }
    return alarms;
}

// Judges every reading of the name that stands in the alarm, as one of the worst may have changed.
std::vector<AlarmDetail> Judgement::judgeAgain(const std::string& alarm, const std::string& name,
                                               const std::vector<std::shared_ptr<const JudgedPoint>>& points,
                                               std::size_t& withdrawn)
{
    const Measurements& measurements = m_session.measurements();
    WorstReadings worst;
    for (const auto& point : points) {
        std::vector<ReadingKey> readings;
        m_session.excesses().visitOfAlarm(point->key, alarm, [&readings](const ReadingInExcess& reading) {
            readings.emplace_back(reading.time, reading.count);
        });
        for (const auto& [time, count] : readings) {
            const std::optional<Sample> sample = measurements.findSample(point->key, time, count);
            const std::int64_t day = m_days.dayOf(time);
            const std::optional<DaySummary> before = measurements.latestDayBefore(point->key, day);
            std::optional<JudgedValue::PreviousDay> previous;
            if (before) {
                previous = previousDay(*before, day);
            }
            if (!sample || !isInExcess(point, readingOf(*sample), previous, m_limits.of(name), &worst)) {
                // A group has changed since it was found.
                m_session.excesses().remove(point->key, time, count);
                ++withdrawn;
            }
        }
    }
    std::vector<AlarmDetail> details;
    for (const Excess& excess : worst.excesses()) {
        details.push_back(m_book.detailOf(excess));
    }
    return worstOf(details);
}

// What was the worst so far is among the details.
std::vector<AlarmDetail> Judgement::addFresh(const std::string& alarm, const std::string& name,
                                             const News& news)
{
    std::vector<AlarmDetail> details = m_book.detailsOf(alarm, name);
    if (!news.fresh.isEmpty() && alarm == m_book.today()) {
        for (const Excess& excess : news.fresh.excesses()) {
            details.push_back(m_book.detailOf(excess));
        }
    }
    return worstOf(details);
}

} // namespace monitorservice
