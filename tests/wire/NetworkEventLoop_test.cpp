#include "NetworkFixture.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QPointer>
#include <QTimer>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace {

using namespace std::chrono_literals;
using Step = ScriptServer::Step;

// Runs something in the next turn of the event loop.
class Soon
{
public:
    template <typename Work>
    explicit Soon(Work work)
    {
        m_timer.setSingleShot(true);
        QObject::connect(&m_timer, &QTimer::timeout, work);
        m_timer.start(0);
    }

private:
    QTimer m_timer;
};

class NetworkEventLoopTest : public NetworkFixture
{
protected:
    QString getText() { return get().object.value(QLatin1String("a")).toString(); }

    // Runs `work` inside an event loop that it ends.
    template <typename Work>
    void runInApplication(Work work)
    {
        const Soon begin(work);
        QCoreApplication::exec();
    }
};

// A reply of another maker: finishes with these bytes in the next turn of the event loop, or never.
class ForeignReply : public QNetworkReply
{
public:
    explicit ForeignReply(const QByteArray& body, NetworkError error = NoError)
        : m_body(body), m_soon(std::in_place, [this, error] {
              if (error != NoError) {
                  setError(error, QStringLiteral("foreign"));
              }
              finish();
          })
    {
        open(QIODevice::ReadOnly);
    }
    ForeignReply() { open(QIODevice::ReadOnly); }

    void abort() override
    {
        setError(OperationCanceledError, QStringLiteral("aborted"));
        finish();
    }
    qint64 bytesAvailable() const override { return m_body.size() + QNetworkReply::bytesAvailable(); }

protected:
    qint64 readData(char* data, qint64 size) override
    {
        const auto count = std::min<qint64>(size, m_body.size());
        std::memcpy(data, m_body.constData(), static_cast<size_t>(count));
        m_body.remove(0, static_cast<int>(count));
        return count;
    }

private:
    void finish()
    {
        setFinished(true);
        Q_EMIT finished();
    }
    QByteArray m_body;
    std::optional<Soon> m_soon;
};

template <typename... Arguments>
QNetworkReply* foreignReply(Arguments... arguments)
{
    return new ForeignReply(arguments...); // NOLINT(cppcoreguidelines-owning-memory): the wait will own it
}

} // namespace

// ---- what is read

TEST_F(NetworkEventLoopTest, ReadsObjectsListsAndArrays)
{
    server.answerJson(200, R"({"a":1})");
    Outcome outcome = get();
    EXPECT_EQ(outcome.object.value(QLatin1String("a")).toInt(), 1);
    EXPECT_TRUE(outcome.objectList.isEmpty());
    EXPECT_TRUE(outcome.array.isEmpty());

    server.answerJson(200, R"([{"a":1},{"a":2}])");
    outcome = get();
    EXPECT_TRUE(outcome.object.isEmpty());
    ASSERT_EQ(outcome.objectList.size(), 2);
    EXPECT_EQ(outcome.objectList.at(1).value(QLatin1String("a")).toInt(), 2);
    EXPECT_EQ(outcome.array.size(), 2);

    server.answerJson(200, R"(["x","y"])");
    outcome = get();
    EXPECT_TRUE(outcome.isSuccessful);
    EXPECT_TRUE(outcome.objectList.isEmpty());
    EXPECT_EQ(outcome.array, (QJsonArray{QStringLiteral("x"), QStringLiteral("y")}));
    EXPECT_TRUE(server.isUsedUp());
}

// Large ones are parsed on several threads.
TEST_F(NetworkEventLoopTest, ReadsAListOfAnySizeInItsOrder)
{
    constexpr int count = 30'000;
    QByteArray body = "[";
    for (int i = 0; i < count; ++i) {
        body += (i == 0 ? "" : ", ") + QByteArray(R"({"id": )") + QByteArray::number(i) +
                R"(, "data": [1.5, "},{"]})";
    }
    server.answerJson(200, body + "]");
    server.answerJson(200, body + ",]");
    server.answerJson(200, body);

    const Outcome outcome = get();
    EXPECT_TRUE(outcome.isSuccessful);
    EXPECT_EQ(outcome.array, QJsonDocument::fromJson(body + "]").array());
    ASSERT_EQ(outcome.objectList.size(), count);
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(outcome.objectList.at(i).value(QLatin1String("id")).toInt(), i);
    }
    for (int i = 0; i < 2; ++i) {
        const Outcome cut = get();
        EXPECT_EQ(cut.error, QNetworkReply::ProtocolFailure);
        EXPECT_TRUE(cut.objectList.isEmpty());
        EXPECT_THAT(cut.errorText.toStdString(), testing::HasSubstr("the reply is not JSON"));
    }
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, AListWithOneElementThatIsNoObjectIsNone)
{
    server.answerJson(200, R"([{"a":1},2])");
    const Outcome outcome = get();
    EXPECT_TRUE(outcome.isSuccessful);
    EXPECT_TRUE(outcome.objectList.isEmpty());
    EXPECT_EQ(outcome.array.size(), 2);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, AnErrorRepliesBodyStaysReadable)
{
    server.answerJson(500, R"({"message":"refused","status":500})");
    server.answerJson(400, R"([{"message":"a"}])");
    Outcome outcome = get();
    EXPECT_FALSE(outcome.isSuccessful);
    EXPECT_EQ(outcome.error, QNetworkReply::InternalServerError);
    EXPECT_EQ(outcome.object.value(QLatin1String("message")).toString(), QStringLiteral("refused"));
    EXPECT_TRUE(outcome.objectList.isEmpty());
    outcome = get();
    EXPECT_FALSE(outcome.isSuccessful);
    EXPECT_EQ(outcome.objectList.size(), 1);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, BeforeExecNothingSucceeded)
{
    const NetworkEventLoop wait(manager.get(url()), nullptr);
    EXPECT_FALSE(wait.isSuccessful());
    EXPECT_NE(wait.error(), QNetworkReply::NoError);
    EXPECT_TRUE(wait.object().isEmpty());
}

