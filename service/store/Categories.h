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
};

} // namespace monitorservice
