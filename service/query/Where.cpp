#include "query/Where.h"

#include <algorithm>

namespace monitorservice {

std::pair<Where, Where> Where::split(const std::vector<std::string_view>& paths) const
{
    std::pair<Where, Where> parts;
    parts.first.m_values = m_values;
    parts.second.m_values = m_values;
    for (const Condition& condition : m_conditions) {
        const bool named = std::find(paths.begin(), paths.end(), condition.path) != paths.end();
        (named ? parts.first : parts.second).m_conditions.push_back(condition);
    }
    return parts;
}

Where Where::readAs(std::string_view member, const std::vector<std::string>& instead) const
{
    Where result = *this;
    for (Condition& condition : result.m_conditions) {
        if (condition.names.front() != member) {
            continue;
        }
        condition.names.erase(condition.names.begin());
        condition.names.insert(condition.names.begin(), instead.begin(), instead.end());
        condition.path.clear();
        for (const std::string& name : condition.names) {
            condition.path += (condition.path.empty() ? "" : ".") + name;
        }
    }
    return result;
}

} // namespace monitorservice
