#include "KindsModel.h"

#include "json/JsonText.h"

#include <algorithm>
#include <utility>

namespace monitorservice::test {

namespace {

const std::vector<std::string> categories{"Settlement", "Inclinometer", "Strain"};

// Texts that one may take for each other, or order otherwise than by their bytes.
const std::vector<std::string> names{"a",
                                     "A",
                                     "ab",
                                     "b",
                                     "",
                                     "\xc3\xa9",
                                     "\xef\xbd\x9e",
                                     "\xf0\x9f\x98\x80",
                                     "o'clock",
                                     "5",
                                     "\\u0000",
                                     "2024-03-01T00:00:00Z",
                                     "2024-03-01T08:00:00.000+08:00",
                                     "2024-03"};
const std::vector<std::string> times{"2024-03-01T00:00:00.000Z", "2024-03-01T00:00:00.001Z",
                                     "2024-02-29T23:59:59.999Z", "1969-12-31T23:59:59.999Z",
                                     "2024-03-02T00:00:00.000Z"};
const std::vector<std::string> values{"5",
                                      "null",
                                      "true",
                                      R"(["a"])",
                                      R"("2024-03-01T00:00:00.0004Z")",
                                      R"("2024-03-01T08:00:00+08:00")",
                                      R"("2024-03-01T00:00:00.001Z")",
                                      R"("2024-02-30T00:00:00Z")",
                                      R"("Settlement")",
                                      R"("Strain")",
                                      R"("p1")"};

std::string quoted(const std::string& text)
{
    std::string json;
    appendJsonString(json, text);
    return json;
}

// The paths that each kind is ordered by.
const std::vector<std::string>& orderPaths(DocumentKind kind)
{
    static const std::map<DocumentKind, std::vector<std::string>> paths{
        {DocumentKind::Cell, {"_id", "name", "category", "createdAt", "createdBy", "updatedAt", "updatedBy"}},
        {DocumentKind::SubCategory, {"_id", "name", "category", "alias"}},
        {DocumentKind::Group, {"_id", "cellId", "groupName"}},
        {DocumentKind::PointLocation, {"_id", "cellId", "name", "depth", "lastDate"}},
        {DocumentKind::DataManage, {"_id", "createdAt", "updatedAt"}},
        {DocumentKind::History, {"_id"}},
        {DocumentKind::Alarm, {"_id", "createdAt"}},
        {DocumentKind::AlarmDetail, {"_id", "pointName"}},
        {DocumentKind::AlarmDepth, {"_id", "depth"}},
        {DocumentKind::Change, {"_id", "createdAt", "createdBy", "action"}}};
    return paths.at(kind);
}

} // namespace

// The members of a document in their order, what conditions may name besides, and what belongs to it.
struct KindsModel::Members
{
    std::vector<std::pair<std::string, std::string>> texts; // "depth" is ordered by as a number
    std::string lists = {};                                 // JSON members
    std::string besides = {};                               // JSON members
    std::string category;
    std::string parent = {};
};

std::string KindsModel::anyName() const
{
    return m_chance.of(names);
}

std::string KindsModel::anyTime() const
{
    return m_chance.of(times);
}

const KnownDocument& KindsModel::known(DocumentKind kind, const std::string& id) const
{
    const std::vector<KnownDocument>& all = m_known.at(kind);
    return *std::find_if(all.begin(), all.end(), [&id](const KnownDocument& one) { return one.id == id; });
}

std::string KindsModel::categoryOf(DocumentKind kind, const std::string& id) const
{
    return known(kind, id).category;
}

std::string KindsModel::add(DocumentKind kind, const std::string& project, const Members& members)
{
    // Identifiers whose order is not that of their making.
    const std::string id = std::to_string(m_chance.below(1000)) + "-" + std::to_string(++m_number);
    KnownDocument document{id, project, members.category, members.parent, {}, {}, {}};
    document.keys["_id"] = id;
    std::string json = R"({"_id":)" + quoted(id) + R"(,"projectId":)" + quoted(project);
    for (const auto& [name, text] : members.texts) {
        json += "," + quoted(name) + ":" + quoted(text);
        if (name == "depth") {
            document.keys[name] = text.empty() ? 0 : std::stod(text);
        } else if (name == "lastDate" && text.empty()) {
            document.keys[name] = std::monostate();
        } else {
            document.keys[name] = text;
        }
    }
    json += members.lists;
    document.text = json + "}";
    document.searched = json + members.besides + "}";
    if (kind == DocumentKind::PointLocation) {
        m_session.measurements().insertPoint(project, id, document.text, 0);
    } else {
        m_session.documents(kind).insert(project, id, document.text);
    }
    m_known[kind].push_back(std::move(document));
    return id;
}

void KindsModel::fill()
{
    for (const std::string& category : categories) {
        m_session.categories().add(category);
    }
    for (const char* const project : {"p1", "p2"}) {
        m_session.projects().insert({project, "Pit", "UTC", 1});
        fillProject(project);
    }
}

void KindsModel::fillProject(const std::string& project)
{
    std::vector<std::string> cells;
    std::vector<std::string> subCategories;
    for (int i = 0; i < 20; ++i) {
        const std::string& category = m_chance.of(categories);
        cells.push_back(add(DocumentKind::Cell, project,
                            {{{"name", anyName()},
                              {"category", category},
                              {"createdAt", anyTime()},
                              {"createdBy", anyName()},
                              {"updatedAt", anyTime()},
                              {"updatedBy", anyName()}},
                             R"(,"alarmTo":[)" + quoted(anyName()) + R"(],"links":[{"type":"model","rId":)" +
                                 quoted(anyName()) + "}]",
                             {},
                             category}));
    }
    for (const std::string& category : categories) {
        for (const char* const name : {"a", "A", "2024-03-01T00:00:00Z"}) {
            subCategories.push_back(
                add(DocumentKind::SubCategory, project,
                    {{{"name", name}, {"category", category}, {"alias", anyName()}}, {}, {}, category}));
        }
    }
    for (std::size_t i = 0; i < cells.size(); ++i) {
        for (const std::size_t j : {i, i + 4}) {
            if (!m_chance.once(3)) {
                fillMeasured(project, cells[i], subCategories[j % subCategories.size()]);
            }
        }
    }
}

void KindsModel::fillMeasured(const std::string& project, const std::string& cell,
                              const std::string& subCategory)
{
    const std::string category = categoryOf(DocumentKind::Cell, cell);
    const std::string besides = R"(,"category":)" + quoted(category);
    const std::pair<std::string, std::string> cellId{"cellId", cell};
    const std::pair<std::string, std::string> subCategoryId{"subCategoryId", subCategory};
    add(DocumentKind::Group, project,
        {{cellId, subCategoryId, {"groupName", anyName()}},
         R"(,"groupPoint":[)" + quoted(anyName()) + "]",
         besides,
         category,
         cell});
    const std::string name = anyName();
    for (const char* const depth : {"", "10", "2.5"}) {
        add(DocumentKind::PointLocation, project,
            {{cellId,
              subCategoryId,
              {"name", name},
              {"depth", depth},
              {"lastDate", m_chance.once(3) ? "" : anyTime()}},
             R"(,"links":[])",
             besides,
             category,
             cell});
    }
    const std::string dataManage = add(
        DocumentKind::DataManage, project,
        {{cellId, subCategoryId, {"fileId", anyName()}, {"createdAt", anyTime()}, {"updatedAt", anyTime()}},
         {},
         R"(,"category":)" + quoted(categoryOf(DocumentKind::SubCategory, subCategory)),
         category,
         cell});
    for (std::size_t i = m_chance.below(3); i > 0; --i) {
        add(DocumentKind::History, project,
            {{{"dataManageId", dataManage}, {"fileId", anyName()}}, {}, {}, category, dataManage});
    }
    // The trail has what it tells of by itself; this entry tells of what is gone, in a category that is, too.
    const std::string told = m_chance.once(3) ? "Gone" : category;
    add(DocumentKind::Change, project,
        {{cellId,
          subCategoryId,
          {"category", told},
          {"action", anyName()},
          {"subject", m_chance.once(3) ? "gone" : cell},
          {"createdAt", anyTime()},
          {"createdBy", anyName()}},
         R"(,"before":{"name":)" + quoted(anyName()) + "}",
         {},
         told});
    simdjson::dom::parser parser;
    const std::string cellText = known(DocumentKind::Cell, cell).text;
    const std::string cellName = simdjson::minify(parser.parse(cellText)["name"].value());
    const simdjson::dom::element sub = parser.parse(known(DocumentKind::SubCategory, subCategory).text);
    const std::string alarm =
        add(DocumentKind::Alarm, project,
            {{cellId, subCategoryId, {"createdAt", anyTime()}},
             {},
             R"(,"name":)" + cellName + besides + R"(,"subCategory":[)" + quoted(subCategory) + "," +
                 simdjson::minify(sub["name"].value()) + "," + simdjson::minify(sub["alias"].value()) + "]",
             category,
             cell});
    for (std::size_t i = m_chance.below(3); i > 0; --i) {
        const std::string detail =
            add(DocumentKind::AlarmDetail, project,
                {{{"alarmManId", alarm}, {"pointName", anyName()}}, {}, {}, category, alarm});
        for (const char* const depth : {"10", "2.5", "1"}) {
            add(DocumentKind::AlarmDepth, project,
                {{{"detailId", detail}, {"depth", depth}}, {}, {}, category, detail});
        }
    }
}

std::string KindsModel::anyValue()
{
    switch (m_chance.below(4)) {
    case 0:
        return m_chance.of(values);
    case 1:
        return quoted(anyTime());
    default:
        return quoted(anyName());
    }
}

std::string KindsModel::anyWhere(DocumentKind kind)
{
    // Members of one of its documents, so that conditions are met now and then.
    const KnownDocument& like = m_chance.of(of(kind));
    simdjson::dom::parser parser;
    std::vector<std::pair<std::string, std::string>> members{{"absent", "null"}, {"subCategory", "\"a\""}};
    const simdjson::dom::object object = parser.parse(like.searched);
    for (const simdjson::dom::key_value_pair& member : object) {
        members.emplace_back(member.key, simdjson::minify(member.value));
    }
    std::string json = "{";
    for (std::size_t i = m_chance.of(std::vector<std::size_t>{0, 1, 1, 1, 2, 3}); i > 0; --i) {
        const std::size_t place = m_chance.below(members.size());
        const auto [path, held] = members[place];
        members.erase(members.begin() + static_cast<std::ptrdiff_t>(place));
        members.erase(std::remove_if(members.begin(), members.end(),
                                     [&path = path](const auto& one) { return one.first == path; }),
                      members.end());
        const bool isText = held.front() == '"';
        std::string value = m_chance.once(2) ? held : anyValue();
        std::string condition;
        switch (m_chance.below(8)) {
        case 0:
            condition = R"({"$ne":)" + value + "}";
            break;
        case 1:
            condition = R"({"$in":[)" + value + "," + anyValue() + "," + held + "]}";
            break;
        case 2:
            condition = R"({"$nin":[)" + value + "," + anyValue() + "]}";
            break;
        case 3:
            condition = R"({"$exists":)" + std::string(m_chance.once(2) ? "true}" : "false}");
            break;
        case 4:
            condition = R"({"$regex":")" +
                        m_chance.of(std::vector<std::string>{"a", "^a", "[bz1]", "^$", "2024"}) +
                        R"(","$options":")" + (m_chance.once(2) ? "i" : "") + "\"}";
            break;
        case 5:
            value = isText ? held : quoted(anyTime());
            condition = "{\"" + m_chance.of(std::vector<std::string>{"$gte", "$gt", "$lte", "$lt"}) +
                        "\":" + value + "}";
            break;
        default:
            condition = value;
        }
        json += (json.size() > 1 ? "," : "") + quoted(path) + ":" + condition;
    }
    return json + "}";
}

std::string KindsModel::anyOrder(DocumentKind kind)
{
    std::vector<std::string> paths = orderPaths(kind);
    std::string order;
    for (std::size_t i = 1 + m_chance.below(std::min<std::size_t>(paths.size(), 3)); i > 0; --i) {
        const std::size_t place = m_chance.below(paths.size());
        order += (order.empty() ? "" : ",") + std::string(m_chance.once(2) ? "-" : "") + paths[place];
        paths.erase(paths.begin() + static_cast<std::ptrdiff_t>(place));
    }
    return order;
}

} // namespace monitorservice::test
