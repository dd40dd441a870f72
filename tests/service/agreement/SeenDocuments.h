#pragma once

#include "support/Chance.h"

#include <simdjson.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice::test {

/// Where something can be measured, or what.
struct Place
{
    std::string id;
    std::string project;
    std::string category;
};

/// What the answers have shown so far, so that it can be asked for. Kinds are named as paths name them:
/// "cells", "groupSettings"…
class SeenDocuments
{
public:
    explicit SeenDocuments(Chance& chance) : m_chance(chance) {}

    /// Takes in an object or an array of objects.
    void note(const std::string& kind, const std::string& json);
    /// Most of what is asked for is there.
    void forget(const std::string& kind, const std::string& id);

    /// One that was there, and may be gone; of a kind that was never seen one that never was.
    std::string anyId(const std::string& kind);
    std::string latestId(const std::string& kind) const;
    /// A text that never was, when there is none.
    std::string anyPath(const std::string& kind);
    /// A JSON value that was seen at the path; null when none was.
    std::string anyValue(const std::string& kind, const std::string& path);
    /// Of kind "cells" or "subCategories".
    Place anyPlace(const std::string& kind);
    /// A sub-category that belongs to a monitoring, if there is one, otherwise any.
    Place subCategoryOf(const Place& cell);

private:
    using Values = std::vector<std::string>;

    void noteObject(const std::string& kind, simdjson::dom::object object);
    void noteValue(const std::string& kind, const std::string& path, simdjson::dom::element value);
    static void notePlace(std::vector<Place>& places, const Place& place);
    void forgetPlace(const std::string& kind, const std::string& id);
    /// One of the first more often, so that much comes together in few places.
    template <typename Item>
    const Item& oneOf(const std::vector<Item>& items)
    {
        return items[m_chance.below(1 + m_chance.below(items.size()))];
    }
    void keep(Values& values, std::string value);

    Chance& m_chance;
    std::map<std::string, Values> m_ids;
    std::map<std::string, std::map<std::string, Values>> m_values;
    std::map<std::string, std::vector<Place>> m_places;
    std::size_t m_kept = 0;
};

} // namespace monitorservice::test