TEST_F(NetworkEventLoopTest, ExecMayBeCalledAgain)
{
    server.answerJson(200, R"({"a":1})");
    NetworkEventLoop wait(manager.get(url()), nullptr);
    EXPECT_EQ(wait.exec(QEventLoop::AllEvents), 0);
    EXPECT_EQ(wait.exec(QEventLoop::AllEvents), 0);
    EXPECT_TRUE(wait.isSuccessful());
    EXPECT_EQ(wait.object().size(), 1);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, WaitsForItsSocketWhateverTheFlags)
{
    server.answerJson(200, "{}");
    NetworkEventLoop inner(manager.get(url()), nullptr);
    // The server's own socket needs the notifiers, too, so only what the wait runs with is looked at.
    EXPECT_EQ(inner.exec(QEventLoop::ExcludeSocketNotifiers | QEventLoop::ExcludeUserInputEvents), 0);
    EXPECT_TRUE(inner.isSuccessful());
    EXPECT_TRUE(server.isUsedUp());
}

// ---- replies that go wrong

TEST_F(NetworkEventLoopTest, ANullReplyFailsAtOnce)
{
    NetworkEventLoop wait(nullptr, nullptr);
    EXPECT_EQ(wait.exec(QEventLoop::AllEvents), -1);
    EXPECT_FALSE(wait.isSuccessful());
    EXPECT_NE(wait.error(), QNetworkReply::NoError);
    EXPECT_TRUE(wait.array().isEmpty());
}

TEST_F(NetworkEventLoopTest, AReplyDeletedDuringTheWaitFails)
{
    for (const bool later : {false, true}) {
        server.neverAnswer();
        QNetworkReply* reply = manager.get(url());
        server.onRequest = [&] {
            if (later) {
                reply->deleteLater();
            } else {
                std::unique_ptr<QNetworkReply>(reply).reset();
            }
        };
        NetworkEventLoop wait(reply, nullptr);
        EXPECT_EQ(wait.exec(QEventLoop::AllEvents), -1);
        EXPECT_FALSE(wait.isSuccessful());
        EXPECT_EQ(wait.error(), QNetworkReply::OperationCanceledError);
    }
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, AReplyAbortedDuringTheWaitFails)
{
    server.neverAnswer();
    QNetworkReply* reply = manager.get(url());
    server.onRequest = [&] {
        reply->abort();
    };
    const Outcome outcome = waitFor(reply);
    EXPECT_FALSE(outcome.isSuccessful);
    EXPECT_EQ(outcome.error, QNetworkReply::OperationCanceledError);
    server.onRequest = {};
    server.answerJson(200, "{}");
    EXPECT_TRUE(get().isSuccessful);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, AWaitDeletedDuringItsExecReturns)
{
    server.neverAnswer();
    auto wait = std::make_unique<NetworkEventLoop>(manager.get(url()), nullptr);
    server.onRequest = [&] {
        wait.reset();
    };
    EXPECT_EQ(wait->exec(QEventLoop::AllEvents), -1);
    EXPECT_FALSE(wait);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, TheReplyGoesWithTheWait)
{
    server.answerJson(200, "{}");
    QPointer<QNetworkReply> reply = manager.get(url());
    {
        NetworkEventLoop wait(reply, nullptr);
        wait.exec(QEventLoop::AllEvents);
        EXPECT_TRUE(reply);
    }
    EXPECT_FALSE(reply);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, AParentTakesWaitAndReplyWithIt)
{
    auto parent = std::make_unique<QObject>();
    QPointer<QNetworkReply> reply = manager.get(url());
    auto owned = std::make_unique<NetworkEventLoop>(reply, parent.get());
    bool waitIsGone = false;
    QObject::connect(owned.get(), &QObject::destroyed, [&] { waitIsGone = true; });
    static_cast<void>(owned.release()); // the parent owns it
    parent.reset();
    EXPECT_TRUE(waitIsGone);
    EXPECT_FALSE(reply);
}

