#include "ApiFixture.h"
#include "api/Api.h"

namespace monitorservice {
namespace {

// A store that has ceased to work.
class FailingStore final : public Store
{
public:
    explicit FailingStore(StoreFailure failure) : m_failure(failure) {}

    std::unique_ptr<const Session> read(const Expectations& /*expected*/) override
    {
        throw StoreError(m_failure, "/secret/path: failure");
    }
    std::unique_ptr<Session> write(const Claim& /*claim*/, const Expectations& /*expected*/) override
    {
        throw StoreError(m_failure, "/secret/path: failure");
    }
    void checkReady() override { throw StoreError(m_failure, "/secret/path: failure"); }

private:
    StoreFailure m_failure;
};

HttpResponse answerOf(StoreFailure failure, const std::vector<std::string>& path)
{
    FailingStore store(failure);
    const Api api(store, std::make_shared<HttpCounters>());
    HttpRequest request;
    request.method = "GET";
    request.path = path;
    request.authorization = "Bearer rkm_x";
    return api.answer(request);
}

// The values of the answer's Retry-After fields.
std::vector<std::string> retryAfter(const HttpResponse& response)
{
    std::vector<std::string> values;
    for (const auto& [name, value] : response.headers) {
        if (name == "Retry-After") {
            values.push_back(value);
        }
    }
    return values;
}

TEST(StoreFailure, IsAnsweredByItsKindAndTellsNoPath)
{
    struct Case
    {
        StoreFailure failure;
        unsigned status;
        bool retry;
    };
    for (const Case& one :
         {Case{StoreFailure::Busy, 503, true}, Case{StoreFailure::Unreachable, 503, true},
          Case{StoreFailure::Unacknowledged, 503, true}, Case{StoreFailure::Full, 503, true},
          Case{StoreFailure::NotWritable, 503, true}, Case{StoreFailure::InputOutput, 500, false},
          Case{StoreFailure::Conflict, 409, false}, Case{StoreFailure::Internal, 500, false}}) {
        const HttpResponse response = answerOf(one.failure, {"monitor-service", "categories"});
        EXPECT_EQ(response.status, one.status);
        EXPECT_EQ(test::member(response.body, "status"), std::to_string(one.status));
        EXPECT_EQ(response.body.find("secret"), std::string::npos);
        EXPECT_EQ(retryAfter(response).size(), one.retry ? 1U : 0U);
    }
}

TEST(StoreFailure, MakesTheServiceNotReadyButAlive)
{
    EXPECT_EQ(answerOf(StoreFailure::InputOutput, {"readyz"}).status, 503U);
    EXPECT_EQ(answerOf(StoreFailure::InputOutput, {"healthz"}).status, 200U);
}

TEST(StoreFailure, WriteBesideALongWriteIsToldToComeAgain)
{
    const test::TestStore testStore;
    StoreOptions options;
    options.createIfMissing = true;
    options.patience = std::chrono::milliseconds(20);
    const std::unique_ptr<Store> store = openStore(testStore.location(), options);
    {
        const auto session = store->write();
        session->tokens().insert({"t", "Ada", "", 0, std::nullopt, std::nullopt}, sha256("rkm_x"));
        session->commit();
    }
    const Api api(*store, std::make_shared<HttpCounters>());
    HttpRequest request;
    request.method = "DELETE";
    request.path = {"monitor-service", "cells", "x"};
    request.authorization = "Bearer rkm_x";
    const std::unique_ptr<Store> other = openStore(testStore.location());
    {
        const auto longWrite = other->write();
        const HttpResponse busy = api.answer(request);
        EXPECT_EQ(busy.status, 503U);
        EXPECT_EQ(retryAfter(busy).size(), 1U);
    }
    EXPECT_EQ(api.answer(request).status, 404U);
}

} // namespace
} // namespace monitorservice
