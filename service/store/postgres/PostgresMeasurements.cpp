#include "store/postgres/PostgresMeasurements.h"

#include "domain/Depth.h"
#include "domain/PointLocation.h"
#include "json/JsonMembers.h"
#include "json/JsonPieces.h"
#include "json/JsonText.h"
#include "store/postgres/PostgresPointSelection.h"
#include "store/postgres/SegmentRows.h"
#include "store/postgres/StoredColumns.h"
#include "store/postgres/StoredDays.h"
#include "time/Timestamp.h"

#include <array>
#include <set>
#include <utility>

namespace monitorservice {

namespace {

StoredPoint pointOf(const PostgresResult& rows, int row)
{
    return {rows.integer(row, 0), rows.text(row, 1), rows.text(row, 2)};
}

std::optional<StoredPoint> onePoint(const PostgresResult& rows)
{
    return rows.isEmpty() ? std::nullopt : std::optional(pointOf(rows, 0));
}

std::string_view textOf(std::string_view document, std::string_view quotedName)
{
    const std::optional<std::string_view> member = findJsonMember(document, quotedName);
    if (!member || member->size() < 2) {
        throw StoreError(StoreFailure::InputOutput,
                         "a stored point location lacks " + std::string(quotedName));
    }
    return member->substr(1, member->size() - 2);
}

std::string quoted(const std::string& text)
{
    std::string json;
    appendJsonString(json, text);
    return json;
}

std::optional<Instant> lastTimeOf(const std::string& document)
{
    const std::optional<Timestamp> time = parseTimestamp(textOf(document, "\"lastDate\""));
    return time ? std::optional(time->milliseconds) : std::nullopt;
}

} // namespace

void PostgresMeasurements::expect(const std::string& cell, const std::string& subCategory,
                                  const std::vector<ExpectedPoint>& points)
{
    m_samples.flush(); // what is fetched is as it is now
    std::vector<ExpectedSamples> samples;
    for (const ExpectedPoints::Found& found :
         m_expected.fetch(m_projects.ofCell(cell), cell, subCategory, points)) {
        samples.push_back({found.point, &found.expected->days, found.before});
    }
    m_samples.expect(samples);
}

std::optional<StoredPoint> PostgresMeasurements::findPoint(const std::string& cell,
                                                           const std::string& subCategory,
                                                           const std::string& name,
                                                           const std::string& depth) const
{
    if (auto expected = m_expected.take(cell, subCategory, name, depth)) {
        return std::move(expected->point);
    }
    std::optional<StoredPoint> found = onePoint(m_connection.run(
        "SELECT point, id, document FROM point_locations WHERE project_number = $1 AND cell = $2 AND "
        "sub_category = $3 AND name = $4 AND depth = $5",
        m_projects.ofCell(cell), cell, subCategory, name, depth));
    if (found || depth.empty()) {
        return found;
    }
    return findPointSpeltOtherwise(cell, subCategory, name, settledDepth(depth));
}

// The database finds what may be the same number; what is the same is not said by rounded numbers.
std::optional<StoredPoint> PostgresMeasurements::findPointSpeltOtherwise(const std::string& cell,
                                                                         const std::string& subCategory,
                                                                         const std::string& name,
                                                                         const std::string& settled) const
{
    const PostgresResult found = m_connection.run(
        "SELECT point, id, document, depth FROM point_locations WHERE project_number = $1 AND cell = $2 AND "
        "sub_category = $3 AND name = $4 AND depth_number = $5",
        m_projects.ofCell(cell), cell, subCategory, name, numberAtBeginOf(settled));
    for (int row = 0; row < found.rows(); ++row) {
        if (settledDepth(found.view(row, 3)) == settled) {
            return pointOf(found, row);
        }
    }
    return std::nullopt;
}

void PostgresMeasurements::visitPoints(const std::string& cell, const std::string& subCategory,
                                       const std::string& name, const PointVisitor& visitor) const
{
    const PostgresResult found = m_connection.run(
        "SELECT point, id, document FROM point_locations WHERE project_number = $1 AND cell = $2 AND "
        "sub_category = $3 AND name = $4 ORDER BY depth",
        m_projects.ofCell(cell), cell, subCategory, name);
    for (int row = 0; row < found.rows(); ++row) {
        m_connection.show(visitor, pointOf(found, row));
    }
}

std::optional<StoredPoint> PostgresMeasurements::latestPoint(const std::string& cell,
                                                             const std::string& subCategory) const
{
    return onePoint(m_connection.run(
        "SELECT point, id, document FROM point_locations WHERE project_number = $1 AND cell = $2 AND "
        "sub_category = $3 AND last_time IS NOT NULL ORDER BY last_time DESC, point LIMIT 1",
        m_projects.ofCell(cell), cell, subCategory));
}

void PostgresMeasurements::visitDeliveredTo(const std::string& cell, const std::string& subCategory,
                                            std::int64_t delivery, const DeliveredToVisitor& visitor) const
{
    const PostgresResult found =
        m_connection.run("SELECT point, id, document, first_delivery, last_delivery FROM point_locations "
                         "WHERE project_number = $1 AND "
                         "cell = $2 AND sub_category = $3 AND last_delivery >= $4 ORDER BY name, depth",
                         m_projects.ofCell(cell), cell, subCategory, delivery);
    for (int row = 0; row < found.rows(); ++row) {
        m_connection.show(visitor,
                          DeliveredTo{pointOf(found, row), found.integer(row, 3), found.integer(row, 4)});
    }
}

std::int64_t PostgresMeasurements::insertPoint(const std::string& project, const std::string& id,
                                               const std::string& document, std::int64_t delivery)
{
    const std::int64_t number = m_projects.of(project);
    if (m_expected.missing() > 0) {
        const auto location = fromDocument<PointLocation>(document);
        m_expected.forgetMissing(location.cell, location.subCategory, location.name);
    }
    const std::int64_t point = newPoint(number, project);
    PostgresValues values;
    values.add(number);
    values.add(point);
    values.add(id);
    values.add(document);
    values.add(lastTimeOf(document));
    values.add(delivery);
    addColumns(values, storedColumns(DocumentKind::PointLocation), document);
    m_connection.postPrepared("INSERT INTO point_locations (project_number, point, id, document, last_time, "
                              "first_delivery, last_delivery, cell, sub_category, name, depth, depth_number) "
                              "VALUES ($1, $2, $3, $4, $5, $6, $6, $7, $8, $9, $10, $11)",
                              values);
    m_samples.noteNew(point);
    return point;
}

// Numbers are taken for all points that are still expected to be new; those not needed are left out.
std::int64_t PostgresMeasurements::newPoint(std::int64_t number, const std::string& project)
{
    if (m_newPoints.project != number || m_newPoints.left == 0) {
        const auto count = static_cast<std::int64_t>(1 + m_expected.missing());
        const PostgresResult given = m_connection.run(
            "UPDATE project_numbers SET points = points + $2 WHERE number = $1 RETURNING points", number,
            count);
        if (given.isEmpty()) {
            throw StoreError(StoreFailure::Conflict, "there is no project " + project);
        }
        m_newPoints = {number, given.integer(0, 0) - count, count};
    }
    --m_newPoints.left;
    return pointNumber(number, ++m_newPoints.last);
}

void PostgresMeasurements::replacePoint(std::int64_t point, const std::string& document,
                                        const std::optional<Instant>& lastTime,
                                        const std::optional<std::int64_t>& delivery)
{
    m_expected.forget(point);
    m_connection.post("UPDATE point_locations SET document = $3, last_time = $4, "
                      "last_delivery = coalesce($5, last_delivery) WHERE project_number = $1 AND point = $2",
                      projectNumberOf(point), point, document, lastTime, delivery);
}

void PostgresMeasurements::removePoint(std::int64_t point)
{
    m_expected.forget(point);
    m_samples.forget(point);
    for (const char* const table : {"sample_segments", "point_locations"}) {
        m_connection.post("DELETE FROM " + std::string(table) + " WHERE project_number = $1 AND point = $2",
                          projectNumberOf(point), point);
    }
}

bool PostgresMeasurements::replaceLinks(std::int64_t point, const std::string& links, Instant when,
                                        const std::string& who)
{
    const PostgresResult found =
        m_connection.run("SELECT document FROM point_locations WHERE project_number = $1 AND point = $2",
                         projectNumberOf(point), point);
    if (found.isEmpty() || findJsonMember(found.view(0, 0), "\"links\"") == links) {
        return false;
    }
    m_expected.forget(point);
    std::string document = withMember(found.view(0, 0), "links", links);
    // Texts of times sort like times.
    if (const std::string now = isoText(when); textOf(document, "\"updatedAt\"") < now) {
        document = withMember(document, "updatedAt", quoted(now));
    }
    document = withMember(document, "updatedBy", quoted(who));
    m_connection.post("UPDATE point_locations SET document = $3 WHERE project_number = $1 AND point = $2",
                      projectNumberOf(point), point, document);
    return true;
}

std::unique_ptr<PointSelection> PostgresMeasurements::select(const DocumentQuery& query) const
{
    m_samples.flush();
    return std::make_unique<PostgresPointSelection>(m_connection, m_projects, query);
}

std::optional<Sample> PostgresMeasurements::earliestSample(std::int64_t point) const
{
    m_samples.flush();
    SegmentRows rows(m_connection, {point}, {}, SegmentRows::Order::Earliest);
    std::vector<KeptSample> samples;
    if (!rows.next()) {
        return std::nullopt;
    }
    rows.decode(samples);
    return samples.front().sample;
}

std::optional<Sample> PostgresMeasurements::latestSample(std::int64_t point) const
{
    m_samples.flush();
    SegmentRows rows(m_connection, {point}, {}, SegmentRows::Order::Latest);
    std::vector<KeptSample> samples;
    if (!rows.next()) {
        return std::nullopt;
    }
    rows.decode(samples);
    return samples.back().sample;
}

std::optional<Sample> PostgresMeasurements::findSample(std::int64_t point, Instant time,
                                                       std::int32_t count) const
{
    return m_samples.find(point, time, count);
}

void PostgresMeasurements::visitSamples(std::int64_t point, Instant from, Instant before,
                                        const SampleVisitor& visitor) const
{
    m_samples.flush();
    SegmentRows rows(m_connection, {point}, {from, before});
    std::vector<KeptSample> samples;
    while (rows.next()) {
        samples.clear();
        rows.decode(samples);
        for (const KeptSample& kept : samples) {
            if (kept.sample.time >= from && kept.sample.time < before) {
                m_connection.show(visitor, kept.sample);
            }
        }
    }
}

void PostgresMeasurements::visitKept(std::int64_t point, const KeptVisitor& visitor) const
{
    m_samples.flush();
    SegmentRows rows(m_connection, {point}, {});
    std::vector<KeptSample> samples;
    while (rows.next()) {
        samples.clear();
        rows.decode(samples);
        for (const KeptSample& kept : samples) {
            m_connection.show(visitor, kept);
        }
    }
}

void PostgresMeasurements::visitSamplesOf(std::int64_t point, std::int64_t delivery,
                                          const SampleVisitor& visitor) const
{
    m_samples.flush();
    PostgresCursor rows(m_connection, Sql("SELECT content FROM sample_segments WHERE project_number = ")
                                          .appendValue(projectNumberOf(point))
                                          .append(" AND point = ")
                                          .appendValue(point)
                                          .append(" AND last_delivery >= ")
                                          .appendValue(delivery)
                                          .append(" ORDER BY day, part"));
    std::vector<KeptSample> samples;
    while (rows.next()) {
        samples.clear();
        decodeStored(rows.view(0), samples);
        for (const KeptSample& kept : samples) {
            if (kept.delivery == delivery) {
                m_connection.show(visitor, kept.sample);
            }
        }
    }
}

std::vector<std::int64_t> PostgresMeasurements::deliveriesOf(std::int64_t point) const
{
    m_samples.flush();
    std::set<std::int64_t> deliveries;
    const PostgresResult made =
        m_connection.run("SELECT first_delivery FROM point_locations WHERE project_number = $1 AND "
                         "point = $2",
                         projectNumberOf(point), point);
    if (!made.isEmpty()) {
        deliveries.insert(made.integer(0, 0));
    }
    SegmentRows rows(m_connection, {point}, {});
    std::vector<KeptSample> samples;
    while (rows.next()) {
        samples.clear();
        rows.decode(samples);
        for (const KeptSample& kept : samples) {
            deliveries.insert(kept.delivery);
        }
    }
    return {deliveries.rbegin(), deliveries.rend()};
}

bool PostgresMeasurements::insertSample(std::int64_t point, const DayPeriod& day, const Sample& sample,
                                        std::int64_t delivery)
{
    return m_samples.insert(point, day, sample, delivery);
}

void PostgresMeasurements::replaceSample(std::int64_t point, const DayPeriod& day, const Sample& sample)
{
    m_samples.replace(point, day, sample);
}

void PostgresMeasurements::removeSample(std::int64_t point, const DayPeriod& day, Instant time,
                                        std::int32_t count)
{
    m_samples.remove(point, day, time, count);
}

void PostgresMeasurements::visitDays(std::int64_t point, std::int64_t first, std::int64_t last,
                                     const DayVisitor& visitor) const
{
    m_samples.flush();
    static const std::string sql = selectDays("s.day BETWEEN $3::bigint AND $4::bigint ORDER BY s.day");
    const PostgresResult found = m_connection.run(sql, projectNumberOf(point), point, first, last);
    for (int row = 0; row < found.rows(); ++row) {
        m_connection.show(visitor, storedDay(found, row, 0));
    }
}

std::optional<DaySummary> PostgresMeasurements::latestDayBefore(std::int64_t point, std::int64_t day) const
{
    if (const std::optional<DaySummary>* const known = m_samples.latestDayBefore(point, day)) {
        return *known;
    }
    m_samples.flush();
    static const std::string sql = selectDays("s.day < $3::bigint ORDER BY s.day DESC LIMIT 1");
    const PostgresResult found = m_connection.run(sql, projectNumberOf(point), point, day);
    return found.isEmpty() ? std::nullopt : std::optional(storedDay(found, 0, 0));
}

std::optional<DaySummary> PostgresMeasurements::earliestDayAfter(std::int64_t point, std::int64_t day) const
{
    m_samples.flush();
    static const std::string sql = selectDays("s.day > $3::bigint ORDER BY s.day LIMIT 1");
    const PostgresResult found = m_connection.run(sql, projectNumberOf(point), point, day);
    return found.isEmpty() ? std::nullopt : std::optional(storedDay(found, 0, 0));
}

void PostgresMeasurements::removeDelivered(const std::string& cell, const std::string& subCategory)
{
    m_samples.flush(); // those of others as well
    m_samples.forgetAll();
    m_expected.forgetAll();
    // What refers comes before what is referred to.
    constexpr std::array statements{
        "DELETE FROM excesses WHERE project_number = $1 AND point IN (SELECT point FROM point_locations "
        "WHERE project_number = $1 AND cell = $2 AND sub_category = $3)",
        "DELETE FROM alarm_depths WHERE project_number = $1 AND detail IN (SELECT e.id FROM alarm_details "
        "AS e JOIN alarms AS a ON a.project_number = e.project_number AND a.id = e.alarm WHERE "
        "a.project_number = $1 AND a.cell = $2 AND a.sub_category = $3)",
        "DELETE FROM alarm_details WHERE project_number = $1 AND alarm IN (SELECT id FROM alarms WHERE "
        "project_number = $1 AND cell = $2 AND sub_category = $3)",
        "DELETE FROM alarms WHERE project_number = $1 AND cell = $2 AND sub_category = $3",
        "DELETE FROM histories WHERE project_number = $1 AND data_manage IN (SELECT id FROM data_manages "
        "WHERE project_number = $1 AND cell = $2 AND sub_category = $3)",
        "DELETE FROM data_manages WHERE project_number = $1 AND cell = $2 AND sub_category = $3",
        "DELETE FROM sample_segments WHERE project_number = $1 AND point IN (SELECT point FROM "
        "point_locations WHERE project_number = $1 AND cell = $2 AND sub_category = $3)",
        "DELETE FROM point_locations WHERE project_number = $1 AND cell = $2 AND sub_category = $3"};
    for (const char* const sql : statements) {
        m_connection.post(sql, m_projects.ofCell(cell), cell, subCategory);
    }
}

} // namespace monitorservice
