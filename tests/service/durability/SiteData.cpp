#include "SiteData.h"

#include "DeliveringClient.h"
#include "access/Secret.h"
#include "domain/AlarmDetail.h"
#include "domain/Group.h"
#include "domain/SubCategory.h"
#include "inspection/SampleCheck.h"
#include "json/JsonText.h"
#include "store/OpenStore.h"
#include "store/StoreContents.h"
#include "store/sqlite/DataFiles.h"

#include <simdjson.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <set>

namespace monitorservice::test {

namespace {

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

void addPoint(std::vector<std::string>& lines, const PointKey& pointKey, const SiteModel::Point& point)
{
    const std::string name = pointText(pointKey);
    std::string last = "0 ";
    if (!point.samples.empty()) {
        const auto& [key, value] = *point.samples.rbegin();
        last = std::to_string(key.count) + ' ' + timeText(key.time, value.offsetMinutes);
    }
    lines.push_back("point " + name + " initial " + numberText(point.initialValue) + " inserted " +
                    std::to_string(point.samples.size()) + " last " + last);
    for (const auto& [sample, value] : point.samples) {
        lines.push_back("sample " + name + ' ' + sampleText(sample, value) + ' ' + value.timeFlag);
    }
    for (const auto& [number, day] : SiteModel::daysOf(point.samples)) {
        lines.push_back("day " + name + ' ' + std::to_string(number) + ' ' + sampleText(day.last, day.value) +
                        " of " + std::to_string(day.samples));
    }
}

std::string historyText(std::size_t target, const std::string& file, std::int64_t inserted,
                        std::int64_t corrected)
{
    return "history " + std::to_string(target) + ' ' + file + " inserted " + std::to_string(inserted) +
           " corrected " + std::to_string(corrected);
}

std::vector<std::string> expectedLines(const std::vector<const SiteModel*>& models)
{
    std::vector<std::string> lines;
    for (const SiteModel* model : models) {
        for (const auto& [key, point] : model->points()) {
            addPoint(lines, key, point);
        }
        for (const SiteModel::History& history : model->histories()) {
            lines.push_back(historyText(history.target, history.fileId,
                                        static_cast<std::int64_t>(history.inserted),
                                        static_cast<std::int64_t>(history.corrected)));
        }
        for (const std::string& excess : model->excesses()) {
            lines.push_back("excess " + excess);
        }
    }
    return lines;
}

std::string textIn(simdjson::dom::element object, const char* name)
{
    return std::string(object[name].get_string().value());
}

std::int64_t integerIn(simdjson::dom::element object, const char* name)
{
    return object[name].get_int64();
}

// The documents that belong to another one, in the order of their identifiers.
std::vector<std::string> documentsOfParent(const Session& session, const Site& site, DocumentKind kind,
                                           const std::string& parent, const char* order = "_id")
{
    DocumentQuery query;
    query.project = site.project;
    query.parent = parent;
    query.order = parseOrder(order);
    std::vector<std::string> documents;
    session.documents(kind).visit(
        query, [&documents](std::string_view document) { documents.emplace_back(document); });
    return documents;
}

// What a store holds, in the same words.
class HeldLines
{
public:
    HeldLines(const Session& session, const Site& site) : m_session(session), m_site(site) {}

    std::vector<std::string> read()
    {
        for (const HeldPoint& point : pointsOf(m_session, m_site.project)) {
            readPoint(point);
        }
        for (const std::string& dataManage :
             documentsOf(m_session, m_site.project, DocumentKind::DataManage)) {
            readHistory(dataManage);
        }
        for (const std::string& alarm : documentsOf(m_session, m_site.project, DocumentKind::Alarm)) {
            readAlarm(alarm);
        }
        for (const auto& [name, worst] : m_worst) {
            m_lines.push_back("excess " + worstText(name.first, name.second, worst.first, worst.second));
        }
        return std::move(m_lines);
    }

private:
    std::size_t targetIn(simdjson::dom::element object) const
    {
        return targetOf(m_site, textIn(object, "cellId"), textIn(object, "subCategoryId"));
    }

