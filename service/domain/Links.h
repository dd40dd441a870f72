#pragma once

#include <string>
#include <vector>

namespace monitorservice {

/// A relation of a monitoring or a point location to something outside the service.
struct Link
{
    std::string type;       ///< the relation, such as "model"
    std::string identifier; ///< member "rId"

    friend bool operator==(const Link& left, const Link& right)
    {
        return left.type == right.type && left.identifier == right.identifier;
    }
};

/// The links as they are stored and answered, a JSON array of {"type", "rId"}.
std::string toJson(const std::vector<Link>& links);

class DocumentReader;

/// The links in member "links" of a stored document. Throws DamagedDocument.
std::vector<Link> linksIn(const DocumentReader& document);

} // namespace monitorservice
