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
    GroupSides sides;
    fillSides(get(context, resourcePath("groupSettings/%1", id)), sides);
    return sides;
}

ChangedGroupSides changeGroupSides(const RequestContext& context, const QString& id,
                                   const GroupSidesChange& change)
{
    const AnswerObject object = put(context, resourcePath("groupSettings/%1", id), sidesBody(change));
    ChangedGroupSides sides;
    fillSides(object, sides);
    if (object.has("warnings")) {
        sides.warnings = object.texts("warnings");
    }
    return sides;
}

} // namespace extensions
