#include "Address.h"

#include <gtest/gtest.h>

using rk::haveSameOrigin;
using rk::isWebAddress;
using rk::withoutSecrets;

TEST(Address, WebAddressesBeginWithHttpOrHttpsAndAHost)
{
    EXPECT_TRUE(isWebAddress("http://h/"));
    EXPECT_TRUE(isWebAddress("HTTPS://h/"));
    EXPECT_FALSE(isWebAddress(""));
    EXPECT_FALSE(isWebAddress("http://"));
    EXPECT_FALSE(isWebAddress("http:///monitor-service/"));
    EXPECT_FALSE(isWebAddress("https://?x"));
    EXPECT_FALSE(isWebAddress("monitor-service/categories"));
    EXPECT_FALSE(isWebAddress("file:///etc/passwd"));
    EXPECT_FALSE(isWebAddress("ftp://h/"));
    EXPECT_FALSE(isWebAddress(QByteArray("http://h\0/", 10)));
}

TEST(Address, OriginIsSchemeHostAndPort)
{
    EXPECT_TRUE(haveSameOrigin("http://h/a", "HTTP://H:80/b?c"));
    EXPECT_TRUE(haveSameOrigin("https://h:443/", "https://h/"));
    EXPECT_TRUE(haveSameOrigin("http://user:pw@h/", "http://h/"));
    EXPECT_FALSE(haveSameOrigin("http://h/", "https://h/"));
    EXPECT_FALSE(haveSameOrigin("http://h/", "http://h:81/"));
    EXPECT_FALSE(haveSameOrigin("http://h/", "http://h.example/"));
    EXPECT_FALSE(haveSameOrigin("http://h/", "http://h@other/"));
    EXPECT_TRUE(haveSameOrigin("http://h/base/a", "http://h/base/"));
    EXPECT_FALSE(haveSameOrigin("http://h.example/", "http://h"));
    EXPECT_FALSE(haveSameOrigin("http://h@other/", "http://h"));
    EXPECT_FALSE(haveSameOrigin("http://h:81/", "http://h:8"));
    EXPECT_FALSE(haveSameOrigin("http://monitor-service/", "http://"));
    EXPECT_FALSE(haveSameOrigin("http:///h/", "http:///"));
    EXPECT_FALSE(haveSameOrigin("", ""));
    EXPECT_FALSE(haveSameOrigin("http://", "http://"));
}

TEST(Address, SecretsAreUserNameAndPassword)
{
    EXPECT_EQ(withoutSecrets("http://user:p@w@h:1/a@b?c@d"), QStringLiteral("http://h:1/a@b?c@d"));
    EXPECT_EQ(withoutSecrets("http://h/a@b"), QStringLiteral("http://h/a@b"));
    EXPECT_EQ(withoutSecrets("http://u@h"), QStringLiteral("http://h"));
    EXPECT_EQ(withoutSecrets("user:pw@h/a@b://c"), QStringLiteral("h/a@b://c"));
    EXPECT_EQ(withoutSecrets("no scheme/at@all"), QStringLiteral("no scheme/at@all"));
    EXPECT_EQ(withoutSecrets(""), QString());
}