    void readPoint(const HeldPoint& point)
    {
        const simdjson::dom::element object = m_parser.parse(point.document);
        const PointKey key{targetIn(object), textIn(object, "name"), textIn(object, "depth")};
        const std::string name = pointText(key);
        m_lines.push_back("point " + name + " initial " + numberText(object["initialValue"].get_double()) +
                          " inserted " + std::to_string(integerIn(object, "insertCount")) + " last " +
                          std::to_string(integerIn(object, "lastCount")) + ' ' + textIn(object, "lastDate"));
        for (const Sample& sample : point.samples) {
            m_lines.push_back(
                "sample " + name + ' ' +
                sampleText({sample.time, sample.count}, {sample.value, {}, sample.offsetMinutes}) + ' ' +
                sample.timeFlag);
        }
        for (const DaySummary& day : point.days) {
            m_lines.push_back("day " + name + ' ' + std::to_string(day.day) + ' ' +
                              sampleText({day.time, day.count}, {day.value, {}, day.offsetMinutes}) + " of " +
                              std::to_string(day.samples));
        }
        for (const ReadingInExcess& reading : point.excesses) {
            m_lines.push_back("excess " + excessText(key, {reading.time, reading.count}));
        }
    }

    void readHistory(const std::string& dataManage)
    {
        const simdjson::dom::element object = m_parser.parse(dataManage);
        const std::size_t target = targetIn(object);
        for (const std::string& history :
             documentsOfParent(m_session, m_site, DocumentKind::History, textIn(object, "_id"))) {
            const simdjson::dom::element entry = m_parser.parse(history);
            m_lines.push_back(historyText(target, textIn(entry, "fileId"), integerIn(entry, "insertCount"),
                                          integerIn(entry, "correctCount")));
        }
    }

    // The worst of each name, whatever day it was found on.
    void readAlarm(const std::string& document)
    {
        const simdjson::dom::element object = m_parser.parse(document);
        const std::size_t target = targetIn(object);
        for (const std::string& text : documentsOfParent(m_session, m_site, DocumentKind::AlarmDetail,
                                                         textIn(object, "_id"), "pointName")) {
            const auto detail = fromDocument<AlarmDetail>(text);
            const double inUnit = detail.dayVariationType == 1 ? std::abs(detail.reference) / 100 : 1;
            auto& [total, daily] = m_worst[{target, detail.point}];
            total = std::max(total, detail.totalExcess);
            daily = std::max(daily, detail.dailyExcess * inUnit);
        }
    }

    const Session& m_session;
    const Site& m_site;
    simdjson::dom::parser m_parser;
    std::vector<std::string> m_lines;
    std::map<std::pair<std::size_t, std::string>, std::pair<double, double>> m_worst;
};

// What contradicts itself in a store.
class Contradictions
{
public:
    Contradictions(const Session& session, const Site& site)
        : m_session(session), m_site(site), m_points(pointsOf(session, site.project))
    {
    }

    std::vector<std::string> find()
    {
        const std::vector<std::string> dataManages =
            documentsOf(m_session, m_site.project, DocumentKind::DataManage);
        for (const std::string& dataManage : dataManages) {
            checkDataManage(dataManage);
        }
        for (const HeldPoint& point : m_points) {
            check(std::any_of(dataManages.begin(), dataManages.end(),
                              [&](const std::string& one) { return areOfOneTarget(one, point.document); }),
                  "points without data manage: " + point.id);
        }
        for (const std::string& alarm : documentsOf(m_session, m_site.project, DocumentKind::Alarm)) {
            const simdjson::dom::element object = m_parser.parse(alarm);
            const std::string id = textIn(object, "_id");
            std::set<std::string> names;
            for (const std::string& text :
                 documentsOfParent(m_session, m_site, DocumentKind::AlarmDetail, id)) {
                const auto detail = fromDocument<AlarmDetail>(text);
                names.insert(detail.point);
                const auto depths = documentsOfParent(m_session, m_site, DocumentKind::AlarmDepth, detail.id);
                check(detail.hasDepths == !depths.empty(), "depths of alarm detail " + detail.id);
            }
            check(integerIn(object, "pointCounts") == static_cast<std::int64_t>(names.size()) &&
                      !names.empty(),
                  "points of alarm " + id);
        }
        return std::move(m_found);
    }

private:
    void check(bool holds, const std::string& what)
    {
        if (!holds) {
            m_found.push_back(what);
        }
    }

    static bool areOfOneTarget(const std::string& one, const std::string& other)
    {
        simdjson::dom::parser parser;
        simdjson::dom::parser otherParser;
        const simdjson::dom::element left = parser.parse(one);
        const simdjson::dom::element right = otherParser.parse(other);
        return textIn(left, "cellId") == textIn(right, "cellId") &&
               textIn(left, "subCategoryId") == textIn(right, "subCategoryId");
    }

