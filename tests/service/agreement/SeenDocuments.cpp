#include "SeenDocuments.h"

#include <algorithm>
#include <iterator>

namespace monitorservice::test {

namespace {

constexpr std::size_t mostKept = 40;

// Of an array: what is far down in it looks like what is above.
constexpr std::size_t mostElements = 20;

const std::string neverGiven = "0123456789abcdef01234567";

std::string textOf(simdjson::dom::object object, std::string_view name)
{
    std::string_view text;
    return object[name].get(text) == simdjson::SUCCESS ? std::string(text) : std::string();
}

} // namespace

void SeenDocuments::note(const std::string& kind, const std::string& json)
{
    simdjson::dom::parser parser;
    simdjson::dom::element element;
    if (parser.parse(json).get(element) != simdjson::SUCCESS) {
        return;
    }
    simdjson::dom::array array;
    simdjson::dom::object object;
    if (element.get(array) == simdjson::SUCCESS) {
        for (const simdjson::dom::element one : array) {
            if (one.get(object) == simdjson::SUCCESS) {
                noteObject(kind, object);
            }
        }
    } else if (element.get(object) == simdjson::SUCCESS) {
        noteObject(kind, object);
    }
}

void SeenDocuments::noteObject(const std::string& kind, simdjson::dom::object object)
{
    const std::string id = textOf(object, "_id");
    if (id.empty()) {
        return;
    }
    keep(m_ids[kind], id);
    for (const auto member : object) {
        noteValue(kind, std::string(member.key), member.value);
    }
    // Deliveries and alarms are named by what was delivered.
    for (const auto& [member, named] :
         {std::pair("deliveryId", "historyDatas"), std::pair("alarmId", "alarmManages")}) {
        if (const std::string other = textOf(object, member); !other.empty()) {
            keep(m_ids[named], other);
        }
    }
    if (kind == "cells" || kind == "subCategories") {
        notePlace(m_places[kind], {id, textOf(object, "projectId"), textOf(object, "category")});
    }
}

void SeenDocuments::forget(const std::string& kind, const std::string& id)
{
    Values& ids = m_ids[kind];
    ids.erase(std::remove(ids.begin(), ids.end(), id), ids.end());
    forgetPlace(kind, id);
}

// A place keeps its place among the others.
void SeenDocuments::notePlace(std::vector<Place>& places, const Place& place)
{
    const auto same =
        std::find_if(places.begin(), places.end(), [&place](const Place& one) { return one.id == place.id; });
    if (same == places.end()) {
        places.push_back(place);
    } else {
        *same = place;
    }
}

void SeenDocuments::forgetPlace(const std::string& kind, const std::string& id)
{
    std::vector<Place>& places = m_places[kind];
    const auto same = [&id](const Place& place) {
        return place.id == id;
    };
    places.erase(std::remove_if(places.begin(), places.end(), same), places.end());
}

void SeenDocuments::noteValue(const std::string& kind, const std::string& path, simdjson::dom::element value)
{
    keep(m_values[kind][path], simdjson::minify(value));
    simdjson::dom::array array;
    simdjson::dom::object object;
    if (value.get(object) == simdjson::SUCCESS) {
        for (const auto member : object) {
            noteValue(kind, path + '.' + std::string(member.key), member.value);
        }
    } else if (value.get(array) == simdjson::SUCCESS) {
        std::size_t number = 0;
        for (const simdjson::dom::element element : array) {
            if (++number > mostElements) {
                return;
            }
            if (element.get(object) == simdjson::SUCCESS) {
                for (const auto member : object) {
                    noteValue(kind, path + '.' + std::string(member.key), member.value);
                }
            } else {
                keep(m_values[kind][path], simdjson::minify(element));
            }
        }
    }
}

void SeenDocuments::keep(Values& values, std::string value)
{
    if (std::find(values.begin(), values.end(), value) != values.end()) {
        return;
    }
    if (values.size() < mostKept) {
        values.push_back(std::move(value));
    } else {
        values[++m_kept % mostKept] = std::move(value);
    }
}

std::string SeenDocuments::anyId(const std::string& kind)
{
    const Values& ids = m_ids[kind];
    return ids.empty() || m_chance.once(40) ? neverGiven : oneOf(ids);
}

std::string SeenDocuments::latestId(const std::string& kind) const
{
    const auto ids = m_ids.find(kind);
    return ids == m_ids.end() || ids->second.empty()
               ? neverGiven
               : *std::max_element(ids->second.begin(), ids->second.end());
}

std::string SeenDocuments::anyPath(const std::string& kind)
{
    const std::map<std::string, Values>& paths = m_values[kind];
    if (paths.empty()) {
        return "none";
    }
    return std::next(paths.begin(), static_cast<std::ptrdiff_t>(m_chance.below(paths.size())))->first;
}

std::string SeenDocuments::anyValue(const std::string& kind, const std::string& path)
{
    const Values& values = m_values[kind][path];
    return values.empty() ? "null" : m_chance.of(values);
}

Place SeenDocuments::anyPlace(const std::string& kind)
{
    const std::vector<Place>& places = m_places[kind];
    return places.empty() ? Place{neverGiven, neverGiven, "none"} : oneOf(places);
}

Place SeenDocuments::subCategoryOf(const Place& cell)
{
    std::vector<Place> fitting;
    const std::vector<Place>& all = m_places["subCategories"];
    std::copy_if(all.begin(), all.end(), std::back_inserter(fitting), [&cell](const Place& one) {
        return one.project == cell.project && one.category == cell.category;
    });
    return fitting.empty() ? anyPlace("subCategories") : oneOf(fitting);
}

} // namespace monitorservice::test
