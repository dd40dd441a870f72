#include "SiteData.h"

#include "DeliveringClient.h"
#include "access/Secret.h"
#include "domain/Group.h"
#include "domain/SubCategory.h"
#include "json/JsonText.h"
#include "store/sqlite/SqliteStore.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <simdjson.h>

#include <algorithm>
#include <iterator>
#include <map>

namespace monitorservice::test {

namespace {

SQLite::Database opened(const std::filesystem::path& file)
{
    return {file.string(), SQLite::OPEN_READWRITE, 5000};
}

std::string cellJson(const std::string& id, const std::string& project, const std::string& category)
{
    const std::string now = isoText(systemNow());
    return JsonObjectWriter()
        .text("_id", id)
        .text("projectId", project)
        .text("name", "Monitoring " + id)
        .text("category", category)
        .json("alarmTo", "[]")
        .json("links", "[]")
        .text("createdAt", now)
        .text("createdBy", "Ada")
        .text("updatedAt", now)
        .text("updatedBy", "Ada")
        .finish();
}

std::string groupJson(const std::string& id, const Site& site, const Target& target,
                      const GroupLimits& limits, std::size_t clients)
{
    Group group;
    group.id = id;
    group.project = site.project;
    group.cell = target.cell;
    group.subCategory = target.subCategory;
    group.name = "Group " + id;
    for (std::size_t client = 0; client < clients; ++client) {
        for (const std::string& name : DeliveringClient::pointNames(client)) {
            if (!Site::isWithoutLimits(name)) {
                group.points.push_back(name);
            }
        }
    }
    group.dayVariationType = limits.dayVarType;
    group.dayVariation = limits.dayVarValue;
    group.totalVariation = limits.totalVar;
    return toDocument(group);
}

std::size_t targetOf(const Site& site, const std::string& cell, const std::string& subCategory)
{
    const auto found = std::find_if(site.targets.begin(), site.targets.end(), [&](const Target& target) {
        return target.cell == cell && target.subCategory == subCategory;
    });
    return static_cast<std::size_t>(found - site.targets.begin());
}

std::string pointText(const PointKey& key)
{
    return std::to_string(key.target) + ' ' + key.name + '(' + key.depth + ')';
}

std::string sampleText(const SampleKey& key, const SampleValue& value)
{
    return std::to_string(key.time) + ' ' + std::to_string(key.count) + ' ' +
           (value.offsetMinutes ? std::to_string(*value.offsetMinutes) : "Z") + ' ' + numberText(value.value);
}

void addPoint(std::vector<std::string>& lines, const PointKey& key, const SiteModel::Point& point)
{
    const std::string name = pointText(key);
    const auto& [lastKey, lastValue] = *point.samples.rbegin();
    lines.push_back("point " + name + " initial " + numberText(point.initialValue) + " inserted " +
                    std::to_string(point.samples.size()) + " last " + std::to_string(lastKey.count) + ' ' +
                    timeText(lastKey.time, lastValue.offsetMinutes));
    for (const auto& [sample, value] : point.samples) {
        lines.push_back("sample " + name + ' ' + sampleText(sample, value) + ' ' + value.timeFlag);
    }
    for (const auto& [number, day] : SiteModel::daysOf(point.samples)) {
        lines.push_back("day " + name + ' ' + std::to_string(number) + ' ' + sampleText(day.last, day.value) +
                        " of " + std::to_string(day.samples));
    }
}

std::string historyText(std::size_t target, const std::string& file, std::int64_t inserted)
{
    return "history " + std::to_string(target) + ' ' + file + " inserted " + std::to_string(inserted);
}

std::vector<std::string> expectedLines(const std::vector<const SiteModel*>& models)
{
    std::vector<std::string> lines;
    for (const SiteModel* model : models) {
        for (const auto& [key, point] : model->points()) {
            addPoint(lines, key, point);
        }
        for (const SiteModel::History& history : model->histories()) {
            lines.push_back(
                historyText(history.target, history.fileId, static_cast<std::int64_t>(history.inserted)));
        }
        for (const std::string& alarm : model->alarms()) {
            lines.push_back("alarm " + alarm);
        }
    }
    return lines;
}

// What a data file holds, in the same words.
class HeldLines
{
public:
    HeldLines(SQLite::Database& database, const Site& site) : m_database(database), m_site(site) {}

    std::vector<std::string> read()
    {
        readPoints();
        readSamples();
        readDays();
        readHistories();
        readAlarms();
        return std::move(m_lines);
    }

private:
    static std::string text(simdjson::dom::element object, const char* name)
    {
        return std::string(object[name].get_string().value());
    }

    PointKey keyOf(simdjson::dom::element object) const
    {
        return {targetOf(m_site, text(object, "cellId"), text(object, "subCategoryId")), text(object, "name"),
                text(object, "depth")};
    }

    simdjson::dom::element parse(const SQLite::Column& document)
    {
        return m_parser.parse(document.getString());
    }

