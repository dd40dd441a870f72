#pragma once

#include "access/Grant.h"
#include "store/StoreInterface.h"

#include <string>
#include <vector>

namespace monitorservice {

/// Those of projects and those of the whole service. Every member may throw StoreError.
class Grants : public StoreInterface
{
public:
    virtual std::vector<Grant> ofToken(const std::string& token) const = 0;
    /// In the order of their identifiers.
    virtual std::vector<Grant> list() const = 0;
    /// Adds the rights to the grant of the same token, project and category when there is one; gives the
    /// identifier of the grant that holds them now. StoreFailure::Conflict when the token, the project or the
    /// category does not exist, and when it is of a category but of no project.
    virtual std::string add(const Grant& grant) = 0;
    /// False when there is no such grant.
    virtual bool remove(const std::string& id) = 0;
};

} // namespace monitorservice
