#include "http/HttpMessage.h"

#include "http/HttpDate.h"

#include <gmock/gmock.h>

namespace monitorservice {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST(HttpMessage, ErrorAnswerIsJson)
{
    const HttpResponse response = errorResponse(404, "no such cell");
    EXPECT_EQ(response.status, 404U);
    EXPECT_EQ(response.body, R"({"message":"no such cell","status":404})");
    EXPECT_EQ(response.contentType, "application/json; charset=utf-8");
    EXPECT_THAT(response.headers, IsEmpty());
}

TEST(HttpMessage, ErrorAnswerEscapesItsMessage)
{
    EXPECT_EQ(errorResponse(400, "a \"b\" \\ \n\x01 沉").body,
              R"({"message":"a \"b\" \\ \n\u0001 沉","status":400})");
}

TEST(HttpMessage, UnavailableSaysWhenToTryAgain)
{
    EXPECT_THAT(errorResponse(503, "busy").headers, ElementsAre(Pair("Retry-After", "1")));
}

TEST(HttpDate, IsWrittenInGreenwichTime)
{
    EXPECT_EQ(httpDate(784111777), "Sun, 06 Nov 1994 08:49:37 GMT");
    EXPECT_EQ(httpDate(0), "Thu, 01 Jan 1970 00:00:00 GMT");
    EXPECT_EQ(httpDate(1709164800), "Thu, 29 Feb 2024 00:00:00 GMT");
}

} // namespace monitorservice
