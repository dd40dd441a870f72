#pragma once

#include "RequestFailure.h"
#include "extensions/LimitSide.h"

#include <QString>
#include <QStringList>

#include <optional>

/// What a threshold group says of its limits besides their amounts.
struct GroupSides
{
    LimitSide daySide = LimitSide::Both;
    LimitSide totalSide = LimitSide::Both;
    double warningLevel = 0.0; ///< percent of a limit from which on tools warn
};

/// What is to become of a group's sides; what is not set stays.
struct GroupSidesChange
{
    std::optional<LimitSide> daySide;
    std::optional<LimitSide> totalSide;
    std::optional<double> warningLevel; ///< more than 0 and at most 100
};

/// The sides of a group after a change.
struct ChangedGroupSides : GroupSides
{
    /// What is allowed of the group and hardly meant, in the service's words.
    QStringList warnings;
};

namespace extensions {

/// GET groupSettings/{id}.
GroupSides readGroupSides(const RequestContext& context, const QString& id);

/// PUT groupSettings/{id} with what is set; everything else of the group stays.
ChangedGroupSides changeGroupSides(const RequestContext& context, const QString& id,
                                   const GroupSidesChange& change);

} // namespace extensions
