#include "notify/Signature.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

// Compared with: printf '%s' '1450679400.{"a":1}' | openssl dgst -sha256 -hmac 'top secret'
TEST(Signature, IsThatOfTimeAndBody)
{
    EXPECT_EQ(signatureOf("top secret", "1450679400", R"({"a":1})"),
              "544733ddfe7d34f0d64ea649e258dea8d44f7527d3d8298d6fb8169d61e63cf2");
    EXPECT_NE(signatureOf("top secret", "1450679401", R"({"a":1})"),
              signatureOf("top secret", "1450679400", R"({"a":1})"));
    EXPECT_NE(signatureOf("top secres", "1450679400", R"({"a":1})"),
              signatureOf("top secret", "1450679400", R"({"a":1})"));
}

TEST(Signature, BytesAreTwoDigitsEach)
{
    EXPECT_EQ(hexadecimal(std::string("\0\x0f\xa0\xff", 4)), "000fa0ff");
}

} // namespace
} // namespace monitorservice
