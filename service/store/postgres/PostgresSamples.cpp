#include "store/postgres/PostgresSamples.h"

#include "store/postgres/PostgresArray.h"
#include "store/postgres/ProjectNumbers.h"
#include "store/postgres/SegmentRows.h"

#include <algorithm>
#include <string>
#include <tuple>

namespace monitorservice {

namespace {

constexpr std::size_t samplesOfPart = 128;

// The days of about as many samples are held at once.
constexpr std::size_t mostHeld = 200'000;

// Rows of one statement.
constexpr std::int32_t mostRows = 4000;

bool isBefore(const KeptSample& kept, Instant time, std::int32_t count)
{
    return std::tie(kept.sample.time, kept.sample.count) < std::tie(time, count);
}

std::size_t placeOf(const std::vector<KeptSample>& samples, Instant time, std::int32_t count)
{
    // Most samples come in their order.
    if (samples.empty() || isBefore(samples.back(), time, count)) {
        return samples.size();
    }
    const auto place =
        std::lower_bound(samples.begin(), samples.end(), time,
                         [count](const KeptSample& kept, Instant at) { return isBefore(kept, at, count); });
    return static_cast<std::size_t>(place - samples.begin());
}

bool isAt(const std::vector<KeptSample>& samples, std::size_t place, Instant time, std::int32_t count)
{
    return place < samples.size() && samples[place].sample.time == time &&
           samples[place].sample.count == count;
}

// Parts of days on their way to the database.
class PartsToWrite
{
public:
    explicit PartsToWrite(PostgresConnection& connection) : m_connection(connection) {}

    void add(std::int64_t point, std::int64_t day, std::size_t part, const KeptSample* first,
             const KeptSample* end)
    {
        const std::vector<KeptSample> samples(first, end);
        const Sample& last = samples.back().sample;
        std::int64_t lastDelivery = samples.front().delivery;
        for (const KeptSample& kept : samples) {
            lastDelivery = std::max(lastDelivery, kept.delivery);
        }
        m_rows.projects.add(projectNumberOf(point));
        m_rows.points.add(point);
        m_rows.days.add(day);
        m_rows.parts.add(static_cast<std::int64_t>(part));
        m_rows.samples.add(static_cast<std::int64_t>(samples.size()));
        m_rows.firstTimes.add(samples.front().sample.time);
        m_rows.lastTimes.add(last.time);
        m_rows.lastCounts.add(std::int64_t{last.count});
        m_rows.lastOffsets.add(last.offsetMinutes);
        m_rows.lastValues.add(last.value);
        m_rows.lastDeliveries.add(lastDelivery);
        m_rows.contents.add(encodeSegment(samples));
        if (m_rows.points.size() >= mostRows) {
            write();
        }
    }

    void write()
    {
        if (m_rows.points.size() == 0) {
            return;
        }
        m_connection.post(
            "INSERT INTO sample_segments (project_number, point, day, part, samples, first_time, last_time, "
            "last_count, last_offset_minutes, last_value, last_delivery, content) "
            "SELECT * FROM unnest($1::bigint[], $2::bigint[], $3::bigint[], $4::bigint[], $5::bigint[], "
            "$6::bigint[], $7::bigint[], $8::bigint[], $9::bigint[], $10::double precision[], "
            "$11::bigint[], $12::bytea[]) "
            "ON CONFLICT (project_number, point, day, part) DO UPDATE SET samples = excluded.samples, "
            "first_time = excluded.first_time, last_time = excluded.last_time, "
            "last_count = excluded.last_count, last_offset_minutes = excluded.last_offset_minutes, "
            "last_value = excluded.last_value, last_delivery = excluded.last_delivery, "
            "content = excluded.content",
            m_rows.projects, m_rows.points, m_rows.days, m_rows.parts, m_rows.samples, m_rows.firstTimes,
            m_rows.lastTimes, m_rows.lastCounts, m_rows.lastOffsets, m_rows.lastValues, m_rows.lastDeliveries,
            m_rows.contents);
        m_rows = Rows();
    }

private:
    using Type = PostgresArray::Type;

