#include "UrlEncoding.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using rk::encodedUrl;

const QString base = QStringLiteral("http://h/");

std::string encoded(const QString& rest)
{
    const QByteArray url = encodedUrl(base + rest, base);
    EXPECT_TRUE(url.startsWith("http://h/"));
    return url.mid(9).toStdString();
}

std::string encoded(const char* rest)
{
    return encoded(QString::fromUtf8(rest));
}

} // namespace

TEST(UrlEncoding, BaseAddressStandsAsConfigured)
{
    const QString odd = QStringLiteral("http://user:p%40w@h:8080/a b/%41?x=#/");
    EXPECT_EQ(encodedUrl(odd + QStringLiteral("a b"), odd), odd.toUtf8() + "a%20b");
}

TEST(UrlEncoding, AnotherAddressKeepsItsSchemeAndAuthority)
{
    EXPECT_EQ(encodedUrl(QStringLiteral("https://u:p@other:1/a b?where={}"), base),
              "https://u:p@other:1/a%20b?where=%7B%7D");
    EXPECT_EQ(encodedUrl(QStringLiteral("http://other"), base), "http://other");
    EXPECT_EQ(encodedUrl(QStringLiteral("http://other?where={}"), base), "http://other?where=%7B%7D");
    EXPECT_EQ(encodedUrl(QStringLiteral("categories"), QString()), "categories");
}

TEST(UrlEncoding, PathKeepsOnlySlashesAndUnreservedCharacters)
{
    EXPECT_EQ(encoded("cells/aZ09-._~"), "cells/aZ09-._~");
    EXPECT_EQ(encoded("cells/a&b#c+d%e=f\"g\\h i"), "cells/a%26b%23c%2Bd%25e%3Df%22g%5Ch%20i");
    EXPECT_EQ(encoded("projects//cells"), "projects//cells");
    EXPECT_EQ(encoded("cells/../x/./y"), "cells/../x/./y");
    EXPECT_EQ(encoded("cells/a?b"), "cells/a%3Fb");
    EXPECT_EQ(encoded("cells/a?wherever=1"), "cells/a%3Fwherever%3D1");
    EXPECT_EQ(encoded("cells/%41"), "cells/%2541");
}

TEST(UrlEncoding, PathEndsWhereAParameterBegins)
{
    EXPECT_EQ(encoded("a?b?cascade=true"), "a%3Fb?cascade=true");
    EXPECT_EQ(encoded("dataManages/5f?cascade=true"), "dataManages/5f?cascade=true");
}

TEST(UrlEncoding, WhereIsReadAsJson)
{
    EXPECT_EQ(encoded(R"(c?where={"name":"a&skip=1}b"}&skip=0&limit=20)"),
              "c?where=%7B%22name%22%3A%22a%26skip%3D1%7Db%22%7D&skip=0&limit=20");
    EXPECT_EQ(encoded(R"(c?where={"name":"a\"}&limit=9"}&only_count=true)"),
              "c?where=%7B%22name%22%3A%22a%5C%22%7D%26limit%3D9%22%7D&only_count=true");
    EXPECT_EQ(encoded(R"(c?where={"name":"a\\"}&expand=true)"),
              "c?where=%7B%22name%22%3A%22a%5C%5C%22%7D&expand=true");
    EXPECT_EQ(encoded(R"(c?where={"a":{"$in":["{","}"]}}&expand=true&order=-data.time&limit=1&skip=0)"),
              "c?where=%7B%22a%22%3A%7B%22%24in%22%3A%5B%22%7B%22%2C%22%7D%22%5D%7D%7D"
              "&expand=true&order=-data.time&limit=1&skip=0");
    EXPECT_EQ(encoded("c?expand=true&where={}"), "c?expand=true&where=%7B%7D");
    EXPECT_EQ(encoded("c?where={}&type=depth&expand=true"), "c?where=%7B%7D&type=depth&expand=true");
    EXPECT_EQ(encoded("c?where={}&samples=latest&rollup=true"), "c?where=%7B%7D&samples=latest&rollup=true");
    EXPECT_EQ(encoded("c?where={}&limit=1&open=true"), "c?where=%7B%7D&limit=1&open=true");
}

