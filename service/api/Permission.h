#pragma once

#include "access/Principal.h"
#include "store/Store.h"

#include <string>

namespace monitorservice {

/// The document, if there is one and the caller may read it. Throws notFound() otherwise; `kind` names it
/// there.
StoredDocument readable(const Documents& documents, const Principal& principal, const std::string& kind,
                        const std::string& id);

/// Throws ApiError 400 when there is no such category, as was sent in the member "category".
void requireSentCategory(const Session& session, const std::string& category);

/// Throws ApiError 403 when the caller lacks the right in the category; `what` names in the plural what it is
/// about.
void requireRight(const Principal& principal, Right right, const std::string& what,
                  const std::string& project, const std::string& category);

} // namespace monitorservice
