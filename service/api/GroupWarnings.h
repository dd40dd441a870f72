#pragma once

#include "domain/Group.h"
#include "store/Session.h"

#include <string>
#include <vector>

namespace monitorservice {

/// What is allowed of a group and is hardly meant, a sentence each: names that it lists twice, that no point
/// of its monitoring and sub-category has, or that another group lists, too; and that it has no limit. They
/// stay short however many names are concerned. Who may not read the category is told of the group alone.
std::vector<std::string> warningsOf(const Session& session, const Group& group, bool mayReadCategory);

} // namespace monitorservice