    void checkDataManage(const std::string& dataManage)
    {
        const simdjson::dom::element object = m_parser.parse(dataManage);
        const std::string id = textIn(object, "_id");
        const std::string file = textIn(object, "fileId");
        const std::int64_t held = integerIn(object, "sampleCount");
        const std::int64_t deliveries = integerIn(object, "deliveries");
        // Whatever was taken back, deliveries are numbered without gaps.
        std::string latestFile;
        std::int64_t number = 0;
        for (const std::string& history : documentsOfParent(m_session, m_site, DocumentKind::History, id)) {
            const simdjson::dom::element entry = m_parser.parse(history);
            latestFile = textIn(entry, "fileId");
            check(integerIn(entry, "number") == ++number, "number of delivery " + latestFile);
            check(integerIn(entry, "lastCount") >= integerIn(entry, "insertCount"),
                  "rows held after delivery " + latestFile);
        }
        std::int64_t samples = 0;
        for (const HeldPoint& point : m_points) {
            samples += areOfOneTarget(dataManage, point.document)
                           ? static_cast<std::int64_t>(point.samples.size())
                           : 0;
        }
        check(held == samples, "samples held in " + id);
        check(deliveries == number && number > 0, "deliveries of " + id);
        check(latestFile == file, "file of data manage " + id);
    }

    const Session& m_session;
    const Site& m_site;
    std::vector<HeldPoint> m_points;
    simdjson::dom::parser m_parser;
    std::vector<std::string> m_found;
};

// The next identifier must be greater than any that was given.
std::vector<std::string> identifiersAfterTheNext(Store& store, const Site& site)
{
    const auto session = store.write();
    const std::string next = session->newIdentifier();
    std::vector<std::string> found;
    simdjson::dom::parser parser;
    for (const DocumentKind kind :
         {DocumentKind::PointLocation, DocumentKind::DataManage, DocumentKind::History, DocumentKind::Alarm,
          DocumentKind::AlarmDetail, DocumentKind::AlarmDepth}) {
        for (const std::string& document : documentsOf(*session, site.project, kind)) {
            const std::string id = textIn(parser.parse(document), "_id");
            if (id >= next) {
                found.push_back("identifier after the next: " + id);
            }
        }
    }
    return found;
}

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
    std::map<std::string, std::string> cells;
    for (const char* const category : {"Settlement", "Settlement", "Inclinometer"}) {
        session->categories().add(category);
        const std::string subCategory = session->newIdentifier();
        session->documents(DocumentKind::SubCategory)
            .insert(site.project, subCategory,
                    toDocument(SubCategory{subCategory, site.project, "Level " + subCategory, category, "L",
                                           category == std::string("Inclinometer")
                                               ? SubCategoryKind::Inclinometer
                                               : SubCategoryKind::Settlement}));
        // One monitoring of each category.
        if (cells.count(category) == 0) {
            const std::string cell = session->newIdentifier();
            session->documents(DocumentKind::Cell)
                .insert(site.project, cell, cellJson(cell, site.project, category));
            cells.emplace(category, cell);
        }
        site.targets.push_back({cells.at(category), subCategory});
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

Site makeSite(const std::string& location, std::size_t clients)
{
    StoreOptions options;
    options.createIfMissing = true;
    return makeSite(*openStore(location, options), clients);
}

bool isDatabase(const std::string& location)
{
    return location.rfind("postgresql:", 0) == 0;
}

std::set<std::string> heldFiles(Store& store, const Site& site)
{
    std::set<std::string> files;
    simdjson::dom::parser parser;
    for (const std::string& document : documentsOf(*store.read(), site.project, DocumentKind::History)) {
        files.insert(textIn(parser.parse(document), "fileId"));
    }
    return files;
}

std::vector<std::string> flawsOf(const std::string& location, const Site& site)
{
    std::vector<std::string> flaws;
    if (!isDatabase(location)) {
        flaws = damageOf(location);
    }
    const std::unique_ptr<Store> store = openStore(location);
    checkSamples(*store, [&flaws](const std::string& flaw) { flaws.push_back(flaw); });
    for (std::vector<std::string> more :
         {Contradictions(*store->read(), site).find(), identifiersAfterTheNext(*store, site)}) {
        flaws.insert(flaws.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
    }
    return flaws;
}

bool holdsAllOf(Store& store, const Site& site, const SiteModel& model)
{
    std::vector<std::string> held = HeldLines(*store.read(), site).read();
    std::vector<std::string> expected = expectedLines({&model});
    std::sort(held.begin(), held.end());
    std::sort(expected.begin(), expected.end());
    return std::includes(held.begin(), held.end(), expected.begin(), expected.end());
}

std::vector<std::string> differences(const std::string& location, const Site& site,
                                     const std::vector<const SiteModel*>& models)
{
    const std::unique_ptr<Store> store = openStore(location);
    std::vector<std::string> held = HeldLines(*store->read(), site).read();
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
