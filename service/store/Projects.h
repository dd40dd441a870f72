#pragma once

#include "domain/Project.h"
#include "store/StoreInterface.h"

#include <optional>
#include <string>
#include <vector>

namespace monitorservice {

/// Every member may throw StoreError.
class Projects : public StoreInterface
{
public:
    virtual std::optional<Project> find(const std::string& id) const = 0;
    /// In the order of their identifiers.
    virtual std::vector<Project> list() const = 0;
    /// StoreFailure::Conflict when the identifier is taken.
    virtual void insert(const Project& project) = 0;
    /// False when there is no such project.
    virtual bool rename(const std::string& id, const std::string& name) = 0;
    /// False when there is no such project. StoreFailure::Conflict when anything belongs to it: grants, and
    /// documents of whatever kind but entries of the audit trail, which stay.
    virtual bool remove(const std::string& id) = 0;
};

} // namespace monitorservice