    struct Rows
    {
        PostgresArray projects{Type::Integer};
        PostgresArray points{Type::Integer};
        PostgresArray days{Type::Integer};
        PostgresArray parts{Type::Integer};
        PostgresArray samples{Type::Integer};
        PostgresArray firstTimes{Type::Integer};
        PostgresArray lastTimes{Type::Integer};
        PostgresArray lastCounts{Type::Integer};
        PostgresArray lastOffsets{Type::Integer};
        PostgresArray lastValues{Type::Real};
        PostgresArray lastDeliveries{Type::Integer};
        PostgresArray contents{Type::Bytes};
    };

    PostgresConnection& m_connection;
    Rows m_rows;
};

} // namespace

void PostgresSamples::expect(const std::vector<ExpectedSamples>& points)
{
    if (m_held > mostHeld) {
        flush();
        forgetAll();
    }
    PostgresArray projects(PostgresArray::Type::Integer);
    PostgresArray numbers(PostgresArray::Type::Integer);
    PostgresArray days(PostgresArray::Type::Integer);
    std::vector<Day*> read;
    for (const ExpectedSamples& one : points) {
        for (const DayPeriod& period : *one.days) {
            const auto [day, isNew] = m_days.try_emplace({one.point, period.day}, Day{period, {}});
            if (isNew && m_newPoints.count(one.point) == 0) {
                projects.add(projectNumberOf(one.point));
                numbers.add(one.point);
                days.add(period.day);
                read.push_back(&day->second);
            }
        }
        if (!one.days->empty()) {
            m_before[one.point] = {one.days->front().day, one.before};
        }
    }
    if (read.empty()) {
        return;
    }
    const PostgresResult rows = m_connection.run(
        "SELECT e.place, s.content FROM unnest($1::bigint[], $2::bigint[], $3::bigint[]) WITH ORDINALITY "
        "AS e (project, point, day, place) JOIN sample_segments AS s ON s.project_number = e.project AND "
        "s.point = e.point AND s.day = e.day ORDER BY e.place, s.part",
        projects, numbers, days);
    for (int row = 0; row < rows.rows(); ++row) {
        Day& day = *read.at(static_cast<std::size_t>(rows.integer(row, 0)) - 1);
        const std::size_t before = day.samples.size();
        decodeStored(rows.view(row, 1), day.samples);
        ++day.partsHeld;
        m_held += day.samples.size() - before;
    }
}

const std::optional<DaySummary>* PostgresSamples::latestDayBefore(std::int64_t point, std::int64_t day) const
{
    const auto before = m_before.find(point);
    return before != m_before.end() && before->second.day == day ? &before->second.latest : nullptr;
}

bool PostgresSamples::insert(std::int64_t point, const DayPeriod& period, const Sample& sample,
                             std::int64_t delivery)
{
    Day& day = dayOf(point, period);
    const std::size_t place = placeOf(day.samples, sample.time, sample.count);
    if (isAt(day.samples, place, sample.time, sample.count)) {
        return false;
    }
    day.samples.insert(day.samples.begin() + static_cast<std::ptrdiff_t>(place), {sample, delivery});
    ++m_held;
    noteChange({point, period.day}, day, place);
    return true;
}

void PostgresSamples::replace(std::int64_t point, const DayPeriod& period, const Sample& sample)
{
    Day& day = dayOf(point, period);
    const std::size_t place = placeOf(day.samples, sample.time, sample.count);
    if (isAt(day.samples, place, sample.time, sample.count)) {
        Sample& held = day.samples[place].sample;
        held.value = sample.value;
        held.timeFlag = sample.timeFlag;
        noteChange({point, period.day}, day, place);
    }
}

void PostgresSamples::remove(std::int64_t point, const DayPeriod& period, Instant time, std::int32_t count)
{
    Day& day = dayOf(point, period);
    const std::size_t place = placeOf(day.samples, time, count);
    if (isAt(day.samples, place, time, count)) {
        day.samples.erase(day.samples.begin() + static_cast<std::ptrdiff_t>(place));
        --m_held;
        noteChange({point, period.day}, day, place);
    }
}

std::optional<Sample> PostgresSamples::find(std::int64_t point, Instant time, std::int32_t count)
{
    std::vector<KeptSample> read;
    const std::vector<KeptSample>* samples = &read;
    const bool isOfLatest = m_latest != m_days.end() && m_latest->first.first == point &&
                            time >= m_latest->second.period.from && time < m_latest->second.period.before;
    if (isOfLatest) {
        samples = &m_latest->second.samples;
    } else {
        flush();
        SegmentRows rows(m_connection, {point}, Period{time, time + 1});
        while (rows.next()) {
            rows.decode(read);
        }
    }
    const std::size_t place = placeOf(*samples, time, count);
    return isAt(*samples, place, time, count) ? std::optional((*samples)[place].sample) : std::nullopt;
}

void PostgresSamples::flush()
{
    PartsToWrite parts(m_connection);
    for (const auto& [point, number] : m_changed) {
        Day& day = m_days.at({point, number});
        const std::size_t firstPart = day.firstChanged / samplesOfPart;
        const std::size_t partsNeeded = (day.samples.size() + samplesOfPart - 1) / samplesOfPart;
        for (std::size_t part = firstPart; part < partsNeeded; ++part) {
            const std::size_t begin = part * samplesOfPart;
            const std::size_t end = std::min(begin + samplesOfPart, day.samples.size());
            parts.add(point, number, part, day.samples.data() + begin, day.samples.data() + end);
        }
        if (partsNeeded < day.partsHeld) {
            m_connection.post("DELETE FROM sample_segments WHERE project_number = $1 AND point = $2 AND "
                              "day = $3 AND part >= $4",
                              projectNumberOf(point), point, number, static_cast<std::int64_t>(partsNeeded));
        }
        day.partsHeld = partsNeeded;
        day.firstChanged = unchanged;
    }
    parts.write();
    m_changed.clear();
}

void PostgresSamples::forget(std::int64_t point)
{
    m_latest = m_days.end();
    m_before.erase(point);
    for (auto day = m_days.lower_bound({point, std::numeric_limits<std::int64_t>::min()});
         day != m_days.end() && day->first.first == point;) {
        m_held -= day->second.samples.size();
        m_changed.erase(day->first);
        day = m_days.erase(day);
    }
}

void PostgresSamples::forgetAll()
{
    m_days.clear();
    m_changed.clear();
    m_latest = m_days.end();
    m_newPoints.clear(); // what they had may have been written
    m_before.clear();
    m_held = 0;
}

PostgresSamples::Day& PostgresSamples::dayOf(std::int64_t point, const DayPeriod& period)
{
    const std::pair key{point, period.day};
    if (m_latest != m_days.end() && m_latest->first == key) {
        return m_latest->second;
    }
    m_latest = m_days.find(key);
    if (m_latest != m_days.end()) {
        return m_latest->second;
    }
    if (m_held > mostHeld) {
        flush();
        forgetAll();
    }
    Day day{period, {}};
    if (m_newPoints.count(point) == 0) {
        const PostgresResult rows =
            m_connection.run("SELECT content FROM sample_segments WHERE project_number = $1 AND point = $2 "
                             "AND day = $3 ORDER BY part",
                             projectNumberOf(point), point, period.day);
        for (int row = 0; row < rows.rows(); ++row) {
            decodeStored(rows.view(row, 0), day.samples);
        }
        day.partsHeld = static_cast<std::size_t>(rows.rows());
    }
    m_held += day.samples.size();
    m_latest = m_days.emplace(key, std::move(day)).first;
    return m_latest->second;
}

void PostgresSamples::noteChange(const Key& key, Day& day, std::size_t place)
{
    m_changed.insert(key);
    if (const auto before = m_before.find(key.first);
        before != m_before.end() && key.second < before->second.day) {
        m_before.erase(before);
    }
    day.firstChanged = std::min(day.firstChanged, place);
}

} // namespace monitorservice
