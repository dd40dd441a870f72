#pragma once

namespace monitorservice {

/// std::any_of for the lists and objects of simdjson, whose iterators std algorithms do not take.
template <typename Range, typename Predicate>
bool anyOf(const Range& range, Predicate predicate)
{
    for (const auto& member : range) {
        if (predicate(member)) {
            return true;
        }
    }
    return false;
}

} // namespace monitorservice
