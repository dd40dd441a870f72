#include "store/postgres/PostgresPointSelection.h"

#include "domain/Document.h"
#include "domain/SampleText.h"
#include "json/JsonPieces.h"
#include "json/JsonText.h"
#include "store/postgres/PostgresArray.h"
#include "store/postgres/PostgresDocuments.h"
#include "store/sql/Narrowing.h"
#include "store/sql/Ordering.h"
#include "store/sql/Reach.h"

#include <algorithm>
#include <limits>

namespace monitorservice {

namespace {

constexpr const char* pageColumns = "SELECT p.point, p.id, p.category, p.name, p.depth, p.document";

// Points whose samples are asked for at once.
constexpr std::size_t pointsAtOnce = 200;

constexpr std::uint64_t allOfThem = std::numeric_limits<std::uint64_t>::max();

bool isOrderedByNewest(const DocumentQuery& query)
{
    return std::any_of(query.order.begin(), query.order.end(),
                       [](const OrderTerm& term) { return term.path == "data.time"; });
}

// Beyond the largest number there is nothing to skip to.
std::uint64_t sumOf(std::uint64_t skip, std::uint64_t limit)
{
    return limit > allOfThem - skip ? allOfThem : skip + limit;
}

Sql orderOf(const DocumentQuery& query, const Sql& newest)
{
    std::vector<OrderableField> fields = postgresTable(DocumentKind::PointLocation).orderable;
    const auto field = std::find_if(fields.begin(), fields.end(),
                                    [](const OrderableField& one) { return one.path == "data.time"; });
    field->value = newest;
    return Sql(" ").append(orderBy(query.order, fields, "id", postgresDialect));
}

DayValue dayValueOf(std::int64_t day, const Sample& sample)
{
    return {day, sample.time, sample.count, sample.offsetMinutes, sample.value};
}

} // namespace

// What stands for the samples of the points of one batch. Each part is asked for all of them when it is first
// wanted of one.
class PostgresPointSelection::Summaries
{
public:
    Summaries(PostgresConnection& connection, SampleChoice& choice, const std::vector<std::int64_t>& points)
        : m_connection(connection), m_choice(choice), m_points(points)
    {
    }

    PointSummary of(std::size_t place, const SummaryParts& parts)
    {
        PointSummary summary;
        if (parts.latest) {
            read(m_latest, [this] { return latestChosen(); });
            summary.latest = m_latest->at(place);
        }
        if (parts.earliest) {
            read(m_earliest, [this] { return earliest(); });
            summary.earliest = m_earliest->at(place);
        }
        if (parts.extremes) {
            read(m_extremes, [this] { return extremes(); });
            summary.smallest = m_extremes->at(place).first;
            summary.largest = m_extremes->at(place).second;
        }
        return summary;
    }

private:
    using Extremes = std::pair<std::optional<double>, std::optional<double>>;

    template <typename Values, typename Reading>
    static void read(std::optional<Values>& values, const Reading& reading)
    {
        if (!values) {
            values = reading();
        }
    }

    std::vector<std::optional<Sample>> latestChosen()
    {
        std::vector<std::optional<Sample>> latest(m_points.size());
        SegmentRows rows(m_connection, m_points, m_choice.around(),
                         m_choice.isPeriod() ? SegmentRows::Order::Latest : SegmentRows::Order::Falling);
        std::vector<KeptSample> samples;
        while (rows.next()) {
            std::optional<Sample>& found = latest.at(rows.place());
            if (found) {
                continue;
            }
            samples.clear();
            rows.decode(samples);
            const auto last = std::find_if(samples.rbegin(), samples.rend(), [this](const KeptSample& kept) {
                return m_choice.chooses(kept.sample);
            });
            if (last != samples.rend()) {
                found = last->sample;
            }
        }
        return latest;
    }

    std::vector<std::optional<double>> earliest()
    {
        std::vector<std::optional<double>> values(m_points.size());
        SegmentRows rows(m_connection, m_points, {}, SegmentRows::Order::Earliest);
        std::vector<KeptSample> samples;
        while (rows.next()) {
            samples.clear();
            rows.decode(samples);
            values.at(rows.place()) = samples.front().sample.value;
        }
        return values;
    }

