#include "store/sqlite/SqlitePointSelection.h"

#include "domain/Document.h"
#include "domain/SampleText.h"
#include "json/JsonText.h"
#include "store/StoreError.h"
#include "store/sql/Narrowing.h"
#include "store/sql/Reach.h"
#include "store/sql/TextMatcher.h"
#include "store/sqlite/SampleRows.h"
#include "store/sqlite/SqliteDocuments.h"

#include <algorithm>
#include <limits>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

namespace monitorservice {

namespace {

// What the conditions on a sample are asked of.
std::string documentOfSample(const SqliteFunction::Arguments& arguments)
{
    const std::optional<int> offset =
        arguments.isNull(1) ? std::nullopt : std::optional(static_cast<int>(arguments.integer(1)));
    return sampleDocument(arguments.integer(0), offset, arguments.text(2));
}

// Columns day, time, count, offset_minutes, value.
DayValue dayOf(const SqliteStatement& row)
{
    return {row.integer(0), row.integer(1), static_cast<std::int32_t>(row.integer(2)), offsetIn(row, 3),
            row.real(4)};
}

bool isBefore(const DayValue& left, const DayValue& right)
{
    return std::tie(left.time, left.count) < std::tie(right.time, right.count);
}

// The statement that selects samples of a point, which is the first value bound.
std::string textOfSamples(const Sql& condition, const char* order)
{
    return Sql(selectSamplesOf)
        .appendValue(std::int64_t{0})
        .append(" AND ")
        .append(condition)
        .append(order)
        .text(sqliteDialect);
}

} // namespace

SqlitePointSelection::SqlitePointSelection(SqliteConnection& connection, const DocumentQuery& query)
    : m_connection(connection)
{
    const auto [ofSamples, ofPoints] = pointConditions(query.where);
    chooseSamples(ofSamples);
    m_samplesText = textOfSamples(m_sampleCondition, " ORDER BY time, count");
    m_latestText = textOfSamples(m_sampleCondition, " ORDER BY time DESC, count DESC LIMIT 1");
    choosePoints(ofPoints, query);
    orderPoints(query);
}

void SqlitePointSelection::chooseSamples(const Where& where)
{
    static const std::vector<NarrowableField> fields{{samplePathTime, "samples.time", FieldKind::Time},
                                                     {samplePathFlag, "samples.time_flag"}};
    const Narrowing narrowing = narrow(where, fields, sqliteDialect);
    m_choosesSamples = !where.isEmpty();
    m_sampleCondition = narrowing.condition;
    if (narrowing.exact) {
        m_period = periodOf(where);
        return;
    }
    m_sampleCondition.andAlso("sample_matches(samples.time, samples.offset_minutes, samples.time_flag)");
    const auto matcher = std::make_shared<TextMatcher>(where);
    m_sampleMatches = std::make_unique<SqliteFunction>(
        m_connection, "sample_matches", 3, [matcher](const SqliteFunction::Arguments& arguments) {
            return matcher->matches(documentOfSample(arguments));
        });
}

void SqlitePointSelection::choosePoints(const Where& where, const DocumentQuery& query)
{
    const DocumentTable& table = sqliteTable(DocumentKind::PointLocation);
    m_points = Sql(" FROM " + table.view + " AS p WHERE ").append(reachOf(query, rowsOfProject(query), "p"));
    if (query.parent) {
        m_points.append(" AND p." + table.parent + " = ").appendValue(*query.parent);
    }
    const Narrowing narrowing = narrow(where, table.narrowable, sqliteDialect);
    m_points.append(" AND (").append(narrowing.condition).append(")");
    Sql matches;
    if (!narrowing.exact) {
        matches = "point_matches(p.point, p.category, p.document)";
        const auto matcher = std::make_shared<TextMatcher>(where);
        m_pointMatches = std::make_unique<SqliteFunction>(
            m_connection, "point_matches", 3,
            [this, matcher,
             withSamples = leadsInto(where, "data")](const SqliteFunction::Arguments& arguments) {
                return matcher->matches(pointDocument(arguments, withSamples));
            });
    }
    if (m_choosesSamples) {
        matches.andAlso(Sql("EXISTS (SELECT 1 FROM samples WHERE samples.point = p.point AND ")
                            .append(m_sampleCondition)
                            .append(")"));
    }
    if (!matches.isEmpty()) {
        // Points out of reach must not cost steps of a pattern, or their number would tell about them. SQLite
        // evaluates the terms of an AND in any order, and where a column equals a value puts the value in its
        // place everywhere: hence CASE, whose order is kept, and the point looked up by its key once more.
        m_points
            .append(" AND CASE WHEN EXISTS (SELECT 1 FROM " + table.view +
                    " AS r WHERE r.point = p.point AND ")
            .append(reachOf(query, rowsOfProject(query), "r"))
            .append(") THEN ")
            .append(matches)
            .append(" ELSE FALSE END");
    }
}

void SqlitePointSelection::orderPoints(const DocumentQuery& query)
{
    std::vector<OrderableField> fields = sqliteTable(DocumentKind::PointLocation).orderable;
    if (m_choosesSamples) {
        const auto newest = std::find_if(fields.begin(), fields.end(), [](const OrderableField& field) {
            return field.path == "data.time";
        });
        newest->value = Sql("(SELECT samples.time FROM samples WHERE samples.point = p.point AND ")
                            .append(m_sampleCondition)
                            .append(" ORDER BY samples.time DESC LIMIT 1)");
    }
    m_page = Sql(" ")
                 .append(orderBy(query.order, fields, "id", sqliteDialect))
                 .append(" ")
                 .append(Sql::page(query.skip, query.limit));
}

std::uint64_t SqlitePointSelection::count()
{
    SqliteStatement statement = m_connection.bound(Sql("SELECT count(*)").append(m_points));
    step(statement);
    return static_cast<std::uint64_t>(statement.integer(0));
}

void SqlitePointSelection::visit(const PointVisitor& visitor)
{
    forEachPoint([&](const FoundPoint& found) { m_connection.show(visitor, found); });
}

void SqlitePointSelection::visitSamples(const PointChooser& point, const SampleVisitor& sample)
{
    forEachPoint([&](const FoundPoint& found) {
        if (m_connection.show(point, found)) {
            visitSamplesOf(found.key, [&](const Sample& one) { m_connection.show(sample, one); });
        }
    });
}

void SqlitePointSelection::visitDays(const PointChooser& point, const DayVisitor& day)
{
    const DayVisitor shown = [&](const DayValue& one) {
        m_connection.show(day, one);
    };
    forEachPoint([&](const FoundPoint& found) {
        if (!m_connection.show(point, found)) {
            return;
        }
        if (m_period) {
            visitDaysOfPeriod(found.key, *m_period, shown);
        } else {
            visitDaysOfSamples(found.key, shown);
        }
    });
}

void SqlitePointSelection::visitSummaries(const SummaryChooser& point, const SummaryVisitor& summary)
{
    forEachPoint([&](const FoundPoint& found) {
        const SummaryParts parts = m_connection.show(point, found);
        m_connection.show(summary, summaryOf(found.key, parts));
    });
}

void SqlitePointSelection::forEachPoint(const PointVisitor& use)
{
    SqliteStatement statement =
        m_connection.bound(Sql("SELECT p.point, p.id, p.category, p.name, p.depth, p.links, p.document")
                               .append(m_points)
                               .append(m_page));
    while (step(statement)) {
        use({statement.integer(0), statement.view(1), statement.view(2), statement.view(3), statement.view(4),
             statement.view(5), statement.view(6)});
    }
}

void SqlitePointSelection::visitSamplesOf(std::int64_t point, const SampleVisitor& visitor)
{
    SqliteStatement statement = chosenSamplesOf(point, m_samplesText);
    Sample sample;
    while (step(statement)) {
        readSample(statement, sample);
        visitor(sample);
    }
}

// The last sample of a day is the last chosen one as well, but for the day within which the period ends.
void SqlitePointSelection::visitDaysOfPeriod(std::int64_t point, const Period& period,
                                             const DayVisitor& visitor)
{
    // A day begins and ends less than a day away from that of UTC with the same number.
    SqliteStatement statement = daysOf(point, utcDayOf(period.from) - 1, utcDayOf(period.before) + 1);
    std::optional<DayValue> previous;
    while (statement.step()) {
        DayValue day = dayOf(statement);
        if (day.time >= period.before) {
            const std::optional<DayValue> last = lastSampleOfPeriod(point);
            if (last && (!previous || isBefore(*previous, *last))) {
                visitor({day.day, last->time, last->count, last->offsetMinutes, last->value});
            }
            return;
        }
        if (day.time >= period.from) {
            visitor(day);
        }
        previous = day;
    }
}

// A sample belongs to the first day whose last sample is not before it.
void SqlitePointSelection::visitDaysOfSamples(std::int64_t point, const DayVisitor& visitor)
{
    constexpr auto ever = std::numeric_limits<std::int64_t>::max();
    SqliteStatement days = daysOf(point, std::numeric_limits<std::int64_t>::min(), ever);
    std::optional<DayValue> day;
    std::optional<DayValue> last;
    visitSamplesOf(point, [&](const Sample& sample) {
        const DayValue value{0, sample.time, sample.count, sample.offsetMinutes, sample.value};
        while (!day || isBefore(*day, value)) {
            if (!days.step()) {
                throw StoreError(StoreFailure::InputOutput, "what is kept of each day is damaged");
            }
            day = dayOf(days);
        }
        if (last && last->day != day->day) {
            visitor(*last);
        }
        last = value;
        last->day = day->day;
    });
    if (last) {
        visitor(*last);
    }
}

std::optional<DayValue> SqlitePointSelection::lastSampleOfPeriod(std::int64_t point)
{
    const std::optional<Sample> sample = latestSampleOf(point);
    if (!sample) {
        return std::nullopt;
    }
    return DayValue{0, sample->time, sample->count, sample->offsetMinutes, sample->value};
}

std::optional<Sample> SqlitePointSelection::latestSampleOf(std::int64_t point)
{
    SqliteStatement statement = chosenSamplesOf(point, m_latestText);
    if (!step(statement)) {
        return std::nullopt;
    }
    return sampleOf(statement);
}

PointSummary SqlitePointSelection::summaryOf(std::int64_t point, const SummaryParts& parts)
{
    PointSummary summary;
    if (parts.latest) {
        summary.latest = latestSampleOf(point);
    }
    if (parts.earliest) {
        SqliteStatement statement =
            m_connection.statement("SELECT value FROM samples WHERE point = ? ORDER BY time, count LIMIT 1");
        statement.bind(point);
        if (statement.step()) {
            summary.earliest = statement.real(0);
        }
    }
    if (parts.extremes) {
        SqliteStatement statement =
            m_connection.statement("SELECT min(value), max(value) FROM day_rollup WHERE point = ?");
        statement.bind(point);
        if (statement.step() && !statement.isNull(0)) {
            summary.smallest = statement.real(0);
            summary.largest = statement.real(1);
        }
    }
    return summary;
}

// What the conditions on a point are asked of.
std::string SqlitePointSelection::pointDocument(const SqliteFunction::Arguments& arguments, bool withSamples)
{
    std::string json(openedDocument(arguments.text(2)));
    json += ",\"category\":";
    appendJsonString(json, arguments.text(1));
    if (withSamples) {
        json += ",\"data\":[";
        SqliteStatement statement =
            m_connection.statement(std::string(selectSamplesOf) + "? ORDER BY time, count");
        statement.bind(arguments.integer(0));
        for (bool first = true; statement.step(); first = false) {
            json += first ? "" : ",";
            appendSample(json, sampleOf(statement));
        }
        json += ']';
    }
    json += '}';
    return json;
}

SqliteStatement SqlitePointSelection::chosenSamplesOf(std::int64_t point, const std::string& text)
{
    SqliteStatement statement = m_connection.statement(text);
    statement.bind(point);
    for (const SqlValue& value : m_sampleCondition.values()) {
        std::visit([&statement](const auto& one) { statement.bindNext(one); }, value);
    }
    return statement;
}

SqliteStatement SqlitePointSelection::daysOf(std::int64_t point, std::int64_t first, std::int64_t last)
{
    SqliteStatement statement =
        m_connection.statement("SELECT day, time, count, offset_minutes, value FROM day_rollup "
                               "WHERE point = ? AND day BETWEEN ? AND ? ORDER BY day");
    statement.bind(point, first, last);
    return statement;
}

// Goes to the next row; what a condition threw on the way is thrown in place of SQLite's message about it.
bool SqlitePointSelection::step(SqliteStatement& statement)
{
    try {
        return statement.step();
    } catch (const StoreError&) {
        for (const auto& function : {m_sampleMatches.get(), m_pointMatches.get()}) {
            if (function != nullptr) {
                function->rethrow();
            }
        }
        throw;
    }
}

} // namespace monitorservice
