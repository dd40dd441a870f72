#include "api/Listing.h"
#include "api/Resources.h"
#include "json/JsonText.h"
#include "store/StoreError.h"

#include <simdjson.h>

#include <unordered_map>

namespace monitorservice {

namespace {

// Adds "subCategory" to data manages; each sub-category is read once.
class SubCategories
{
public:
    explicit SubCategories(const Documents& documents) : m_documents(documents) {}

    std::string addedTo(std::string_view dataManage)
    {
        std::string_view id;
        if (m_parser.parse(dataManage.data(), dataManage.size())["subCategoryId"].get(id) !=
            simdjson::SUCCESS) {
            throw StoreError(StoreFailure::InputOutput, "a stored data manage is damaged");
        }
        const auto known = m_texts.try_emplace(std::string(id));
        if (known.second) {
            known.first->second = read(known.first->first);
        }
        std::string text(dataManage.substr(0, dataManage.rfind('}')));
        text += ",\"subCategory\":" + known.first->second + "}";
        return text;
    }

private:
    std::string read(const std::string& id)
    {
        const std::optional<StoredDocument> stored = m_documents.find(id);
        simdjson::dom::element object;
        if (!stored || m_parser.parse(stored->text).get(object) != simdjson::SUCCESS) {
            throw StoreError(StoreFailure::InputOutput, "the sub-category of a data manage is damaged");
        }
        JsonObjectWriter text;
        for (const char* const name : {"category", "alias", "name"}) {
            text.text(name, object[name].get_string().value());
        }
        return text.finish();
    }

    const Documents& m_documents;
    simdjson::dom::parser m_parser;
    std::unordered_map<std::string, std::string> m_texts;
};

// GET projects/{project}/dataManages: what was delivered for each monitoring and sub-category, the latest
// delivery first, of those of one millisecond the newest data manage. `expand` adds "subCategory" with its
// category, alias and name.
HttpResponse listDataManages(ApiRequest& request)
{
    SubCategories subCategories(request.session->documents(DocumentKind::SubCategory));
    ListKind list;
    list.order = "-updatedAt,-_id";
    list.expanded = [&subCategories](std::string_view document) {
        return subCategories.addedTo(document);
    };
    return answerListing(request, request.ids[0], request.session->documents(DocumentKind::DataManage), list);
}

// GET dataManages/{id}/historyDatas: the deliveries one by one, newest first; identifiers rise with time
// whatever the clock does.
HttpResponse listHistory(ApiRequest& request)
{
    return answerListingOf(request, {request.session->documents(DocumentKind::DataManage), "data manage"},
                           request.session->documents(DocumentKind::History), "-_id");
}

} // namespace

std::vector<Route> dataManageRoutes()
{
    return {{{"projects", "*", "dataManages"}, {{"GET", listDataManages}}},
            {{"dataManages", "*", "historyDatas"}, {{"GET", listHistory}}}};
}

} // namespace monitorservice
