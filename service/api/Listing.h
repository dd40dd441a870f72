#pragma once

#include "api/ApiRequest.h"

#include <string>

namespace monitorservice {

/// Answers a list of a project's documents with the parameters where, skip, limit, only_count, expand and order: an
/// array of those in categories that the caller may read, or their number as {"count": N}. Throws ApiError 404 when
/// the caller may read nothing in the project.
HttpResponse answerListing(const ApiRequest& request, const std::string& project, const Documents& documents);

} // namespace monitorservice
