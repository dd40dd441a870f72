#pragma once

#include <QString>

/// What a service may be able to do beyond the operations that every one has. Each has its name among the
/// "extensions" of GET about.
enum class Extension
{
    About,            ///< says which service it is, what it can, and who asks
    AlarmReasons,     ///< alarm details say what was measured, and whose limits these are
    Changes,          ///< lists the audit trail
    DeliveryResults,  ///< answers deliveries with what became of their samples
    DeliveryUndo,     ///< takes the latest delivery back
    GroupSides,       ///< limits of groups for one side, and when to warn
    OpenAlarms,       ///< tells which alarms are open
    PointChanges,     ///< changes points
    PointDeletion,    ///< deletes points and samples
    PointSummaries,   ///< lists points with their latest samples alone
    Projects,         ///< tells names and time zones of projects
    SubCategoryKinds, ///< tells what sub-categories measure, and in what unit
};

/// Its name in GET about.
QString nameOf(Extension extension);

/// What a service without it does not have, for people: "DELETE historyDatas/{id}".
QString operationOf(Extension extension);
