#include "store/sqlite/SqliteDocuments.h"

namespace monitorservice {

namespace {

// The lists in a document are left to the matcher: looking into them with SQL's json_each takes ten times as
// long.
const DocumentTable& cellTable()
{
    static const DocumentTable table{
        "cells",
        {
            {"_id", "id", FieldKind::Text, true},
            {"projectId", "project", FieldKind::Text, true},
            {"name", "name", FieldKind::Text, true},
            {"category", "category", FieldKind::Text, true},
            {"createdAt", "created_at", FieldKind::Time, true},
            {"createdBy", "created_by", FieldKind::Text, true},
            {"updatedAt", "updated_at", FieldKind::Time, true},
            {"updatedBy", "updated_by", FieldKind::Text, true},
        },
        {
            {"_id", "id"},
            {"name", "name"},
            {"category", "category"},
            {"createdAt", "created_at"},
            {"createdBy", "created_by"},
            {"updatedAt", "updated_at"},
            {"updatedBy", "updated_by"},
        },
    };
    return table;
}

const DocumentTable& subCategoryTable()
{
    static const DocumentTable table{
        "sub_categories",
        {
            {"_id", "id", FieldKind::Text, true},
            {"projectId", "project", FieldKind::Text, true},
            {"name", "name", FieldKind::Text, true},
            {"category", "category", FieldKind::Text, true},
            {"alias", "alias", FieldKind::Text, true},
        },
        {
            {"_id", "id"},
            {"name", "name"},
            {"category", "category"},
            {"alias", "alias"},
        },
    };
    return table;
}

const DocumentTable& groupTable()
{
    static const DocumentTable table{
        "groups",
        {
            {"_id", "id", FieldKind::Text, true},
            {"projectId", "project", FieldKind::Text, true},
            {"cellId", "cell", FieldKind::Text, true},
            {"subCategoryId", "sub_category", FieldKind::Text, true},
            {"groupName", "name", FieldKind::Text, true},
            {"category", "category", FieldKind::Text, true},
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
    return table;
}

const DocumentTable& pointLocationTable()
{
    static const DocumentTable table{
        "point_locations",
        {
            {"_id", "id", FieldKind::Text, true},
            {"projectId", "project", FieldKind::Text, true},
            {"cellId", "cell", FieldKind::Text, true},
            {"subCategoryId", "sub_category", FieldKind::Text, true},
            {"name", "name", FieldKind::Text, true},
            {"depth", "depth", FieldKind::Text, true},
            {"category", "category", FieldKind::Text, true},
        },
        {
            {"_id", "id"},
            {"cellId", "cell"},
            {"name", "name"},
            {"depth", "CAST(depth AS REAL)"}, // as a number: 2.5 stands before 10
            {"lastDate", "last_time"},
            {"data.time", "last_time"},
        },
        "point_locations_read",
        "searched",
        "cell",
    };
    return table;
}

const DocumentTable& dataManageTable()
{
    static const DocumentTable table{
        "data_manages",
        {
            {"_id", "id", FieldKind::Text, true},
            {"projectId", "project", FieldKind::Text, true},
            {"cellId", "cell", FieldKind::Text, true},
            {"subCategoryId", "sub_category", FieldKind::Text, true},
            {"category", "searched_category", FieldKind::Text, true},
            {"createdAt", "created_at", FieldKind::Time, true},
            {"updatedAt", "updated_at", FieldKind::Time, true},
        },
        {
            {"_id", "id"},
            {"createdAt", "created_at"},
            {"updatedAt", "updated_at"},
        },
        "data_manages_read",
        "searched",
        "cell",
    };
    return table;
}

const DocumentTable& historyTable()
{
    static const DocumentTable table{
        "histories",
        {{"_id", "id", FieldKind::Text, true}, {"dataManageId", "data_manage", FieldKind::Text, true}},
        {{"_id", "id"}},
        "histories_read",
        "searched",
        "data_manage",
    };
    return table;
}

const DocumentTable& alarmTable()
{
    static const DocumentTable table{
        "alarms",
        {
            {"_id", "id", FieldKind::Text, true},
            {"projectId", "project", FieldKind::Text, true},
            {"cellId", "cell", FieldKind::Text, true},
            {"subCategoryId", "sub_category", FieldKind::Text, true},
            {"name", "name", FieldKind::Text, true},
            {"category", "category", FieldKind::Text, true},
            {"createdAt", "created_at", FieldKind::Time, true},
        },
        {
            {"_id", "id"},
            {"createdAt", "created_at"},
        },
        "alarms_read",
        "searched",
        "cell",
    };
    return table;
}

const DocumentTable& alarmDetailTable()
{
    static const DocumentTable table{
        "alarm_details",
        {
            {"_id", "id", FieldKind::Text, true},
            {"alarmManId", "alarm", FieldKind::Text, true},
            {"pointName", "point_name", FieldKind::Text, true},
        },
        {
            {"_id", "id"},
            {"pointName", "point_name"},
        },
        "alarm_details_read",
        "searched",
        "alarm",
    };
    return table;
}

const DocumentTable& alarmDepthTable()
{
    static const DocumentTable table{
        "alarm_depths",
        {
            {"_id", "id", FieldKind::Text, true},
            {"detailId", "detail", FieldKind::Text, true},
            {"depth", "depth", FieldKind::Text, true},
        },
        {
            {"_id", "id"}, {"depth", "CAST(depth AS REAL)"}, // as a number: 2.5 stands before 10
        },
        "alarm_depths_read",
        "searched",
        "detail",
    };
    return table;
}

} // namespace

const DocumentTable& documentTable(DocumentKind kind)
{
    switch (kind) {
    case DocumentKind::Cell:
        return cellTable();
    case DocumentKind::SubCategory:
        return subCategoryTable();
    case DocumentKind::Group:
        return groupTable();
    case DocumentKind::PointLocation:
        return pointLocationTable();
    case DocumentKind::DataManage:
        return dataManageTable();
    case DocumentKind::History:
        return historyTable();
    case DocumentKind::Alarm:
        return alarmTable();
    case DocumentKind::AlarmDetail:
        return alarmDetailTable();
    case DocumentKind::AlarmDepth:
        return alarmDepthTable();
    }
    throw StoreError(StoreFailure::Internal, "there is no such kind of document");
}

} // namespace monitorservice
