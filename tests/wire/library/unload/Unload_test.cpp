// The library is loaded with a part of the application, used, and unloaded with it, and with it the
// companions that nothing else uses. The application and its events go on.

#include "../../../support/Text.h"
#include "Part.h"
#include "ScriptServer.h"

#include <QCoreApplication>
#include <QLibrary>

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>
#include <vector>

#ifdef Q_OS_UNIX
#include <dlfcn.h>
#endif

namespace {

constexpr int rounds = 20;

class Unload : public testing::Test
{
protected:
    void TearDown() override { EXPECT_TRUE(server.isUsedUp()); }

    const Part* load()
    {
        const auto function = reinterpret_cast<PartFunction>(library.resolve(partFunction));
        if (!function) {
            ADD_FAILURE() << library.errorString().toStdString();
            return nullptr;
        }
        const Part* part = function();
        part->connectTo(server.baseAddress());
        return part;
    }
    // And lets events come to what the part left behind.
    void unload()
    {
        EXPECT_TRUE(library.unload());
#ifdef Q_OS_UNIX
        EXPECT_EQ(dlopen(RK_LIBRARY, RTLD_LAZY | RTLD_NOLOAD), nullptr) << "the library is still there";
#endif
        server.hangUp();
        for (int turn = 0; turn < 10; ++turn) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
    }

    ScriptServer server;
    QLibrary library{QStringLiteral(RK_PART)};
};

TEST_F(Unload, TheFirstInstanceIsTheSameForEveryThread)
{
    for (int round = 0; round < rounds; ++round) {
        const Part* part = load();
        ASSERT_TRUE(part);

        std::vector<const void*> seen(8);
        std::atomic<int> waiting{static_cast<int>(seen.size())};
        std::vector<std::thread> threads;
        for (const void*& address : seen) {
            threads.emplace_back([part, &address, &waiting] {
                for (--waiting; waiting > 0;) {
                    std::this_thread::yield();
                }
                address = part->instance();
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(std::set<const void*>(seen.begin(), seen.end()).size(), 1U);
        EXPECT_NE(seen.front(), nullptr);
        unload();
    }
}

TEST_F(Unload, EveryLoadBeginsWithEmptyCaches)
{
    for (int round = 0; round < rounds; ++round) {
        const Part* part = load();
        ASSERT_TRUE(part);
        server.answerJson(200, R"({"_id":"c1","name":"Pit"})");
        EXPECT_EQ(part->monitoringName("c1"_q), "Pit"_q);
        EXPECT_EQ(part->monitoringName("c1"_q), "Pit"_q);
        EXPECT_EQ(server.requestCount(), round + 1);
        unload();
    }
}

TEST_F(Unload, OutputsOutliveTheLibrary)
{
    const Part* part = load();
    ASSERT_TRUE(part);
    QList<QPair<QString, QString>> cells;
    server.answerJson(200, R"([{"_id":"c1","name":"Pit"}])");
    EXPECT_TRUE(part->cellIdsAndNames(cells));
    QString refusal;
    server.answerJson(500, R"({"message":"unknown cell"})");
    EXPECT_FALSE(part->deliver(refusal));
    QString fixedText;
    server.answerJson(505, "{}");
    EXPECT_FALSE(part->deliver(fixedText));
    unload();

    EXPECT_EQ(cells, (QList<QPair<QString, QString>>{{"c1"_q, "Pit"_q}}));
    EXPECT_EQ(refusal, "unknown cell"_q);
    EXPECT_EQ(fixedText, "Connection closed prematurely"_q);
}

} // namespace
