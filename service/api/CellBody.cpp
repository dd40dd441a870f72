#include "api/CellBody.h"

#include "api/ApiError.h"
#include "api/JsonBody.h"
#include "domain/Assign.h"

#include <algorithm>

namespace monitorservice {

namespace {

std::vector<std::string> parseTexts(simdjson::dom::element value, const std::string& name)
{
    std::vector<std::string> texts;
    for (const simdjson::dom::element element : arrayOf(value, name)) {
        texts.push_back(textOf(element, name + "[" + std::to_string(texts.size()) + "]"));
    }
    return texts;
}

std::vector<Link> merged(const std::vector<Link>& present, const SentLinks& sent)
{
    std::vector<Link> links;
    const auto stays = [&sent](const Link& link) {
        return std::find(sent.types.begin(), sent.types.end(), link.type) == sent.types.end();
    };
    if (!sent.types.empty()) {
        std::copy_if(present.begin(), present.end(), std::back_inserter(links), stays);
    }
    links.insert(links.end(), sent.links.begin(), sent.links.end());
    return links;
}

} // namespace

CellBody parseCellBody(std::string_view json)
{
    const JsonBody text(json);
    CellBody body;
    forEachMember(text.object(), "", [&body](std::string_view name, simdjson::dom::element value) {
        if (name == "projectId") {
            body.project = nonEmptyTextOf(value, "projectId");
        } else if (name == "name") {
            body.name = nonEmptyTextOf(value, "name");
        } else if (name == "category") {
            body.category = textOf(value, "category");
        } else if (name == "alarmTo") {
            body.alarmTo = parseTexts(value, "alarmTo");
        } else if (name == "links") {
            body.links = parseLinks(value, "links");
        } else {
            throw ApiError(400, "\"" + std::string(name) + "\" is not a member that can be set");
        }
    });
    return body;
}

bool applyTo(Cell& cell, const CellBody& body)
{
    bool changed = assign(cell.name, body.name);
    changed = assign(cell.category, body.category) || changed;
    changed = assign(cell.alarmTo, body.alarmTo) || changed;
    if (body.links) {
        changed = assign(cell.links, std::optional(merged(cell.links, *body.links))) || changed;
    }
    return changed;
}

} // namespace monitorservice
