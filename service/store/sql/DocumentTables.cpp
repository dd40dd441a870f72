#include "store/sql/DocumentTables.h"

#include "store/StoreError.h"

#include <utility>

namespace monitorservice {

namespace {

// The lists in a document are left to the matcher: looking into them with SQL's json_each takes ten times as
// long.
DocumentTable cellTable()
{
    return {
        "cells",
        {
            {"_id", "id"},
            {"projectId", "project"},
            {"name", "name"},
            {"category", "category"},
            {"createdAt", "created_at", FieldKind::Time},
            {"createdBy", "created_by"},
            {"updatedAt", "updated_at", FieldKind::Time},
            {"updatedBy", "updated_by"},
        },
        {
            {"_id", "id"},
            {"name", "name"},
            {"category", "category"},
            {"createdAt", "created_at", SortedAs::Number},
            {"createdBy", "created_by"},
            {"updatedAt", "updated_at", SortedAs::Number},
            {"updatedBy", "updated_by"},
        },
    };
}

DocumentTable subCategoryTable()
{
    return {
        "sub_categories",
        {
            {"_id", "id"},
            {"projectId", "project"},
            {"name", "name"},
            {"category", "category"},
            {"alias", "alias"},
        },
        {
            {"_id", "id"},
            {"name", "name"},
            {"category", "category"},
            {"alias", "alias"},
        },
    };
}

DocumentTable groupTable()
{
    return {
        "groups",
        {
            {"_id", "id"},
            {"projectId", "project"},
            {"cellId", "cell"},
            {"subCategoryId", "sub_category"},
            {"groupName", "name"},
            {"category", "category"},
        },
        {
            {"_id", "id"},
            {"cellId", "cell"},
            {"groupName", "name"},
        },
        "groups_read",
        "searched",
        "cell",
    };
}

DocumentTable pointLocationTable(const Dialect& dialect)
{
    return {
        "point_locations",
        {
            {"_id", "id"},
            {"projectId", "project"},
            {"cellId", "cell"},
            {"subCategoryId", "sub_category"},
            {"name", "name"},
            {"depth", "depth"},
            {"category", "category"},
        },
        {
            {"_id", "id"},
            {"cellId", "cell"},
            {"name", "name"},
            {"depth", dialect.depthAsNumber, SortedAs::Number}, // as a number: 2.5 stands before 10
            {"lastDate", "last_time", SortedAs::Number},
            {"data.time", "last_time", SortedAs::Number},
        },
        "point_locations_read",
        "searched",
        "cell",
    };
}

DocumentTable dataManageTable()
{
    return {
        "data_manages",
        {
            {"_id", "id"},
            {"projectId", "project"},
            {"cellId", "cell"},
            {"subCategoryId", "sub_category"},
            {"category", "searched_category"},
            {"createdAt", "created_at", FieldKind::Time},
            {"updatedAt", "updated_at", FieldKind::Time},
        },
        {
            {"_id", "id"},
            {"createdAt", "created_at", SortedAs::Number},
            {"updatedAt", "updated_at", SortedAs::Number},
        },
        "data_manages_read",
        "searched",
        "cell",
    };
}

DocumentTable historyTable()
{
    return {
        "histories",     {{"_id", "id"}, {"dataManageId", "data_manage"}},
        {{"_id", "id"}}, "histories_read",
        "searched",      "data_manage",
    };
}

DocumentTable alarmTable()
{
    return {
        "alarms",
        {
            {"_id", "id"},
            {"projectId", "project"},
            {"cellId", "cell"},
            {"subCategoryId", "sub_category"},
            {"name", "name"},
            {"category", "category"},
            {"createdAt", "created_at", FieldKind::Time},
        },
        {
            {"_id", "id"},
            {"createdAt", "created_at", SortedAs::Number},
        },
        "alarms_read",
        "searched",
        "cell",
    };
}

DocumentTable alarmDetailTable()
{
    return {
        "alarm_details",
        {
            {"_id", "id"},
            {"alarmManId", "alarm"},
            {"pointName", "point_name"},
        },
        {
            {"_id", "id"},
            {"pointName", "point_name"},
        },
        "alarm_details_read",
        "searched",
        "alarm",
    };
}

DocumentTable alarmDepthTable(const Dialect& dialect)
{
    return {
        "alarm_depths",
        {
            {"_id", "id"},
            {"detailId", "detail"},
            {"depth", "depth"},
        },
        {
            {"_id", "id"},
            {"depth", dialect.depthAsNumber, SortedAs::Number}, // as a number: 2.5 stands before 10
        },
        "alarm_depths_read",
        "searched",
        "detail",
    };
}

DocumentTable changeTable()
{
    return {
        "changes",
        {
            {"_id", "id"},
            {"projectId", "project"},
            {"category", "category"},
            {"cellId", "cell"},
            {"subCategoryId", "sub_category"},
            {"action", "action"},
            {"subject", "subject"},
            {"createdAt", "created_at", FieldKind::Time},
            {"createdBy", "created_by"},
        },
        {
            {"_id", "id"},
            {"createdAt", "created_at", SortedAs::Number},
            {"createdBy", "created_by"},
            {"action", "action"},
        },
    };
}

} // namespace

DocumentTable documentTable(DocumentKind kind, const Dialect& dialect)
{
    switch (kind) {
    case DocumentKind::Cell:
        return cellTable();
    case DocumentKind::SubCategory:
        return subCategoryTable();
    case DocumentKind::Group:
        return groupTable();
    case DocumentKind::PointLocation:
        return pointLocationTable(dialect);
    case DocumentKind::DataManage:
        return dataManageTable();
    case DocumentKind::History:
        return historyTable();
    case DocumentKind::Alarm:
        return alarmTable();
    case DocumentKind::AlarmDetail:
        return alarmDetailTable();
    case DocumentKind::AlarmDepth:
        return alarmDepthTable(dialect);
    case DocumentKind::Change:
        return changeTable();
    }
    throw StoreError(StoreFailure::Internal, "there is no such kind of document");
}

} // namespace monitorservice