    void readPoints()
    {
        SQLite::Statement query(m_database, "SELECT point, document FROM point_locations");
        while (query.executeStep()) {
            const simdjson::dom::element object = parse(query.getColumn(1));
            const std::string name = pointText(keyOf(object));
            m_names[query.getColumn(0).getInt64()] = name;
            m_lines.push_back(
                "point " + name + " initial " + numberText(object["initialValue"].get_double()) +
                " inserted " + std::to_string(object["insertCount"].get_int64().value()) + " last " +
                std::to_string(object["lastCount"].get_int64().value()) + ' ' + text(object, "lastDate"));
        }
    }

    static std::string sampleOf(SQLite::Statement& query, int first)
    {
        const SQLite::Column offset = query.getColumn(first + 2);
        return sampleText({query.getColumn(first).getInt64(), query.getColumn(first + 1).getInt()},
                          {query.getColumn(first + 3).getDouble(),
                           {},
                           offset.isNull() ? std::nullopt : std::optional(offset.getInt())});
    }

    void readSamples()
    {
        SQLite::Statement query(m_database,
                                "SELECT point, time, count, offset_minutes, value, time_flag FROM samples");
        while (query.executeStep()) {
            m_lines.push_back("sample " + m_names[query.getColumn(0).getInt64()] + ' ' + sampleOf(query, 1) +
                              ' ' + query.getColumn(5).getString());
        }
    }

    void readDays()
    {
        SQLite::Statement query(
            m_database, "SELECT point, day, time, count, offset_minutes, value, samples FROM day_rollup");
        while (query.executeStep()) {
            m_lines.push_back("day " + m_names[query.getColumn(0).getInt64()] + ' ' +
                              query.getColumn(1).getString() + ' ' + sampleOf(query, 2) + " of " +
                              query.getColumn(6).getString());
        }
    }

    void readHistories()
    {
        SQLite::Statement query(m_database, "SELECT d.cell, d.sub_category, h.document FROM histories h JOIN "
                                            "data_manages d ON d.id = h.data_manage");
        while (query.executeStep()) {
            const simdjson::dom::element object = parse(query.getColumn(2));
            const std::size_t target =
                targetOf(m_site, query.getColumn(0).getString(), query.getColumn(1).getString());
            m_lines.push_back(
                historyText(target, text(object, "fileId"), object["insertCount"].get_int64().value()));
        }
    }

    void readAlarms()
    {
        SQLite::Statement query(m_database, "SELECT id, cell, sub_category FROM alarms");
        while (query.executeStep()) {
            std::string alarm = "alarm " + std::to_string(targetOf(m_site, query.getColumn(1).getString(),
                                                                   query.getColumn(2).getString()));
            SQLite::Statement details(
                m_database, "SELECT id, document FROM alarm_details WHERE alarm = ? ORDER BY point_name");
            details.bind(1, query.getColumn(0).getString());
            while (details.executeStep()) {
                alarm += detailOf(details.getColumn(0).getString(), details.getColumn(1));
            }
            m_lines.push_back(alarm);
        }
    }

    std::string detailOf(const std::string& id, const SQLite::Column& document)
    {
        const std::string depths = depthsOf(id);
        const simdjson::dom::element object = parse(document);
        const std::string day = text(object, "dayVar");
        return alarmDetailText(text(object, "pointName"), text(object, "depth"),
                               std::stod(text(object, "totalVar")),
                               day.empty() ? std::nullopt : std::optional(std::stod(day)),
                               object["totalBeyound"].get_double(), object["dayBeyound"].get_double(),
                               object["monitorCount"].get_int64(), text(object, "monitorTime"), depths);
    }

    std::string depthsOf(const std::string& detail)
    {
        SQLite::Statement query(m_database,
                                "SELECT document FROM alarm_depths WHERE detail = ? ORDER BY depth");
        query.bind(1, detail);
        std::string depths;
        while (query.executeStep()) {
            const simdjson::dom::element object = parse(query.getColumn(0));
            depths += alarmDepthText(text(object, "depth"), object["totalValue"].get_double(),
                                     object["monitorCount"].get_int64(), text(object, "monitorTime"));
        }
        return depths;
    }

