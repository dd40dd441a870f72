#include "api/Permission.h"

#include "api/ApiError.h"

namespace monitorservice {

StoredDocument readable(const Documents& documents, const Principal& principal, const std::string& kind,
                        const std::string& id)
{
    std::optional<StoredDocument> document = documents.find(id);
    if (!document || !principal.may(Right::Read, document->project, document->category)) {
        throw notFound(kind, id);
    }
    return std::move(*document);
}

void requireSentCategory(const Session& session, const std::string& category)
{
    if (!session.categories().contains(category)) {
        throw ApiError(400, "\"category\": there is no category \"" + category + "\"");
    }
}

void requireRight(const Principal& principal, Right right, const std::string& what,
                  const std::string& project, const std::string& category)
{
    if (!principal.may(right, project, category)) {
        throw ApiError(403, "the token may not " + Rights(right).names() + " " + what + " of category \"" +
                                category + "\" in this project");
    }
}

} // namespace monitorservice
