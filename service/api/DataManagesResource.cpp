#include "api/Listing.h"
#include "api/Resources.h"
#include "domain/DataManage.h"
#include "domain/SubCategory.h"
#include "json/JsonText.h"

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
        const auto known = m_texts.try_emplace(fromDocument<DataManage>(dataManage).subCategory);
        if (known.second) {
            known.first->second = read(known.first->first);
        }
        return std::string(openedDocument(dataManage)) + ",\"subCategory\":" + known.first->second + "}";
    }

private:
    std::string read(const std::string& id)
    {
        const std::optional<StoredDocument> stored = m_documents.find(id);
        if (!stored) {
            throw DamagedDocument("the sub-category of a data manage is missing");
        }
        const auto subCategory = fromDocument<SubCategory>(stored->text);
        return JsonObjectWriter()
            .text("category", subCategory.category)
            .text("alias", subCategory.alias)
            .text("name", subCategory.name)
            .finish();
    }

    const Documents& m_documents;
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