TEST_F(NetworkEventLoopTest, ManyOperationsInOneSlotHoldOneReplyAtATime)
{
    constexpr int operations = 3000;
    for (int i = 0; i < operations; ++i) {
        server.answerJson(200, "{}");
    }
    int alive = 0;
    int most = 0;
    int successful = 0;
    runInApplication([&] {
        for (int i = 0; i < operations; ++i) {
            QNetworkReply* reply = i % 10 == 0 ? manager.deleteResource(url()) : manager.get(url());
            most = std::max(most, ++alive);
            QObject::connect(reply, &QObject::destroyed, [&] { --alive; });
            successful += waitFor(reply).isSuccessful ? 1 : 0;
            exchanges.clear();
        }
        QCoreApplication::quit();
    });
    EXPECT_EQ(successful, operations);
    EXPECT_EQ(most, 1);
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(server.isUsedUp());
}

// ---- events during a wait

TEST_F(NetworkEventLoopTest, EventsRunDuringAWait)
{
    server.answerRaw({Step::pause(100), Step::bytes(ScriptServer::httpAnswer(200, "{}"))});
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(5);
    EXPECT_TRUE(get().isSuccessful);
    EXPECT_GT(ticks, 0);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, ANestedWaitGetsItsOwnAnswer)
{
    server.answerRaw({Step::pause(100), Step::bytes(ScriptServer::httpAnswer(200, R"({"a":"outer"})"))});
    server.answerJson(200, R"({"a":"inner"})");
    QString inner;
    std::optional<Soon> nested;
    server.onRequest = [&] {
        server.onRequest = {};
        nested.emplace([&] { inner = getText(); });
    };
    EXPECT_EQ(getText(), QStringLiteral("outer"));
    EXPECT_EQ(inner, QStringLiteral("inner"));
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, TheOuterWaitMayFinishFirst)
{
    server.answerJson(200, R"({"a":"outer"})");
    server.answerRaw({Step::pause(100), Step::bytes(ScriptServer::httpAnswer(200, R"({"a":"inner"})"))});
    QStringList order;
    QNetworkReply* outer = manager.get(url());
    QObject::connect(outer, &QNetworkReply::finished, [&] { order << QStringLiteral("outer finished"); });
    const Soon nested([&] { order << getText(); });
    order << waitFor(outer).object.value(QLatin1String("a")).toString();
    EXPECT_EQ(order.join(QStringLiteral(", ")), QStringLiteral("outer finished, inner, outer"));
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, WaitsNestDeeply)
{
    constexpr int depth = 20;
    for (int i = 0; i < depth; ++i) {
        server.answerJson(200, "{\"a\":\"" + QByteArray::number(i) + "\"}");
    }
    QStringList answers;
    std::function<void()> descend = [&] {
        const int level = server.requestCount();
        if (level < depth) {
            const QString text = getText();
            EXPECT_EQ(text, QString::number(level));
            answers << text;
        }
    };
    server.onRequest = [&] {
        descend();
    };
    descend();
    EXPECT_EQ(answers.size(), depth);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, AFinishedSlotMayWaitForAnotherReplyThatFinishesInTheSameTurn)
{
    // Both answers are there before the client's events run again.
    server.answerJson(200, R"({"a":"first"})");
    server.answerJson(200, R"({"a":"second"})");
    QNetworkReply* first = manager.get(url());
    QPointer<QNetworkReply> second = manager.get(url());
    QString inner;
    QObject::connect(first, &QNetworkReply::finished, [&] {
        if (second) {
            inner = waitFor(second).object.value(QLatin1String("a")).toString();
        }
    });
    waitFor(first);
    EXPECT_FALSE(inner.isEmpty());
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, FailuresOfOneTurnAreToldToNestedWaitsToo)
{
    // Neither is sent, so both are over in the same turn of the event loop.
    QNetworkReply* first = manager.get(QStringLiteral("ftp://a"));
    QPointer<QNetworkReply> second = manager.get(QStringLiteral("ftp://b"));
    bool waited = false;
    QObject::connect(first, &QNetworkReply::finished, [&] {
        waited = true;
        EXPECT_EQ(waitFor(second).error, QNetworkReply::ProtocolUnknownError);
    });
    EXPECT_EQ(waitFor(first).error, QNetworkReply::ProtocolUnknownError);
    EXPECT_TRUE(waited);
}

// ---- quitting

