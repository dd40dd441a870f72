#pragma once

#include "store/StoreInterface.h"

#include <string>
#include <vector>

namespace monitorservice {

/// The texts that monitorings are classified by, the same for every project. Every member may throw
/// StoreError.
class Categories : public StoreInterface
{
public:
    virtual bool contains(const std::string& category) const = 0;
    /// In the order in which they were added.
    virtual std::vector<std::string> list() const = 0;
    /// False when the category was there already.
    virtual bool add(const std::string& category) = 0;
    /// The category keeps its place in the order, and all that is of it goes with it: monitorings,
    /// sub-categories, grants, entries of the audit trail; what these tell of stays as it was told. False
    /// when there is no such category; StoreFailure::Conflict when the name is that of another one.
    virtual bool rename(const std::string& category, const std::string& name) = 0;
    /// False when there is no such category. StoreFailure::Conflict when a monitoring, a sub-category or a
    /// grant is of it.
    virtual bool remove(const std::string& category) = 0;
};

} // namespace monitorservice