    SQLite::Database& m_database;
    const Site& m_site;
    simdjson::dom::parser m_parser;
    std::map<std::int64_t, std::string> m_names;
    std::vector<std::string> m_lines;
};

// Each of these gives a row for everything that is wrong.
constexpr const char* flawQueries[] = {
    // Each entry of the history has the rows held after its delivery: the sum of what was inserted so far.
    "SELECT 'rows held after delivery ' || json_extract(document, '$.fileId') FROM (SELECT document, "
    "sum(json_extract(document, '$.insertCount')) OVER (PARTITION BY data_manage ORDER BY id) AS held FROM "
    "histories) WHERE held <> json_extract(document, '$.lastCount')",
    // As many samples as the latest entry says.
    "SELECT 'samples held in ' || d.id FROM data_manages d WHERE (SELECT json_extract(h.document, "
    "'$.lastCount') FROM histories h WHERE h.data_manage = d.id ORDER BY h.id DESC LIMIT 1) <> (SELECT "
    "count(*) "
    "FROM samples s JOIN point_locations p USING (point) WHERE p.cell = d.cell AND p.sub_category = "
    "d.sub_category)",
    // The data manage is about the latest entry of its history.
    "SELECT 'file of data manage ' || d.id FROM data_manages d WHERE json_extract(d.document, '$.fileId') <> "
    "(SELECT json_extract(h.document, '$.fileId') FROM histories h WHERE h.data_manage = d.id ORDER BY h.id "
    "DESC LIMIT 1)",
    "SELECT 'points without data manage: ' || p.id FROM point_locations p WHERE NOT EXISTS (SELECT 1 FROM "
    "data_manages d WHERE d.cell = p.cell AND d.sub_category = p.sub_category)",
    "SELECT 'points of alarm ' || a.id FROM alarms a WHERE json_extract(a.document, '$.pointCounts') <> "
    "(SELECT "
    "count(*) FROM alarm_details e WHERE e.alarm = a.id)",
    // The next identifier must be greater than any that was given.
    "SELECT 'identifier after the last: ' || id FROM (SELECT id FROM point_locations UNION ALL SELECT id "
    "FROM "
    "histories UNION ALL SELECT id FROM data_manages UNION ALL SELECT id FROM alarms UNION ALL SELECT id "
    "FROM "
    "alarm_details UNION ALL SELECT id FROM alarm_depths) WHERE id > (SELECT value FROM state WHERE key = "
    "'lastIdentifier')",
    "SELECT 'damage: ' || integrity_check FROM pragma_integrity_check WHERE integrity_check <> 'ok'",
    "SELECT 'dangling reference in ' || \"table\" FROM pragma_foreign_key_check",
};

} // namespace

Site makeSite(Store& store, std::size_t clients)
{
    Site site;
    site.token = "rkm_durability";
    const auto session = store.write();
    site.project = session->newIdentifier();
    session->projects().insert({site.project, "Pit", Site::timeZone, session->now()});
    const std::string token = session->newIdentifier();
    session->tokens().insert({token, "Ada", "", session->now(), std::nullopt, std::nullopt},
                             sha256(site.token));
    session->grants().add({session->newIdentifier(), token, site.project, std::nullopt,
                           Rights(Right::Read) | Right::Create | Right::Edit | Right::Delete,
                           session->now()});
    for (const char* const category : {"Settlement", "Settlement", "Inclinometer"}) {
        session->categories().add(category);
        const std::string subCategory = session->newIdentifier();
        session->documents(DocumentKind::SubCategory)
            .insert(
                site.project, subCategory,
                toDocument(SubCategory{subCategory, site.project, "Level " + subCategory, category, "L"}));
        const std::string cell = session->newIdentifier();
        session->documents(DocumentKind::Cell)
            .insert(site.project, cell, cellJson(cell, site.project, category));
        site.targets.push_back({cell, subCategory});
    }
    site.groups = {{{0, 2.5, 7}, {1, 150, 0}}, {{0, 0, 9}}, {{0, 3, 0}, {0, 0, 6}}};
    for (std::size_t target = 0; target < site.targets.size(); ++target) {
        for (const GroupLimits& limits : site.groups[target]) {
            const std::string id = session->newIdentifier();
            session->documents(DocumentKind::Group)
                .insert(site.project, id, groupJson(id, site, site.targets[target], limits, clients));
        }
    }
    session->commit();
    return site;
}

Site makeSite(const std::filesystem::path& file, std::size_t clients)
{
    SqliteStoreOptions options;
    options.createIfMissing = true;
    SqliteStore store(file, options);
    return makeSite(store, clients);
}

std::set<std::string> heldFiles(const std::filesystem::path& file)
{
    SQLite::Database database = opened(file);
    SQLite::Statement query(database, "SELECT DISTINCT json_extract(document, '$.fileId') FROM histories");
    std::set<std::string> files;
    while (query.executeStep()) {
        files.insert(query.getColumn(0).getString());
    }
    return files;
}

std::vector<std::string> flawsOf(const std::filesystem::path& file)
{
    SQLite::Database database = opened(file);
    std::vector<std::string> flaws;
    for (const char* const sql : flawQueries) {
        SQLite::Statement query(database, sql);
        while (query.executeStep()) {
            flaws.push_back(query.getColumn(0).getString());
        }
    }
    return flaws;
}

std::vector<std::string> differences(const std::filesystem::path& file, const Site& site,
                                     const std::vector<const SiteModel*>& models)
{
    SQLite::Database database = opened(file);
    std::vector<std::string> held = HeldLines(database, site).read();
    std::vector<std::string> expected = expectedLines(models);
    std::sort(held.begin(), held.end());
    std::sort(expected.begin(), expected.end());
    std::vector<std::string> lost;
    std::set_difference(expected.begin(), expected.end(), held.begin(), held.end(), std::back_inserter(lost));
    std::vector<std::string> foreign;
    std::set_difference(held.begin(), held.end(), expected.begin(), expected.end(),
                        std::back_inserter(foreign));
    for (std::string& line : lost) {
        line.insert(0, "not held: ");
    }
    for (const std::string& line : foreign) {
        lost.push_back("held, but not delivered: " + line);
    }
    return lost;
}

} // namespace monitorservice::test
