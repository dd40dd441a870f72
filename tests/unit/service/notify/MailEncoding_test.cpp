#include "notify/MailEncoding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace monitorservice {
namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        EXPECT_THAT(line, EndsWith("\r"));
        lines.push_back(line.substr(0, line.size() - 1));
    }
    return lines;
}

TEST(MailEncoding, ShortAsciiStaysAsItIs)
{
    EXPECT_EQ(headerText("Alarm: Tower 1"), "Alarm: Tower 1");
    EXPECT_EQ(headerText(""), "");
}

TEST(MailEncoding, OtherTextBecomesEncodedWords)
{
    EXPECT_EQ(headerText("Alarm: Höhe"), "=?UTF-8?B?QWxhcm06IEjDtmhl?=");
    EXPECT_EQ(headerText("a =?b"), "=?UTF-8?B?YSA9P2I=?=");
}

TEST(MailEncoding, LongTextIsFoldedBetweenCharacters)
{
    std::string text;
    for (int i = 0; i < 40; ++i) {
        text += "€";
    }
    const std::vector<std::string> lines = linesOf(headerText(text) + "\r\n");
    EXPECT_EQ(lines.size(), 4U); // 13 characters of three bytes each
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_THAT(lines[i], AllOf(StartsWith(i == 0 ? "=?UTF-8?B?" : " =?UTF-8?B?"), EndsWith("?=")));
        EXPECT_LE(lines[i].size(), 66U);
    }
    EXPECT_EQ(lines[0].substr(10, 52), "4oKs4oKs4oKs4oKs4oKs4oKs4oKs4oKs4oKs4oKs4oKs4oKs4oKs");
}

TEST(MailEncoding, NoNameCanBeginAHeader)
{
    EXPECT_EQ(headerText("Tower\r\nBcc: eve@example.org"), "Tower  Bcc: eve@example.org");
    EXPECT_THAT(headerText("Türm\r\nBcc: eve@example.org"), Not(HasSubstr("\n")));
}

TEST(MailEncoding, BodyIsQuotedPrintable)
{
    EXPECT_EQ(quotedPrintable("S1: 12.5 mm\n"), "S1: 12.5 mm\r\n");
    EXPECT_EQ(quotedPrintable("a=b\n.\n"), "a=3Db\r\n.\r\n");
    EXPECT_EQ(quotedPrintable("Höhe"), "H=C3=B6he\r\n");
    EXPECT_EQ(quotedPrintable("ends in a blank \n\n\tx\t"), "ends in a blank=20\r\n\r\n\tx=09\r\n");
    EXPECT_EQ(quotedPrintable("\x01\r\x7f\n"), "=01=0D=7F\r\n");
    EXPECT_EQ(quotedPrintable(""), "");
}

TEST(MailEncoding, LongLinesAreBroken)
{
    std::string text;
    for (int i = 0; i < 100; ++i) {
        text += "aö";
    }
    std::string joined;
    for (const std::string& line : linesOf(quotedPrintable(text))) {
        EXPECT_LE(line.size(), 76U);
        EXPECT_THAT(line, ::testing::ContainsRegex("^(a|=C3|=B6)+=?$"));
        joined += line.back() == '=' ? line.substr(0, line.size() - 1) : line;
    }
    std::string expected;
    for (int i = 0; i < 100; ++i) {
        expected += "a=C3=B6";
    }
    EXPECT_EQ(joined, expected);
}

TEST(MailEncoding, DateIsThatOfMails)
{
    EXPECT_EQ(mailDate(1450679400123), "Mon, 21 Dec 2015 06:30:00 +0000");
    EXPECT_EQ(mailDate(0), "Thu, 01 Jan 1970 00:00:00 +0000");
    EXPECT_EQ(mailDate(1709208000999), "Thu, 29 Feb 2024 12:00:00 +0000");
}

} // namespace
} // namespace monitorservice
