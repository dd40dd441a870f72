#include "TimeZones.h"

#include "ScriptedSession.h"

namespace {

class TimeZones : public ScriptedSession
{
protected:
    ~TimeZones() override { qputenv("TZ", m_before); }

    QTimeZone underTz(const char* name)
    {
        qputenv("TZ", name);
        return zones::ofMachine();
    }

private:
    QByteArray m_before = qgetenv("TZ");
};

const QByteArray about = R"({"name":"monitor-service","version":"1","extensions":["projects"],
                             "owner":"a","rights":[]})";

} // namespace

TEST_F(TimeZones, AreKnownByName)
{
    EXPECT_EQ(zones::named("Asia/Shanghai"_q, "x"_q).id(), "Asia/Shanghai");
    EXPECT_EQ(zones::named("UTC"_q, "x"_q).offsetFromUtc(QDateTime::currentDateTimeUtc()), 0);
}

TEST_F(TimeZones, ThatAreNotKnownAreAnError)
{
    for (const char* name : {"Mars/Phobos", "europe vienna", "", "+01:00x"}) {
        try {
            zones::named(QString::fromUtf8(name), "--zone"_q);
            FAIL() << name;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.kind(), FailureKind::BadInput);
            EXPECT_TRUE(failure.message().startsWith("--zone: \""_q)) << qPrintable(failure.message());
        }
    }
}

TEST_F(TimeZones, OfTheProjectIsAskedFor)
{
    server.answerJson(200, about);
    server.answerJson(200, R"({"_id":"p7","name":"Bluff","timeZone":"America/Los_Angeles"})");
    EXPECT_EQ(zones::ofProject(session)->id(), "America/Los_Angeles");
}

TEST_F(TimeZones, OfTheProjectMayNotBeTold)
{
    server.answerJson(404, R"({"message":"nothing here","status":404})");
    EXPECT_FALSE(zones::ofProject(session));
}

TEST_F(TimeZones, OfTheProjectMustBeKnownHere)
{
    server.answerJson(200, about);
    server.answerJson(200, R"({"_id":"p7","name":"Base","timeZone":"Mars/Phobos"})");
    EXPECT_EQ(failureOf([&] { zones::ofProject(session); }), FailureKind::BadInput);
}

TEST_F(TimeZones, OfTheMachineAreNamedOrRules)
{
    EXPECT_EQ(underTz("Europe/Vienna").id(), "Europe/Vienna");
    EXPECT_NO_THROW(underTz(":Europe/Vienna"));
    EXPECT_NO_THROW(underTz("CET-1CEST"));
    EXPECT_NO_THROW(underTz("<+0330>-3:30"));
    EXPECT_NO_THROW(underTz(""));
    EXPECT_EQ(failureOf([&] { underTz("Mars/Phobos"); }), FailureKind::BadInput);
    EXPECT_EQ(failureOf([&] { underTz("Europe/Viena"); }), FailureKind::BadInput);
}

TEST_F(TimeZones, DaysBeginWhereTheClocksSkipMidnight)
{
    // The clocks of Beirut went from 23:59:59 on 27 March 2021 to 01:00.
    const QDateTime begin = zones::startOfDay(QDate(2021, 3, 28), QTimeZone("Asia/Beirut"));
    EXPECT_EQ(begin.toUTC(), QDateTime(QDate(2021, 3, 27), QTime(22, 0), Qt::UTC));
    EXPECT_EQ(begin.time(), QTime(1, 0));
}
