#include "api/Administering.h"
#include "api/Answers.h"
#include "api/Listing.h"
#include "api/Parameters.h"
#include "api/Permission.h"
#include "api/Resources.h"
#include "api/SubCategoryBody.h"

namespace monitorservice {

namespace {

// Those that the caller may read; who administers sees all there are.
ListReach visibleIn(const ApiRequest& request, const std::string& project)
{
    if (!request.principal.mayAdminister()) {
        return readableIn(request, project);
    }
    if (!request.session->projects().find(project)) {
        throw notFound("project", project);
    }
    ListReach all;
    all.project = project;
    return all;
}

// GET projects/{project}/subCategories: see answerListing().
HttpResponse listSubCategories(ApiRequest& request)
{
    return answerListing(request, visibleIn(request, request.ids[0]),
                         request.session->documents(DocumentKind::SubCategory));
}

// POST projects/{project}/subCategories: answers 201 and the sub-category.
HttpResponse createSubCategory(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const NewSubCategory sent = parseNewSubCategory(request.http.body);
    return administer(request, [&](Session& session, const std::string& author) {
        requireSentCategory(session, sent.category);
        const Administered<SubCategory> made = SubCategoryAdministration(session, author)
                                                   .create(request.ids[0], sent.category, sent.description);
        return answerCreated(withWarnings(toDocument(made.thing), made.warnings),
                             "subCategories/" + made.thing.id);
    });
}

// GET subCategories/{id}
HttpResponse getSubCategory(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const Documents& subCategories = request.session->documents(DocumentKind::SubCategory);
    const std::string& id = request.ids[0];
    if (!request.principal.mayAdminister()) {
        return answerJson(readable(subCategories, request.principal, "sub-category", id).text);
    }
    std::optional<StoredDocument> stored = subCategories.find(id);
    if (!stored) {
        throw notFound("sub-category", id);
    }
    return answerJson(std::move(stored->text));
}

// PATCH subCategories/{id}: changes the members that are sent; answers the sub-category.
HttpResponse changeSubCategory(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const SubCategoryDescription sent = parseSubCategoryChange(request.http.body);
    return administer(request, [&](Session& session, const std::string& author) {
        const Administered<SubCategory> changed =
            SubCategoryAdministration(session, author).change(request.ids[0], sent);
        return answerJson(withWarnings(toDocument(changed.thing), changed.warnings));
    });
}

// DELETE subCategories/{id}: answers what was removed.
HttpResponse removeSubCategory(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    return administer(request, [&](Session& session, const std::string& author) {
        return answerJson(toDocument(SubCategoryAdministration(session, author).remove(request.ids[0])));
    });
}

} // namespace

std::vector<Route> subCategoryRoutes()
{
    return {{{"projects", "*", "subCategories"}, {{"GET", listSubCategories}, {"POST", createSubCategory}}},
            {{"subCategories", "*"},
             {{"GET", getSubCategory}, {"PATCH", changeSubCategory}, {"DELETE", removeSubCategory}}}};
}

} // namespace monitorservice