TEST(UrlEncoding, WhereThatIsNoDocumentIsAllTheRest)
{
    // A depth stands in its document without escapes.
    EXPECT_EQ(encoded(R"(a?where={"depth":"1"2"})"), "a?where=%7B%22depth%22%3A%221%222%22%7D");
    EXPECT_EQ(encoded(R"(a?where={"depth":"1\"})"), "a?where=%7B%22depth%22%3A%221%5C%22%7D");
    EXPECT_EQ(encoded(R"(a?where={"depth":"}"}"})"), "a?where=%7B%22depth%22%3A%22%7D%22%7D%22%7D");
    EXPECT_EQ(encoded(R"(a?where={"depth":"1&limit=2)"), "a?where=%7B%22depth%22%3A%221%26limit%3D2");
    EXPECT_EQ(encoded("a?where={}x&limit=2"), "a?where=%7B%7Dx%26limit%3D2");
    EXPECT_EQ(encoded("a?where={}&x=2"), "a?where=%7B%7D%26x%3D2");
    EXPECT_EQ(encoded("a?where=[1]&limit=2"), "a?where=%5B1%5D%26limit%3D2");
    EXPECT_EQ(encoded("a?where="), "a?where=");
}

TEST(UrlEncoding, CategoryGoesUpToTheLastKey)
{
    EXPECT_EQ(encoded("auth?category=a&key=b&key=create"), "auth?category=a%26key%3Db&key=create");
    EXPECT_EQ(encoded("auth?category=a&where={}&limit=1#?%&key=edit"),
              "auth?category=a%26where%3D%7B%7D%26limit%3D1%23%3F%25&key=edit");
    EXPECT_EQ(encoded("auth?category=&key=delete"), "auth?category=&key=delete");
    EXPECT_EQ(encoded("auth?category=?category=&key=delete"), "auth?category=%3Fcategory%3D&key=delete");
    EXPECT_EQ(encoded("auth?category=a&b"), "auth?category=a%26b");
}

TEST(UrlEncoding, OtherValuesGoUpToTheNextParameter)
{
    EXPECT_EQ(encoded("a?skip=-5&limit=0"), "a?skip=-5&limit=0");
    EXPECT_EQ(encoded("a?order=x&y=1&limit=2"), "a?order=x%26y%3D1&limit=2");
}

TEST(UrlEncoding, ASlashInAValueIsEncoded)
{
    EXPECT_EQ(encoded("a/b?order=x/y&limit=1"), "a/b?order=x%2Fy&limit=1");
    EXPECT_EQ(encoded(R"(a/b?where={"name":"x/y"}&skip=0)"),
              "a/b?where=%7B%22name%22%3A%22x%2Fy%22%7D&skip=0");
    EXPECT_EQ(encoded("a/auth?category=x/y&key=c/d"), "a/auth?category=x%2Fy&key=c%2Fd");
}

TEST(UrlEncoding, EveryScriptIsUtf8)
{
    EXPECT_EQ(encoded("é水😀"), "%C3%A9%E6%B0%B4%F0%9F%98%80");
    EXPECT_EQ(encoded(QStringLiteral("a") + QChar(0) + QChar(0x1F) + QChar(0x7F)), "a%00%1F%7F");
}

TEST(UrlEncoding, HalfASurrogatePairBecomesTheReplacementCharacter)
{
    EXPECT_EQ(encoded(QString(QChar(0xD83D)) + QStringLiteral("x")), "%EF%BF%BDx");
    EXPECT_EQ(encoded(QString(QChar(0xDE00)) + QStringLiteral("x")), "%EF%BF%BDx");
    EXPECT_EQ(encoded(QString(QChar(0xD83D))), "%EF%BF%BD");
    EXPECT_EQ(encoded(QString(QChar(0xD83D)) + QChar(0xD83D) + QChar(0xDE00)), "%EF%BF%BD%F0%9F%98%80");
}
