#include "extensions/GroupSides.h"

#include "extensions/ServiceRequest.h"

namespace extensions {

namespace {

void fillSides(const AnswerObject& object, GroupSides& sides)
{
    object.identifier("_id"); // a group, and not something that resembles one
    sides.daySide = limitSideIn(object, "dayVarSide");
    sides.totalSide = limitSideIn(object, "totalVarSide");
    sides.warningLevel = object.number("warningLevel");
}

GroupSides sidesOf(const AnswerObject& object)
{
    GroupSides sides;
    fillSides(object, sides);
    return sides;
}

ChangedGroupSides changedSidesOf(const AnswerObject& object)
{
    ChangedGroupSides sides;
    fillSides(object, sides);
    if (object.has("warnings")) {
        sides.warnings = object.texts("warnings");
    }
    return sides;
}

QJsonObject sidesBody(const GroupSidesChange& change)
{
    QJsonObject body;
    if (change.daySide) {
        body.insert(QStringLiteral("dayVarSide"), textOf(*change.daySide));
    }
    if (change.totalSide) {
        body.insert(QStringLiteral("totalVarSide"), textOf(*change.totalSide));
    }
    if (change.warningLevel) {
        body.insert(QStringLiteral("warningLevel"), *change.warningLevel);
    }
    return body;
}

} // namespace

GroupSides readGroupSides(const RequestContext& context, const QString& id)
{
    return sidesOf(get(context, resourcePath("groupSettings/%1", id)));
}

ChangedGroupSides changeGroupSides(const RequestContext& context, const QString& id,
                                   const GroupSidesChange& change)
{
    return readResult(put(context, resourcePath("groupSettings/%1", id), sidesBody(change)), changedSidesOf);
}

} // namespace extensions
