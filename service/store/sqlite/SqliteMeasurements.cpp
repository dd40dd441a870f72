#include "store/sqlite/SqliteMeasurements.h"

#include "domain/Depth.h"
#include "store/sqlite/SampleRows.h"
#include "store/sqlite/SqlitePointSelection.h"
#include "store/sqlite/SqliteSchema.h"

#include <array>

namespace monitorservice {

std::optional<StoredPoint> SqliteMeasurements::findPoint(const std::string& cell,
                                                         const std::string& subCategory,
                                                         const std::string& name,
                                                         const std::string& depth) const
{
    SqliteStatement statement =
        m_connection.statement("SELECT point, id, document FROM point_locations WHERE cell = ? AND "
                               "sub_category = ? AND name = ? AND depth = ?");
    statement.bind(cell, subCategory, name, depth);
    if (statement.step()) {
        return StoredPoint{statement.integer(0), statement.text(1), statement.text(2)};
    }
    return depth.empty() ? std::nullopt
                         : findPointSpeltOtherwise(cell, subCategory, name, settledDepth(depth));
}

// SQLite finds what may be the same number, within the index; what is the same is not said by rounded
// numbers.
std::optional<StoredPoint> SqliteMeasurements::findPointSpeltOtherwise(const std::string& cell,
                                                                       const std::string& subCategory,
                                                                       const std::string& name,
                                                                       const std::string& settled) const
{
    SqliteStatement statement = m_connection.statement(
        "SELECT depth, point, id, document FROM point_locations WHERE cell = ? AND sub_category = ? AND "
        "name = ? AND CAST(depth AS REAL) = CAST(? AS REAL)");
    statement.bind(cell, subCategory, name, settled);
    while (statement.step()) {
        if (settledDepth(statement.view(0)) == settled) {
            return StoredPoint{statement.integer(1), statement.text(2), statement.text(3)};
        }
    }
    return std::nullopt;
}

void SqliteMeasurements::visitPoints(const std::string& cell, const std::string& subCategory,
                                     const std::string& name, const PointVisitor& visitor) const
{
    SqliteStatement statement =
        m_connection.statement("SELECT point, id, document FROM point_locations WHERE cell = ? AND "
                               "sub_category = ? AND name = ? ORDER BY depth");
    statement.bind(cell, subCategory, name);
    while (statement.step()) {
        m_connection.show(visitor, StoredPoint{statement.integer(0), statement.text(1), statement.text(2)});
    }
}

std::optional<StoredPoint> SqliteMeasurements::latestPoint(const std::string& cell,
                                                           const std::string& subCategory) const
{
    SqliteStatement statement =
        m_connection.statement("SELECT point, id, document FROM point_locations WHERE cell = ? AND "
                               "sub_category = ? AND last_time IS NOT NULL ORDER BY last_time DESC LIMIT 1");
    statement.bind(cell, subCategory);
    if (!statement.step()) {
        return std::nullopt;
    }
    return StoredPoint{statement.integer(0), statement.text(1), statement.text(2)};
}

void SqliteMeasurements::visitDeliveredTo(const std::string& cell, const std::string& subCategory,
                                          std::int64_t delivery, const DeliveredToVisitor& visitor) const
{
    SqliteStatement statement = m_connection.statement(
        "SELECT point, id, document, first_delivery, last_delivery FROM point_locations WHERE cell = ? AND "
        "sub_category = ? AND last_delivery >= ? ORDER BY name, depth");
    statement.bind(cell, subCategory, delivery);
    while (statement.step()) {
        m_connection.show(visitor, DeliveredTo{{statement.integer(0), statement.text(1), statement.text(2)},
                                               statement.integer(3),
                                               statement.integer(4)});
    }
}

std::int64_t SqliteMeasurements::insertPoint(const std::string& project, const std::string& id,
                                             const std::string& document, std::int64_t delivery)
{
    static const std::string sql =
        "INSERT INTO point_locations (project, id, document, cell, sub_category, name, depth, last_time, "
        "first_delivery, last_delivery) "
        "VALUES (?1, ?2, ?3, json_extract(?3, '$.cellId'), json_extract(?3, '$.subCategoryId'), "
        "json_extract(?3, '$.name'), json_extract(?3, '$.depth'), " +
        instantIn("json_extract(?3, '$.lastDate')") + ", ?4, ?4)";
    m_connection.statement(sql).bind(project, id, document, delivery).run();
    return m_connection.database().getLastInsertRowid();
}

void SqliteMeasurements::replacePoint(std::int64_t point, const std::string& document,
                                      const std::optional<Instant>& lastTime,
                                      const std::optional<std::int64_t>& delivery)
{
    m_connection
        .statement("UPDATE point_locations SET document = ?, last_time = ?, "
                   "last_delivery = ifnull(?, last_delivery) WHERE point = ?")
        .bind(document, lastTime, delivery, point)
        .run();
}

void SqliteMeasurements::removePoint(std::int64_t point)
{
    m_days.write();
    for (const char* const sql :
         {"DELETE FROM samples WHERE point = ?", "DELETE FROM day_rollup WHERE point = ?",
          "DELETE FROM point_locations WHERE point = ?"}) {
        m_connection.statement(sql).bind(point).run();
    }
}

bool SqliteMeasurements::replaceLinks(std::int64_t point, const std::string& links, Instant when,
                                      const std::string& who)
{
    SqliteStatement statement = m_connection.statement(
        "UPDATE point_locations SET document = json_set(document, '$.links', json(?), '$.updatedAt', "
        "max(json_extract(document, '$.updatedAt'), ?), '$.updatedBy', ?) WHERE point = ? AND "
        "json_extract(document, '$.links') <> json(?)");
    statement.bind(links, isoText(when), who, point, links);
    return statement.run() > 0;
}

std::unique_ptr<PointSelection> SqliteMeasurements::select(const DocumentQuery& query) const
{
    m_days.write();
    return std::make_unique<SqlitePointSelection>(m_connection, query);
}

std::optional<Sample> SqliteMeasurements::earliestSample(std::int64_t point) const
{
    static const std::string sql = std::string(selectSamplesOf) + "? ORDER BY time, count LIMIT 1";
    SqliteStatement statement = m_connection.statement(sql);
    statement.bind(point);
    return statement.step() ? std::optional(sampleOf(statement)) : std::nullopt;
}

std::optional<Sample> SqliteMeasurements::latestSample(std::int64_t point) const
{
    static const std::string sql = std::string(selectSamplesOf) + "? ORDER BY time DESC, count DESC LIMIT 1";
    SqliteStatement statement = m_connection.statement(sql);
    statement.bind(point);
    return statement.step() ? std::optional(sampleOf(statement)) : std::nullopt;
}

std::optional<Sample> SqliteMeasurements::findSample(std::int64_t point, Instant time,
                                                     std::int32_t count) const
{
    static const std::string sql = std::string(selectSamplesOf) + "? AND time = ? AND count = ?";
    SqliteStatement statement = m_connection.statement(sql);
    statement.bind(point, time, std::int64_t{count});
    if (!statement.step()) {
        return std::nullopt;
    }
    return sampleOf(statement);
}

void SqliteMeasurements::visitSamples(std::int64_t point, Instant from, Instant before,
                                      const SampleVisitor& visitor) const
{
    static const std::string sql =
        std::string(selectSamplesOf) + "? AND time >= ? AND time < ? ORDER BY time, count";
    SqliteStatement statement = m_connection.statement(sql);
    statement.bind(point, from, before);
    Sample sample;
    while (statement.step()) {
        readSample(statement, sample);
        m_connection.show(visitor, sample);
    }
}

void SqliteMeasurements::visitKept(std::int64_t point, const KeptVisitor& visitor) const
{
    SqliteStatement statement =
        m_connection.statement("SELECT time, count, offset_minutes, value, time_flag, delivery FROM samples "
                               "WHERE point = ? ORDER BY time, count");
    statement.bind(point);
    KeptSample kept;
    while (statement.step()) {
        readSample(statement, kept.sample);
        kept.delivery = statement.integer(5);
        m_connection.show(visitor, kept);
    }
}

void SqliteMeasurements::visitSamplesOf(std::int64_t point, std::int64_t delivery,
                                        const SampleVisitor& visitor) const
{
    static const std::string sql = std::string(selectSamplesOf) + "? AND delivery = ? ORDER BY time, count";
    SqliteStatement statement = m_connection.statement(sql);
    statement.bind(point, delivery);
    Sample sample;
    while (statement.step()) {
        readSample(statement, sample);
        m_connection.show(visitor, sample);
    }
}

std::vector<std::int64_t> SqliteMeasurements::deliveriesOf(std::int64_t point) const
{
    SqliteStatement statement = m_connection.statement(
        "SELECT first_delivery AS delivery FROM point_locations WHERE point = ?1 UNION "
        "SELECT delivery FROM samples WHERE point = ?1 ORDER BY delivery DESC");
    statement.bind(point);
    std::vector<std::int64_t> deliveries;
    while (statement.step()) {
        deliveries.push_back(statement.integer(0));
    }
    return deliveries;
}

bool SqliteMeasurements::insertSample(std::int64_t point, const DayPeriod& day, const Sample& sample,
                                      std::int64_t delivery)
{
    SqliteStatement statement = m_connection.statement(
        "INSERT INTO samples (point, time, count, offset_minutes, value, time_flag, delivery) VALUES "
        "(?, ?, ?, ?, ?, ?, ?) ON CONFLICT (point, time, count) DO NOTHING");
    statement.bind(point, sample.time, std::int64_t{sample.count}, offsetColumn(sample.offsetMinutes),
                   sample.value, sample.timeFlag, delivery);
    if (statement.run() == 0) {
        return false;
    }
    m_days.inserted(point, day, sample);
    return true;
}

void SqliteMeasurements::replaceSample(std::int64_t point, const DayPeriod& day, const Sample& sample)
{
    SqliteStatement statement = m_connection.statement(
        "UPDATE samples SET value = ?, time_flag = ? WHERE point = ? AND time = ? AND count = ?");
    statement.bind(sample.value, sample.timeFlag, point, sample.time, std::int64_t{sample.count});
    if (statement.run() > 0) {
        m_days.replaced(point, day, sample);
    }
}

void SqliteMeasurements::removeSample(std::int64_t point, const DayPeriod& day, Instant time,
                                      std::int32_t count)
{
    SqliteStatement statement =
        m_connection.statement("DELETE FROM samples WHERE point = ? AND time = ? AND count = ?");
    statement.bind(point, time, std::int64_t{count});
    if (statement.run() > 0) {
        m_days.removed(point, day);
    }
}

void SqliteMeasurements::visitDays(std::int64_t point, std::int64_t first, std::int64_t last,
                                   const DayVisitor& visitor) const
{
    m_days.visit(point, first, last, visitor);
}

std::optional<DaySummary> SqliteMeasurements::latestDayBefore(std::int64_t point, std::int64_t day) const
{
    return m_days.latestBefore(point, day);
}

std::optional<DaySummary> SqliteMeasurements::earliestDayAfter(std::int64_t point, std::int64_t day) const
{
    return m_days.earliestAfter(point, day);
}

void SqliteMeasurements::removeDelivered(const std::string& cell, const std::string& subCategory)
{
    m_days.write();
    // What refers comes before what is referred to.
    constexpr std::array<const char*, 9> statements{
        "DELETE FROM excesses WHERE point IN (SELECT point FROM point_locations WHERE cell = ? AND "
        "sub_category = ?)",
        "DELETE FROM alarm_depths WHERE detail IN (SELECT e.id FROM alarm_details AS e JOIN alarms AS a ON "
        "a.id = e.alarm WHERE a.cell = ? AND a.sub_category = ?)",
        "DELETE FROM alarm_details WHERE alarm IN (SELECT id FROM alarms WHERE cell = ? AND sub_category = "
        "?)",
        "DELETE FROM alarms WHERE cell = ? AND sub_category = ?",
        "DELETE FROM histories WHERE data_manage IN (SELECT id FROM data_manages WHERE cell = ? AND "
        "sub_category = ?)",
        "DELETE FROM data_manages WHERE cell = ? AND sub_category = ?",
        "DELETE FROM samples WHERE point IN (SELECT point FROM point_locations WHERE cell = ? AND "
        "sub_category = ?)",
        "DELETE FROM day_rollup WHERE point IN (SELECT point FROM point_locations WHERE cell = ? AND "
        "sub_category = ?)",
        "DELETE FROM point_locations WHERE cell = ? AND sub_category = ?"};
    for (const char* const sql : statements) {
        m_connection.statement(sql).bind(cell, subCategory).run();
    }
}

} // namespace monitorservice