TEST_F(NetworkEventLoopTest, QuittingEndsAWaitAndTheNextOneWorks)
{
    server.neverAnswer();
    server.answerJson(200, R"({"a":"after"})");
    Outcome during;
    QString after;
    server.onRequest = [&] {
        server.onRequest = {};
        QCoreApplication::quit();
    };
    runInApplication([&] {
        during = get();
        after = getText();
    });
    EXPECT_FALSE(during.isSuccessful);
    EXPECT_EQ(during.error, QNetworkReply::OperationCanceledError);
    EXPECT_EQ(after, QStringLiteral("after"));
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, QuittingWithMinusOneEndsAWaitToo)
{
    server.neverAnswer();
    Outcome during;
    server.onRequest = [] {
        QCoreApplication::exit(-1);
    };
    runInApplication([&] { during = get(); });
    EXPECT_EQ(during.error, QNetworkReply::OperationCanceledError);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, QuittingEndsEveryNestedWait)
{
    server.neverAnswer();
    server.neverAnswer();
    Outcome outer;
    Outcome inner;
    server.onRequest = [&] {
        server.onRequest = [] {
            QCoreApplication::quit();
        };
        inner = get();
    };
    runInApplication([&] { outer = get(); });
    EXPECT_EQ(inner.error, QNetworkReply::OperationCanceledError);
    EXPECT_EQ(outer.error, QNetworkReply::OperationCanceledError);
    EXPECT_EQ(server.requestCount(), 2);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, AnOperationThatBeginsAfterQuitWorks)
{
    // Nested as well: what runs during such a wait may wait, too.
    server.answerRaw({Step::pause(50), Step::bytes(ScriptServer::httpAnswer(200, R"({"a":"outer"})"))});
    server.answerJson(200, R"({"a":"inner"})");
    QString outer;
    QString inner;
    runInApplication([&] {
        QCoreApplication::quit();
        server.onRequest = [&] {
            server.onRequest = {};
            inner = getText();
        };
        outer = getText();
    });
    EXPECT_EQ(outer, QStringLiteral("outer"));
    EXPECT_EQ(inner, QStringLiteral("inner"));
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, AnOperationAfterQuitKeepsItsDeadline)
{
    manager.setDeadline(100ms);
    server.neverAnswer();
    Outcome outcome;
    runInApplication([&] {
        QCoreApplication::quit();
        outcome = get();
    });
    EXPECT_EQ(outcome.error, QNetworkReply::TimeoutError);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, AnOperationInAboutToQuitWorks)
{
    server.answerJson(200, R"({"a":"saved"})");
    QString saved;
    const QMetaObject::Connection connection =
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, [&] { saved = getText(); });
    runInApplication([] { QCoreApplication::quit(); });
    QObject::disconnect(connection);
    EXPECT_EQ(saved, QStringLiteral("saved"));
    EXPECT_TRUE(server.isUsedUp());
}

// ---- threads and other makers' replies

TEST_F(NetworkEventLoopTest, AThreadOfItsOwnMayWait)
{
    server.answerJson(200, R"({"a":"thread"})");
    QString text;
    QEventLoop loop;
    // Not a QThread: its end is told before the thread's own storage is freed, which the leak check may then
    // find.
    std::thread thread([&] {
        text = getText();
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    thread.join();
    EXPECT_EQ(text, QStringLiteral("thread"));
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(NetworkEventLoopTest, ReadsAnotherMakersReply)
{
    EXPECT_EQ(waitFor(foreignReply(R"({"a":1})")).object.size(), 1);
    EXPECT_TRUE(waitFor(foreignReply("")).isSuccessful);
    EXPECT_EQ(waitFor(foreignReply("<html>")).error, QNetworkReply::ProtocolFailure);
    const Outcome outcome = waitFor(foreignReply(R"({"message":"m"})", QNetworkReply::InternalServerError));
    EXPECT_EQ(outcome.error, QNetworkReply::InternalServerError);
    EXPECT_EQ(outcome.object.size(), 1);
}

TEST_F(NetworkEventLoopTest, ReadsAnotherMakersLargeReply)
{
    const QByteArray body = "[" + QByteArray(R"({"a":"0123456789"},)").repeated(50'000) + R"({"a":"last"}])";
    const Outcome outcome = waitFor(foreignReply(body));
    EXPECT_TRUE(outcome.isSuccessful);
    ASSERT_EQ(outcome.objectList.size(), 50'001);
    EXPECT_EQ(outcome.objectList.last().value(QLatin1String("a")).toString(), QStringLiteral("last"));
}

TEST_F(NetworkEventLoopTest, AnotherMakersReplyHasADeadlineToo)
{
    manager.setDeadline(50ms);
    const Outcome outcome = waitFor(foreignReply());
    EXPECT_FALSE(outcome.isSuccessful);
    EXPECT_EQ(outcome.error, QNetworkReply::OperationCanceledError);
}
