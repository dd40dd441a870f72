#include "extensions/Extension.h"

namespace {

struct ExtensionTexts
{
    const char* name;
    const char* operation;
};

ExtensionTexts textsOf(Extension extension)
{
    switch (extension) {
    case Extension::About:
        break;
    case Extension::AlarmReasons:
        return {"alarmReasons", "reasons in alarm details"};
    case Extension::Changes:
        return {"changes", "GET projects/{project}/changes"};
    case Extension::DeliveryResults:
        return {"deliveryResults", "results in the answer to POST pointLocations"};
    case Extension::DeliveryUndo:
        return {"deliveryUndo", "DELETE historyDatas/{id}"};
    case Extension::GroupSides:
        return {"groupSides", "sides and warning levels of groups"};
    case Extension::OpenAlarms:
        return {"openAlarms", "GET projects/{project}/alarmManages with \"open\""};
    case Extension::PointChanges:
        return {"pointChanges", "PATCH pointLocations/{id}"};
    case Extension::PointDeletion:
        return {"pointDeletion", "DELETE pointLocations/{id} and its samples"};
    case Extension::PointSummaries:
        return {"pointSummaries", "GET projects/{project}/pointLocations with \"samples\""};
    case Extension::Projects:
        return {"projects", "GET projects"};
    case Extension::SubCategoryKinds:
        return {"subCategoryKinds", "kinds and units of sub-categories"};
    }
    return {"about", "GET about"};
}

} // namespace

QString nameOf(Extension extension)
{
    return QLatin1String(textsOf(extension).name);
}

QString operationOf(Extension extension)
{
    return QLatin1String(textsOf(extension).operation);
}
