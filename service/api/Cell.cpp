#include "api/Cell.h"

#include "api/ApiError.h"
#include "api/JsonBody.h"
#include "domain/Assign.h"
#include "json/JsonText.h"
#include "json/StoredText.h"
#include "store/StoreError.h"

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

std::string toDocument(const Cell& cell)
{
    JsonArrayWriter alarmTo;
    for (const std::string& recipient : cell.alarmTo) {
        alarmTo.text(recipient);
    }
    return JsonObjectWriter()
        .text("_id", cell.id)
        .text("projectId", cell.project)
        .text("name", cell.name)
        .text("category", cell.category)
        .json("alarmTo", alarmTo.finish())
        .json("links", toJson(cell.links))
        .text("createdAt", cell.createdAt)
        .text("createdBy", cell.createdBy)
        .text("updatedAt", cell.updatedAt)
        .text("updatedBy", cell.updatedBy)
        .finish();
}

Cell cellOf(const std::string& document)
{
    try {
        simdjson::dom::parser parser;
        const simdjson::dom::element object = parser.parse(document);
        Cell cell;
        cell.id = storedText(object, "_id");
        cell.project = storedText(object, "projectId");
        cell.name = storedText(object, "name");
        cell.category = storedText(object, "category");
        const simdjson::dom::array recipients = object["alarmTo"];
        for (const simdjson::dom::element recipient : recipients) {
            cell.alarmTo.emplace_back(recipient.get_string().value());
        }
        const simdjson::dom::array links = object["links"];
        for (const simdjson::dom::element link : links) {
            cell.links.push_back({storedText(link, "type"), storedText(link, "rId")});
        }
        cell.createdAt = storedText(object, "createdAt");
        cell.createdBy = storedText(object, "createdBy");
        cell.updatedAt = storedText(object, "updatedAt");
        cell.updatedBy = storedText(object, "updatedBy");
        return cell;
    } catch (const simdjson::simdjson_error& error) {
        throw StoreError(StoreFailure::InputOutput,
                         std::string("a stored monitoring is damaged: ") + error.what());
    }
}

} // namespace monitorservice
