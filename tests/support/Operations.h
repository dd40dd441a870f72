#pragma once

#include "RKMonitoringData.h"
#include "Text.h"

#include <QByteArray>

#include <functional>
#include <ostream>
#include <vector>

/// One operation with an answer that makes it succeed, for tests that run all of them through the same events.
struct Operation
{
    const char* name;
    QByteArray method;
    /// The service's answer, about the monitoring "c5" or the sub-category "s5".
    QByteArray answer;
    /// Runs it on fresh outputs; true when it reported success and gave what `answer` says.
    std::function<bool(RKMonitoringData&)> succeeds;
    /// Runs it on fresh outputs; true when it reported its failure and left the outputs empty.
    std::function<bool(RKMonitoringData&)> fails;
};

inline void PrintTo(const Operation& operation, std::ostream* out)
{
    *out << operation.name;
}

/// Every operation that sends a request.
inline std::vector<Operation> allOperations()
{
    using Data = RKMonitoringData;
    const QByteArray monitoring = R"({"_id":"c5","name":"Five"})";
    const QByteArray monitorings = "[" + monitoring + "]";
    std::vector<Operation> operations;

    using Permission = bool (Data::*)(const QString&);
    const auto addPermission = [&](const char* name, Permission permission) {
        operations.push_back({name, "GET", R"({"value":"true"})",
                              [permission](Data& data) { return (data.*permission)("pit"_q); },
                              [permission](Data& data) {
                                  return !(data.*permission)("pit"_q);
                              }});
    };
    addPermission("canCreateMonitoring", &Data::canCreateMonitoring);
    addPermission("canDeleteMonitoring", &Data::canDeleteMonitoring);
    addPermission("canEditMonitoring", &Data::canEditMonitoring);

    const auto addWrite = [&](const char* name, const QByteArray& method, const char* id,
                              bool (Data::*write)(RKMonitoring&)) {
        const auto run = [id, write](Data& data, RKMonitoring& record) {
            record.id = QString::fromLatin1(id);
            record.name = "Five"_q;
            return (data.*write)(record);
        };
        operations.push_back({name, method, monitoring,
                              [run](Data& data) {
                                  RKMonitoring record;
                                  return run(data, record) && record.id == "c5"_q &&
                                         data.getMonitoringName("c5"_q) == "Five"_q;
                              },
                              [run](Data& data) {
                                  RKMonitoring record;
                                  return !run(data, record) && record.id.isEmpty() && record.name.isEmpty();
                              }});
    };
    addWrite("createMonitoring", "POST", "", &Data::createMonitoring);
    addWrite("updateMonitoring", "PUT", "c5", &Data::updateMonitoring);

    operations.push_back({"deleteMonitoring", "DELETE", "{}",
                          [](Data& data) { return data.deleteMonitoring("c5"_q); },
                          [](Data& data) {
                              return !data.deleteMonitoring("c5"_q);
                          }});

    operations.push_back({"getMonitoringById", "GET", monitoring,
                          [](Data& data) {
                              RKMonitoring record;
                              return data.getMonitoringById("c5"_q, record, false) && record.name == "Five"_q;
                          },
                          [](Data& data) {
                              RKMonitoring record;
                              record.name = "before"_q;
                              return !data.getMonitoringById("c5"_q, record, false) && record.name.isEmpty();
                          }});

    // A name that is cached is not asked for, so this one is asked under an identifier of its own each time.
    operations.push_back({"getMonitoringName", "GET", monitoring,
                          [](Data& data) {
                              static int asked = 0;
                              return data.getMonitoringName("n%1"_q.arg(++asked)) == "Five"_q;
                          },
                          [](Data& data) {
                              return data.getMonitoringName("failing"_q).isNull();
                          }});

    const auto addList = [&](const char* name, const std::function<bool(Data&, QList<RKMonitoring>&)>& read) {
        operations.push_back({name, "GET", monitorings,
                              [read](Data& data) {
                                  QList<RKMonitoring> list;
                                  return read(data, list) && list.size() == 1 && list.first().id == "c5"_q;
                              },
                              [read](Data& data) {
                                  QList<RKMonitoring> list;
                                  return !read(data, list) && list.isEmpty();
                              }});
    };
    addList("getMonitoringByModelId",
            [](Data& data, QList<RKMonitoring>& list) { return data.getMonitoringByModelId("m5"_q, list); });
    // Reports no failure by its result; the list does.
    addList("getMonitoringRangeData", [](Data& data, QList<RKMonitoring>& list) {
        return data.getMonitoringRangeData({}, 0, 10, list) && !list.isEmpty();
    });

    operations.push_back({"getMonitoringRangeCount", "GET", R"({"count":5})",
                          [](Data& data) {
                              int count = 0;
                              return data.getMonitoringRangeCount({}, count) && count == 5;
                          },
                          [](Data& data) {
                              int count = -1;
                              return !data.getMonitoringRangeCount({}, count) && count == 0;
                          }});

    operations.push_back({"getCellIdAndName", "GET", monitorings,
                          [](Data& data) {
                              QList<QPair<QString, QString>> cells;
                              return data.getCellIdAndName(cells) && cells.size() == 1;
                          },
                          [](Data& data) {
                              QList<QPair<QString, QString>> cells;
                              return !data.getCellIdAndName(cells) && cells.isEmpty();
                          }});

    operations.push_back({"getMonitoringCategory", "GET", R"(["pit"])",
                          [](Data& data) {
                              QStringList categories;
                              return data.getMonitoringCategory(categories) &&
                                     categories == QStringList{"pit"_q};
                          },
                          [](Data& data) {
                              QStringList categories{"before"_q};
                              return !data.getMonitoringCategory(categories) && categories.isEmpty();
                          }});

    operations.push_back({"getMonitoringSubCategory", "GET", R"([{"_id":"s5","name":"Five"}])",
                          [](Data& data) {
                              QList<RKMonitoringSubCategory> list;
                              return data.getMonitoringSubCategory("pit"_q, list) && list.size() == 1;
                          },
                          [](Data& data) {
                              QList<RKMonitoringSubCategory> list;
                              return !data.getMonitoringSubCategory("pit"_q, list) && list.isEmpty();
                          }});

    // Asked under an identifier that the reply does not carry, so that no later call finds it in the cache.
    operations.push_back(
        {"getSubCategoryById", "GET", R"({"_id":"s5","name":"Five"})",
         [](Data& data) {
             RKMonitoringSubCategory subCategory;
             return data.getSubCategoryById("asked"_q, subCategory) && subCategory.id == "s5"_q;
         },
         [](Data& data) {
             RKMonitoringSubCategory subCategory;
             subCategory.name = "before"_q;
             return !data.getSubCategoryById("asked"_q, subCategory) && subCategory.name.isEmpty();
         }});
    return operations;
}
