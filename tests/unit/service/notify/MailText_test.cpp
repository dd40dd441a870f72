#include "notify/MailText.h"

#include "AlarmedSite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace monitorservice {
namespace {

using test::excessOf;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

Notification notification(const std::vector<AlarmDetail>& details, const Told& told = {})
{
    Notification notification;
    notification.recipient = "ada@example.org";
    notification.project = "Harbour tunnel";
    notification.subCategory = "Ground level";
    notification.alarm.id = "01a1fa47dd90000000000000";
    notification.alarm.cellName = "Tower 1";
    notification.alarm.raisedAt = "2015-12-21T06:30:00.123Z";
    notification.news = newsOf(details, told);
    notification.writtenAt = 1450679400123;
    notification.id = "01a1fa47dd90000000000000.0123456789abcdef";
    return notification;
}

AlarmDetail wholeDetail()
{
    AlarmDetail detail;
    detail.point = "S1";
    detail.total = "12.250000000000002";
    detail.totalExcess = 2.250000000000002;
    detail.totalLimit = 10;
    detail.daily = "-3.1";
    detail.dailyExcess = 0.6;
    detail.dayLimit = 2.5;
    detail.time = "2015-12-21T07:30:00.000+01:00";
    detail.depth = "20";
    detail.value = 24.75;
    detail.reference = 12.5;
    detail.unit = "mm";
    detail.groupName = "Corner";
    return detail;
}

TEST(MailText, TellsValuesLimitsAndExcesses)
{
    const MailText text = mailTextOf(notification({wholeDetail()}));
    EXPECT_EQ(text.subject, "Alarm: Tower 1, Ground level: S1 beyond its limit");
    EXPECT_EQ(text.body,
              "Project: Harbour tunnel\n"
              "Monitoring: Tower 1, Ground level\n"
              "Alarm: 01a1fa47dd90000000000000, raised at 2015-12-21T06:30:00.123Z, 1 point\n"
              "\n"
              "S1, new\n"
              "  2015-12-21T07:30:00.000+01:00, depth 20: 24.75 mm, counted from 12.5 mm; limits of Corner\n"
              "    total variation 12.25 mm, limit 10 mm: 2.25 mm beyond\n"
              "    daily variation -3.1 mm, limit 2.5 mm: 0.6 mm beyond\n"
              "\n"
              "What is new of this alarm is told again in ten minutes at the earliest.\n");
}

TEST(MailText, LeavesOutWhatThereIsNot)
{
    AlarmDetail detail = wholeDetail();
    detail.depth.clear();
    detail.groupName.clear();
    detail.unit.clear();
    detail.dailyExcess = 0;
    const std::string body = mailTextOf(notification({detail}, {{"S1", {1, 0}}})).body;
    EXPECT_THAT(body, HasSubstr("S1, further beyond its limit\n"
                                "  2015-12-21T07:30:00.000+01:00: 24.75, counted from 12.5\n"
                                "    total variation 12.25, limit 10: 2.25 beyond\n\n"));
    EXPECT_THAT(body, Not(HasSubstr("daily")));
}

TEST(MailText, DailyVariationMayBeInPercent)
{
    AlarmDetail detail = wholeDetail();
    detail.dayVariationType = 1;
    detail.totalExcess = 0;
    EXPECT_THAT(
        mailTextOf(notification({detail})).body,
        AllOf(HasSubstr("daily variation -3.1 %, limit 2.5 %: 0.6 % beyond"), Not(HasSubstr("total"))));
}

TEST(MailText, SeveralPointsAreCounted)
{
    const Notification several =
        notification({excessOf("S1", 1), excessOf("S2", 2), excessOf("S3", 1)}, {{"S3", {1, 0}}});
    const MailText text = mailTextOf(several);
    EXPECT_EQ(text.subject, "Alarm: Tower 1, Ground level: 2 points beyond their limits");
    EXPECT_THAT(text.body, AllOf(HasSubstr(", 3 points\n"), HasSubstr("S1, new"), HasSubstr("S2, new"),
                                 Not(HasSubstr("S3"))));
}

TEST(MailText, SaysThatMoreIsToCome)
{
    Notification many = notification({excessOf("S1", 1)});
    many.news.left = 70;
    EXPECT_THAT(mailTextOf(many).body, HasSubstr("The next mail tells of 70 points more."));
}

TEST(MailText, NamesCannotPretendToBeLines)
{
    AlarmDetail detail = wholeDetail();
    detail.point = "S1\nS2, new";
    detail.groupName = "a\r\nb";
    const std::string body = mailTextOf(notification({detail})).body;
    EXPECT_THAT(body, AllOf(HasSubstr("S1 S2, new, new\n"), HasSubstr("limits of a  b\n")));
}

TEST(MailText, MailIsAsciiWithItsHeaders)
{
    Notification umlauts = notification({wholeDetail()});
    umlauts.subCategory = "Bodenhöhe";
    const std::string mail = mailOf(umlauts, "alarms@site.example.org");
    EXPECT_THAT(mail,
                StartsWith("From: alarms@site.example.org\r\n"
                           "To: ada@example.org\r\n"
                           "Subject: =?UTF-8?B?QWxhcm06IFRvd2VyIDEsIEJvZGVuaMO2aGU6IFMxIGJleW9uZCBp?=\r\n"
                           " =?UTF-8?B?dHMgbGltaXQ=?=\r\n"
                           "Date: Mon, 21 Dec 2015 06:30:00 +0000\r\n"
                           "Message-ID: <01a1fa47dd90000000000000.0123456789abcdef@site.example.org>\r\n"
                           "Auto-Submitted: auto-generated\r\n"
                           "MIME-Version: 1.0\r\n"
                           "Content-Type: text/plain; charset=utf-8\r\n"
                           "Content-Transfer-Encoding: quoted-printable\r\n"
                           "\r\n"
                           "Project: Harbour tunnel\r\n"
                           "Monitoring: Tower 1, Bodenh=C3=B6he\r\n"));
    for (const char character : mail) {
        EXPECT_LT(static_cast<unsigned char>(character), 0x80);
    }
}

} // namespace
} // namespace monitorservice
