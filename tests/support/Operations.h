#pragma once

#include "RKMonitoringData.h"
#include "Text.h"

#include <QByteArray>

#include <functional>
#include <ostream>
#include <vector>

/// One operation with an answer that makes it succeed, for tests that run all of them through the same
/// events.
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

/// A way to fill a list of records, as a function that knows its list.
template <typename Record>
struct ListOperation
{
    using Records = QList<Record>;
    std::function<bool(RKMonitoringData&, Records&)> read;
    bool operator()(RKMonitoringData& data, Records& records) const { return read(data, records); }
};

template <typename Record, typename Read>
ListOperation<Record> listOf(Read read)
{
    return {read};
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

    // Lists of one record: the operation fills a list, which is empty after a failure.
    const auto addRecords = [&](const char* name, const QByteArray& answer, auto read) {
        operations.push_back({name, "GET", answer,
                              [read](Data& data) {
                                  typename decltype(read)::Records records;
                                  return read(data, records) && records.size() == 1;
                              },
                              [read](Data& data) {
                                  typename decltype(read)::Records records;
                                  return !read(data, records) && records.isEmpty();
                              }});
    };
    const QByteArray one = R"([{"_id":"x5","name":"Five","cellId":"c5"}])";
    addRecords("getPointLocation", one, listOf<RKPointLocation>([](Data& data, auto& list) {
                   RKPointLocationCondition condition;
                   return data.getPointLocation(condition, list, false);
               }));
    addRecords("getPointLocationByGuid", one, listOf<RKPointLocation>([](Data& data, auto& list) {
                   return data.getPointLocationByGuid("u5"_q, list);
               }));
    addRecords("getGroupsByCategory", one, listOf<PointLocSetting>([](Data& data, auto& list) {
                   return data.getGroupsByCategory("pit"_q, list);
               }));
    addRecords("getGroupsByCellId", one, listOf<PointLocSetting>([](Data& data, auto& list) {
                   return data.getGroupsByCellId("c5"_q, list, false);
               }));
    addRecords("getDataManageRangeData", one, listOf<RKDataManage>([](Data& data, auto& list) {
                   return data.getDataManageRangeData({}, 0, 10, list);
               }));
    addRecords("getHistoryRangeData", one, listOf<HistoryData>([](Data& data, auto& list) {
                   return data.getHistoryRangeData({}, 0, 10, list);
               }));
    addRecords("getAlarmRangeData", one, listOf<RKAlarm>([](Data& data, auto& list) {
                   return data.getAlarmRangeData({}, 0, 10, list);
               }));
    addRecords("getAlarmDetailRangeData", one, listOf<RKAlarmDetail>([](Data& data, auto& list) {
                   return data.getAlarmDetailRangeData({}, 0, 10, list);
               }));
    addRecords("getAlarmThreeByDetailId", one, listOf<AlarmThree>([](Data& data, auto& list) {
                   return data.getAlarmThreeByDetailId("d5"_q, "2.5"_q, list);
               }));

    using ChartData = QMap<QDate, QList<RKPointLocationChartData>>;
    using Statistics = bool (Data::*)(const RKPointLocationCondition&, ChartData&);
    const auto addStatistics = [&](const char* name, Statistics statistics) {
        operations.push_back({name, "GET",
                              R"([{"time":"2015-12-21T00:00:00.000Z","data":[{"name":"Five"}]}])",
                              [statistics](Data& data) {
                                  ChartData chartData;
                                  return (data.*statistics)({}, chartData) && chartData.size() == 1;
                              },
                              [statistics](Data& data) {
                                  ChartData chartData;
                                  return !(data.*statistics)({}, chartData) && chartData.isEmpty();
                              }});
    };
    addStatistics("getNormalPointLocation", &Data::getNormalPointLocation);
    addStatistics("getDepthPointLocation", &Data::getDepthPointLocation);

    const auto addCount = [&](const char* name, const std::function<bool(Data&, int&)>& read) {
        operations.push_back({name, "GET", R"({"count":5})",
                              [read](Data& data) {
                                  int count = 0;
                                  return read(data, count) && count == 5;
                              },
                              [read](Data& data) {
                                  int count = -1;
                                  return !read(data, count) && count == 0;
                              }});
    };
    addCount("getDataManageRangeCount",
             [](Data& data, int& count) { return data.getDataManageRangeCount({}, count); });
    addCount("getHistoryRangeCount",
             [](Data& data, int& count) { return data.getHistoryRangeCount({}, count); });
    addCount("getAlarmRangeCount", [](Data& data, int& count) { return data.getAlarmRangeCount({}, count); });
    addCount("getAlarmDetailRangeCount",
             [](Data& data, int& count) { return data.getAlarmDetailRangeCount({}, count); });

    const auto addPoint = [&](const char* name, const QByteArray& answer,
                              const std::function<bool(Data&, RKPointLocation&)>& read) {
        operations.push_back({name, "GET", answer,
                              [read](Data& data) {
                                  RKPointLocation point;
                                  return read(data, point) && point.name == "Five"_q;
                              },
                              [read](Data& data) {
                                  RKPointLocation point;
                                  return !read(data, point) && point.name.isEmpty();
                              }});
    };
    addPoint(
        "getPointLocationByPointId", R"({"_id":"x5","name":"Five"})",
        [](Data& data, RKPointLocation& point) { return data.getPointLocationByPointId("x5"_q, point); });
    addPoint("getPointLocationByTimeOrder", one, [](Data& data, RKPointLocation& point) {
        RKPointLocationCondition condition;
        return data.getPointLocationByTimeOrder(condition, point);
    });

    const auto addFlag = [&](const char* name, const QByteArray& method,
                             const std::function<bool(Data&)>& write) {
        operations.push_back({name, method, R"({"cellId":"c5"})", write, [write](Data& data) {
                                  return !write(data);
                              }});
    };
    addFlag("createPointLocation", "POST",
            [](Data& data) { return data.createPointLocation(QList<RKPointLocation>{RKPointLocation()}); });
    addFlag("createPointLocationBatches", "POST", [](Data& data) {
        QString message;
        return data.createPointLocation(QList<QList<RKPointLocation>>{{RKPointLocation()}}, message);
    });
    addFlag("updatePointLocation", "PUT", [](Data& data) {
        RKPointLocationCondition condition;
        condition.cellId = "c5"_q;
        return data.updatePointLocation(condition, {{"model"_q, {"m5"_q}}});
    });
    addFlag("deleteGroup", "DELETE", [](Data& data) { return data.deleteGroup("g5"_q); });
    addFlag("deletePointData", "DELETE", [](Data& data) { return data.deletePointData("d5"_q); });

    const auto addGroup = [&](const char* name, const QByteArray& method,
                              const std::function<bool(Data&, PointLocSetting&)>& write) {
        operations.push_back({name, method, R"({"_id":"g5","cellId":"c5","groupName":"Five"})",
                              [write](Data& data) {
                                  PointLocSetting group;
                                  return write(data, group) && group.id == "g5"_q;
                              },
                              [write](Data& data) {
                                  PointLocSetting group;
                                  return !write(data, group) && group.groupName.isEmpty();
                              }});
    };
    const auto name = [](PointLocSetting& group) -> PointLocSetting& {
        group.groupName = "Five"_q;
        return group;
    };
    addGroup("createGroup", "POST",
             [name](Data& data, PointLocSetting& group) { return data.createGroup(name(group)); });
    addGroup("updateGroup", "PUT", [name](Data& data, PointLocSetting& group) {
        return data.updateGroup(PointLocSetting(), name(group));
    });
    return operations;
}
