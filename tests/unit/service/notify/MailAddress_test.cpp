#include "notify/MailAddress.h"

#include <gtest/gtest.h>

#include <string>

namespace monitorservice {
namespace {

TEST(MailAddress, UsualAddressesAreTaken)
{
    for (const char* const address : {"ada@example.org", "a.b+alarms@mail.example.org", "root@localhost",
                                      "o'neil@example.org", "a_b-c@x.y", "{a}|b~@example.org"}) {
        EXPECT_TRUE(isMailAddress(address)) << address;
    }
}

TEST(MailAddress, WhatCouldDoHarmIsNot)
{
    for (const char* const text : {"",
                                   "@",
                                   "ada",
                                   "+43 123 456",
                                   "ada@",
                                   "@example.org",
                                   "a@b@c",
                                   "Ada <ada@example.org>",
                                   "ada@example.org\r\nBcc: eve@example.org",
                                   "ada@example.org\n",
                                   "\tada@example.org",
                                   "ada @example.org",
                                   "ada@example.org,eve@example.org",
                                   "ada@example.org;",
                                   "ada@example.org>",
                                   "\"ada\"@example.org",
                                   "ada@[127.0.0.1]",
                                   "ada\x7f@example.org",
                                   "ädä@example.org",
                                   "ada@exämple.org",
                                   "-oQ/tmp@example.org"}) {
        EXPECT_FALSE(isMailAddress(text)) << text;
    }
    EXPECT_FALSE(isMailAddress(std::string("ada@example.org\0x", 17)));
    EXPECT_FALSE(isMailAddress(std::string(250, 'a') + "@b.c2"));
    EXPECT_TRUE(isMailAddress(std::string(250, 'a') + "@b.c"));
}

} // namespace
} // namespace monitorservice
