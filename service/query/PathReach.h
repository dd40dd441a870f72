#pragma once

#include <simdjson.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace monitorservice {

/// What a path found in a document.
struct Reached
{
    /// A reached value was accepted; the search ended there.
    bool accepted = false;

    /// Somewhere the path ended before its last name, or it reached nothing at all. Meaningful when nothing
    /// was accepted.
    bool missing = false;
};

/// The position in a list that a name of a path stands for: digits without leading zeros.
std::optional<std::size_t> listPosition(const std::string& name);

/// Follows a path of names through objects, and through lists: into each of a list's objects, and for a name
/// that is a number into the member at that position. A list directly within a list is entered by position
/// only.
template <typename Accepts>
class PathReach
{
public:
    PathReach(const std::vector<std::string>& names, Accepts& accepts) : m_names(names), m_accepts(accepts) {}

    Reached from(simdjson::dom::element document)
    {
        Reached reached;
        reached.accepted = follow(document, 0);
        reached.missing = m_endedEarly || !m_reachedAny;
        return reached;
    }

private:
    // Each call goes one name further, so paths bound the depth, not documents.
    bool follow(simdjson::dom::element place, std::size_t depth)
    {
        if (depth == m_names.size()) {
            m_reachedAny = true;
            return m_accepts(place);
        }
        simdjson::dom::object object;
        if (place.get(object) == simdjson::SUCCESS) {
            return followMember(object, depth, false);
        }
        simdjson::dom::array list;
        if (place.get(list) == simdjson::SUCCESS) {
            return followList(list, depth);
        }
        m_endedEarly = true;
        return false;
    }

    bool followMember(simdjson::dom::object object, std::size_t depth, bool optional)
    {
        simdjson::dom::element member;
        if (object.at_key(m_names[depth]).get(member) == simdjson::SUCCESS) {
            return follow(member, depth + 1);
        }
        m_endedEarly = m_endedEarly || !optional;
        return false;
    }

    bool followList(simdjson::dom::array list, std::size_t depth)
    {
        const std::optional<std::size_t> position = listPosition(m_names[depth]);
        if (position) {
            simdjson::dom::element member;
            if (list.at(*position).get(member) != simdjson::SUCCESS) {
                m_endedEarly = true;
            } else if (follow(member, depth + 1)) {
                return true;
            }
        }
        for (const simdjson::dom::element member : list) {
            simdjson::dom::object object;
            // A number is a position first: that objects have no member of that name is nothing missing.
            if (member.get(object) == simdjson::SUCCESS &&
                followMember(object, depth, position.has_value())) {
                return true;
            }
        }
        return false;
    }

    const std::vector<std::string>& m_names;
    Accepts& m_accepts;
    bool m_endedEarly = false;
    bool m_reachedAny = false;
};

/// Calls `accepts` with each value that the path reaches, until it returns true.
template <typename Accepts>
Reached reach(simdjson::dom::element document, const std::vector<std::string>& names, Accepts accepts)
{
    return PathReach<Accepts>(names, accepts).from(document);
}

} // namespace monitorservice
