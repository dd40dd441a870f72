// Many operations without returning to the application's event loop: nothing may pile up.

#include "../../support/LibraryTest.h"
#include "../../support/Operations.h"
#include "../../support/PlainServer.h"
#include "../../support/Process.h"

#include <NetworkEventLoop.h>
#include <NetworkManager.h>
#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <iostream>

namespace {

// Memory that was freed is kept back there for a while.
#if defined(__SANITIZE_ADDRESS__) // gcc
constexpr bool isSanitized = true;
#elif defined(__has_feature) // clang
constexpr bool isSanitized = __has_feature(address_sanitizer);
#else
constexpr bool isSanitized = false;
#endif
constexpr qint64 mebibyte = 1024 * 1024;

class Soak : public testing::Test
{
protected:
    Soak()
    {
        RKBaseApi::GetInstance().setBaseApi(QString::fromLatin1(server.baseAddress()));
        GetSoftCache()->setProjectId("p7"_q);
        data.clear();
    }
    ~Soak() override { data.clear(); }
    Soak(const Soak&) = delete;
    Soak& operator=(const Soak&) = delete;

    // Runs the work in one slot of a running application, which is not left before the work is done.
    template <typename Work>
    static void inOneSlot(Work work)
    {
        QTimer::singleShot(0, [&work] {
            work();
            QCoreApplication::quit();
        });
        QCoreApplication::exec();
    }

    PlainServer server{"{}"};
    RKMonitoringData& data = *RKMonitoringData::instance();
};

TEST_F(Soak, OperationsInOneSlotLeaveNothingBehind)
{
    const std::vector<Operation> operations = allOperations();
    const auto runs = static_cast<int>((isSanitized ? 4'000 : 100'000) / operations.size()) + 1;
    qint64 failures = 0;
    const auto runAll = [&] {
        for (const Operation& operation : operations) {
            server.setBody(operation.answer);
            failures += operation.succeeds(data) ? 0 : 1;
        }
        data.clear();
    };
    qint64 memoryBefore = 0;
    qint64 memoryAfter = 0;
    int descriptorsBefore = 0;
    int descriptorsAfter = 0;
    inOneSlot([&] {
        for (int i = 0; i < runs / 20; ++i) {
            runAll();
        }
        memoryBefore = residentMemory();
        descriptorsBefore = openDescriptors();
        for (int i = 0; i < runs; ++i) {
            runAll();
        }
        memoryAfter = residentMemory();
        descriptorsAfter = openDescriptors();
    });
    std::cout << runs * operations.size() << " operations in one slot: " << failures << " failures, memory "
              << memoryBefore / 1024 << " -> " << memoryAfter / 1024 << " KiB, descriptors "
              << descriptorsBefore << " -> " << descriptorsAfter << '\n';
    EXPECT_EQ(failures, 0);
    EXPECT_LE(descriptorsAfter, descriptorsBefore + 2) << "a connection that is about to close counts";
    if (!isSanitized) {
        EXPECT_LE(memoryAfter, memoryBefore + 5 * mebibyte);
    }
}

TEST_F(Soak, ExchangesInOneSlotHoldOneReplyAtATime)
{
    const int runs = isSanitized ? 4'000 : 20'000;
    int alive = 0;
    int mostAlive = 0;
    inOneSlot([&] {
        for (int i = 0; i < runs; ++i) {
            QNetworkReply* reply =
                NetworkManager::instance().get(QString::fromLatin1(server.baseAddress() + "cells"));
            mostAlive = std::max(mostAlive, ++alive);
            QObject::connect(reply, &QObject::destroyed, [&alive] { --alive; });
            NetworkEventLoop wait(reply, nullptr);
            wait.exec(QEventLoop::AllEvents);
        }
    });
    EXPECT_EQ(server.requestCount(), runs);
    EXPECT_EQ(mostAlive, 1);
    EXPECT_EQ(alive, 0);
}

// A list of records with identifiers of their own, each with every text that a record of its kind has.
QByteArray listOfRecords(int count)
{
    QByteArray list = "[";
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        list +=
            (i == 0 ? "" : ",") + QByteArray("{\"_id\":\"id") + number + "\",\"cellId\":\"cell" + number +
            "\",\"name\":\"A name that is long enough to need memory " + number +
            "\",\"category\":\"pit\",\"data\":[{\"time\":\"2015-12-21T00:00:00.000Z\",\"value\":" + number +
            "}]}";
    }
    return list + "]";
}

TEST_F(Soak, ClearGivesTheMemoryOfTheCachesBack)
{
    const int cycles = isSanitized ? 100 : 10'000;
    server.setBody(listOfRecords(20));
    qint64 failures = 0;
    const auto fill = [&] {
        QList<RKMonitoring> monitorings;
        QList<RKMonitoringSubCategory> subCategories;
        QList<RKDataManage> deliveries;
        QList<PointLocSetting> groups;
        QList<RKPointLocation> points;
        RKPointLocationCondition condition;
        const bool isFilled = data.getMonitoringRangeData({}, 0, 20, monitorings) &&
                              monitorings.size() == 20 &&
                              data.getMonitoringSubCategory("pit"_q, subCategories) &&
                              data.getDataManageRangeData({}, 0, 20, deliveries) &&
                              data.getGroupsByCellId("cell1"_q, groups, false) &&
                              data.getPointLocation(condition, points, false) && points.size() == 20;
        failures += isFilled ? 0 : 1;
    };
    qint64 memoryBefore = 0;
    qint64 memoryAfter = 0;
    inOneSlot([&] {
        for (int i = 0; i < cycles + cycles / 20; ++i) {
            if (i == cycles / 20) {
                memoryBefore = residentMemory();
            }
            fill();
            data.clear();
        }
        memoryAfter = residentMemory();
    });
    std::cout << cycles << " cycles of filling and clearing: " << failures << " failures, memory "
              << memoryBefore / 1024 << " -> " << memoryAfter / 1024 << " KiB\n";
    EXPECT_EQ(failures, 0);
    if (!isSanitized) {
        EXPECT_LE(memoryAfter, memoryBefore + 5 * mebibyte);
    }
}

} // namespace