    // Of the last values of the days: those of their last parts.
    std::vector<Extremes> extremes()
    {
        std::vector<Extremes> values(m_points.size());
        PostgresArray projects(PostgresArray::Type::Integer);
        PostgresArray points(PostgresArray::Type::Integer);
        for (const std::int64_t point : m_points) {
            projects.add(projectNumberOf(point));
            points.add(point);
        }
        const PostgresResult rows = m_connection.run(
            "SELECT k.place, min(s.last_value), max(s.last_value) FROM unnest($1::bigint[], $2::bigint[]) "
            "WITH ORDINALITY AS k (project, point, place) JOIN sample_segments AS s ON "
            "s.project_number = k.project AND s.point = k.point WHERE NOT EXISTS (SELECT 1 FROM "
            "sample_segments AS l WHERE l.project_number = s.project_number AND l.point = s.point AND "
            "l.day = s.day AND l.part > s.part) GROUP BY k.place",
            projects, points);
        for (int row = 0; row < rows.rows(); ++row) {
            values.at(static_cast<std::size_t>(rows.integer(row, 0)) - 1) = {rows.real(row, 1),
                                                                             rows.real(row, 2)};
        }
        return values;
    }

    PostgresConnection& m_connection;
    SampleChoice& m_choice;
    const std::vector<std::int64_t>& m_points;
    std::optional<std::vector<std::optional<Sample>>> m_latest;
    std::optional<std::vector<std::optional<double>>> m_earliest;
    std::optional<std::vector<Extremes>> m_extremes;
};

PostgresPointSelection::PostgresPointSelection(PostgresConnection& connection, ProjectNumbers& projects,
                                               const DocumentQuery& query)
    : m_connection(connection), m_choice(pointConditions(query.where).ofSamples),
      m_ofPoints(pointConditions(query.where).ofPoints), m_asksSamples(leadsInto(m_ofPoints, "data")),
      m_matcher(m_ofPoints), m_query(query)
{
    m_query.where = nullptr;
    const DocumentTable& table = postgresTable(DocumentKind::PointLocation);
    orderOf(query, newestColumn()); // read for its check alone
    m_points = Sql(" FROM " + table.view + " AS p WHERE ")
                   .append(reachOf(query, rowsOfProject(query, projects), "p"));
    if (query.parent) {
        m_points.append(" AND p." + table.parent + " = ").appendValue(*query.parent);
    }
    m_narrowing = narrow(m_ofPoints, table.narrowable, postgresDialect);
    m_points.append(" AND (").append(m_narrowing.condition).append(")");
}

std::uint64_t PostgresPointSelection::count()
{
    if (isExact()) {
        const PostgresResult counted = m_connection.run(Sql("SELECT count(*)").append(m_points));
        return static_cast<std::uint64_t>(counted.integer(0, 0));
    }
    return choose(allOfThem).keys.size();
}

void PostgresPointSelection::visit(const PointVisitor& visitor)
{
    forEachBatch([&](const PagePoints& points, const std::vector<std::int64_t>& /*keys*/) {
        for (const PagePoint& point : points) {
            m_connection.show(visitor, point.found());
        }
    });
}

void PostgresPointSelection::visitSamples(const PointChooser& point, const SampleVisitor& sample)
{
    forEachBatch([&](const PagePoints& points, const std::vector<std::int64_t>& keys) {
        SegmentRows rows(m_connection, keys, m_choice.around());
        bool isRow = rows.next();
        std::vector<KeptSample> samples;
        for (std::size_t place = 0; place < points.size(); ++place) {
            const bool isWanted = m_connection.show(point, points[place].found());
            for (; isRow && rows.place() == place; isRow = rows.next()) {
                samples.clear();
                if (isWanted) {
                    rows.decode(samples);
                }
                for (const KeptSample& kept : samples) {
                    if (m_choice.chooses(kept.sample)) {
                        m_connection.show(sample, kept.sample);
                    }
                }
            }
        }
    });
}

void PostgresPointSelection::visitDays(const PointChooser& point, const DayVisitor& day)
{
    forEachBatch([&](const PagePoints& points, const std::vector<std::int64_t>& keys) {
        SegmentRows rows(m_connection, keys, m_choice.around());
        bool isRow = rows.next();
        std::vector<KeptSample> samples;
        for (std::size_t place = 0; place < points.size(); ++place) {
            const bool isWanted = m_connection.show(point, points[place].found());
            std::optional<DayValue> last;
            const auto showLast = [&] {
                if (isWanted && last) {
                    m_connection.show(day, *last);
                }
            };
            for (; isRow && rows.place() == place; isRow = rows.next()) {
                if (last && last->day != rows.day()) {
                    showLast();
                    last.reset();
                }
                // The last sample of a part tells for itself, unless more than its time matters.
                if (m_choice.isPeriod() && m_choice.chooses(rows.last())) {
                    last = dayValueOf(rows.day(), rows.last());
                    continue;
                }
                samples.clear();
                rows.decode(samples);
                const auto found =
                    std::find_if(samples.rbegin(), samples.rend(),
                                 [this](const KeptSample& kept) { return m_choice.chooses(kept.sample); });
                if (found != samples.rend()) {
                    last = dayValueOf(rows.day(), found->sample);
                }
            }
            showLast();
        }
    });
}

void PostgresPointSelection::visitSummaries(const SummaryChooser& point, const SummaryVisitor& summary)
{
    forEachBatch([&](const PagePoints& points, const std::vector<std::int64_t>& keys) {
        Summaries summaries(m_connection, m_choice, keys);
        for (std::size_t place = 0; place < points.size(); ++place) {
            const SummaryParts parts = m_connection.show(point, points[place].found());
            m_connection.show(summary, summaries.of(place, parts));
        }
    });
}

// In the order of the query, but for that by the newest chosen sample; no more than are enough of them.
PostgresPointSelection::Chosen PostgresPointSelection::choose(std::uint64_t enough)
{
    Sql columns = "SELECT p.point";
    if (!m_narrowing.exact) {
        columns.append(", p.category, p.document");
    }
    const Sql order = isOrderedByNewest(m_query) ? Sql() : orderOf(m_query, "last_time");
    PostgresCursor rows(m_connection, columns.append(m_points).append(order));
    Chosen chosen;
    std::vector<std::int64_t> candidates;
    while (chosen.keys.size() < enough && rows.next()) {
        const std::int64_t point = rows.integer(0);
        if (m_narrowing.exact || m_matcher.matches(pointDocument(point, rows.view(1), rows.view(2)))) {
            candidates.push_back(point);
        }
        if (candidates.size() >= pointsAtOnce) {
            addChosen(chosen, candidates);
            candidates.clear();
        }
    }
    addChosen(chosen, candidates);
    return chosen;
}

// Those of the candidates that have a chosen sample, when samples are chosen.
void PostgresPointSelection::addChosen(Chosen& chosen, const std::vector<std::int64_t>& candidates)
{
    if (m_choice.choosesAll()) {
        chosen.keys.insert(chosen.keys.end(), candidates.begin(), candidates.end());
        chosen.newest.resize(chosen.keys.size());
        return;
    }
    const std::vector<std::optional<Instant>> newest = newestChosen(candidates);
    for (std::size_t place = 0; place < candidates.size(); ++place) {
        if (newest[place]) {
            chosen.keys.push_back(candidates[place]);
            chosen.newest.push_back(newest[place]);
        }
    }
}

std::vector<std::optional<Instant>>
PostgresPointSelection::newestChosen(const std::vector<std::int64_t>& points)
{
    std::vector<std::optional<Instant>> newest;
    newest.reserve(points.size());
    Summaries summaries(m_connection, m_choice, points);
    for (std::size_t place = 0; place < points.size(); ++place) {
        const std::optional<Sample> latest = summaries.of(place, {true, false, false}).latest;
        newest.push_back(latest ? std::optional(latest->time) : std::nullopt);
    }
    return newest;
}

// What the conditions on a point are asked of.
std::string PostgresPointSelection::pointDocument(std::int64_t point, std::string_view category,
                                                  std::string_view document)
{
    std::string json(openedDocument(document));
    json += ",\"category\":";
    appendJsonString(json, category);
    if (m_asksSamples) {
        json += ",\"data\":[";
        SegmentRows rows(m_connection, {point}, {});
        std::vector<KeptSample> samples;
        for (bool first = true; rows.next();) {
            samples.clear();
            rows.decode(samples);
            for (const KeptSample& kept : samples) {
                json += first ? "" : ",";
                appendSample(json, kept.sample);
                first = false;
            }
        }
        json += ']';
    }
    json += '}';
    return json;
}

std::unique_ptr<PostgresCursor> PostgresPointSelection::page()
{
    if (!isExact()) {
        const bool isSorted = !isOrderedByNewest(m_query);
        return pageOf(choose(isSorted ? sumOf(m_query.skip, m_query.limit) : allOfThem));
    }
    return std::make_unique<PostgresCursor>(m_connection,
                                            Sql(pageColumns)
                                                .append(m_points)
                                                .append(orderOf(m_query, "last_time"))
                                                .append(" ")
                                                .append(Sql::page(m_query.skip, m_query.limit)),
                                            m_query.limit);
}

std::unique_ptr<PostgresCursor> PostgresPointSelection::pageOf(const Chosen& chosen)
{
    PostgresArray projects(PostgresArray::Type::Integer);
    PostgresArray points(PostgresArray::Type::Integer);
    PostgresArray newest(PostgresArray::Type::Integer);
    for (std::size_t place = 0; place < chosen.keys.size(); ++place) {
        projects.add(projectNumberOf(chosen.keys[place]));
        points.add(chosen.keys[place]);
        newest.add(chosen.newest[place]);
    }
    // The arrays come first, so that they are $1 to $3.
    const Sql order = orderOf(m_query, newestColumn());
    PostgresValues values;
    values.add(projects);
    values.add(points);
    values.add(newest);
    values.add(static_cast<std::int64_t>(std::min<std::uint64_t>(m_query.limit, INT64_MAX)));
    values.add(static_cast<std::int64_t>(std::min<std::uint64_t>(m_query.skip, INT64_MAX)));
    const std::string view = postgresTable(DocumentKind::PointLocation).view;
    // OFFSET keeps the server from joining them another way than by looking each of them up: without
    // statistics it would take all points of a project for a few.
    return std::make_unique<PostgresCursor>(
        m_connection,
        std::string(pageColumns) +
            " FROM unnest($1::bigint[], $2::bigint[], $3::bigint[]) AS chosen (chosen_project, chosen_point, "
            "newest) CROSS JOIN LATERAL (SELECT * FROM " +
            view + " WHERE project_number = chosen_project AND point = chosen_point OFFSET 0) AS p" +
            order.text(postgresDialect) + " LIMIT $4 OFFSET $5",
        values, m_query.limit);
}

// Points of the page, with their keys once more.
template <typename Use>
void PostgresPointSelection::forEachBatch(const Use& use)
{
    const std::unique_ptr<PostgresCursor> rows = page();
    PagePoints points;
    std::vector<std::int64_t> keys;
    const auto useBatch = [&] {
        if (!points.empty()) {
            use(points, keys);
        }
        points.clear();
        keys.clear();
    };
    while (rows->next()) {
        const std::string_view document = rows->view(5);
        points.push_back({rows->integer(0), rows->text(1), rows->text(2), rows->text(3), rows->text(4),
                          std::string(findJsonMember(document, "\"links\"").value_or("")),
                          std::string(document)});
        keys.push_back(points.back().key);
        if (points.size() >= pointsAtOnce) {
            useBatch();
        }
    }
    useBatch();
}

} // namespace monitorservice
