// Nothing is logged or printed unless somebody turns it on, whatever becomes of an operation.

#include "../../support/LibraryTest.h"
#include "../../support/Operations.h"

#include <QMutex>

namespace {

// Collects what goes through Qt's log for as long as it lives.
class Log
{
public:
    Log() : m_earlier(qInstallMessageHandler(&Log::take)) { lines().clear(); }
    ~Log() { qInstallMessageHandler(m_earlier); }
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    static QStringList& lines()
    {
        static QStringList taken;
        return taken;
    }

private:
    static void take(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text)
    {
        static QMutex mutex;
        const QMutexLocker locker(&mutex);
        lines().append(text);
    }

    QtMessageHandler m_earlier;
};

TEST(Log, TakesWhatIsLogged)
{
    const Log log;
    qWarning("heard");
    EXPECT_EQ(Log::lines(), QStringList{"heard"_q});
}

class Silence : public LibraryTest, public testing::WithParamInterface<Operation>
{
};

TEST_P(Silence, OfSuccessAndFailures)
{
    const Log log;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();

    // The success last: an update that succeeded has nothing to send again.
    server.answerJson(500, R"({"message":"refused","status":500})");
    bool asExpected = GetParam().fails(data);
    server.answerRaw(
        {ScriptServer::Step::bytes("this is no HTTP at all\r\n\r\n"), ScriptServer::Step::fin()});
    asExpected = GetParam().fails(data) && asExpected;
    RKBaseApi::GetInstance().setBaseApi("no address"_q);
    asExpected = GetParam().fails(data) && asExpected;
    RKBaseApi::GetInstance().setBaseApi(server.baseAddress());
    server.answerJson(200, GetParam().answer);
    asExpected = GetParam().succeeds(data) && asExpected;

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(Log::lines(), QStringList());
    EXPECT_TRUE(asExpected);
}

INSTANTIATE_TEST_SUITE_P(Operations, Silence, testing::ValuesIn(allOperations()),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

} // namespace
