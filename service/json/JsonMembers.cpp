#include "json/JsonMembers.h"

#include "json/JsonPieces.h"

#include <optional>

namespace monitorservice {

std::string withMember(std::string_view object, std::string_view name, std::string_view value)
{
    const std::string quotedName = '"' + std::string(name) + '"';
    std::string changed;
    changed.reserve(object.size() + quotedName.size() + value.size() + 2);
    if (const std::optional<std::string_view> held = findJsonMember(object, quotedName)) {
        const auto begin = static_cast<std::size_t>(held->data() - object.data());
        changed.append(object.substr(0, begin)).append(value).append(object.substr(begin + held->size()));
        return changed;
    }
    const std::size_t end = object.find_last_of('}');
    const std::string_view members = object.substr(0, end);
    const bool isEmpty = withoutLeadingBlanks(members.substr(members.find('{') + 1)).empty();
    changed.append(members).append(isEmpty ? "" : ",").append(quotedName).append(":").append(value);
    changed.append(object.substr(end));
    return changed;
}

} // namespace monitorservice
