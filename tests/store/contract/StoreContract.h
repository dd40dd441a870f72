#pragma once

#include "store/Store.h"
#include "store/StoreOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

// What every store promises, whatever database keeps it. A store passes by building these tests together with
// its factories.

namespace monitorservice::test {

/// Data of a store, none at first. They go with the object, which outlives every store that it opens.
class StoreData
{
public:
    StoreData() = default;
    StoreData(const StoreData&) = delete;
    StoreData& operator=(const StoreData&) = delete;
    virtual ~StoreData() = default;

    /// Opens the data once more, as another process would.
    virtual std::unique_ptr<Store> open(const StoreOptions& options) = 0;
};

struct StoreFactory
{
    std::string name;
    std::function<std::unique_ptr<StoreData>()> makeData;
};

inline void PrintTo(const StoreFactory& factory, std::ostream* out)
{
    *out << factory.name;
}

/// The stores under test; each test program defines it.
std::vector<StoreFactory> storeFactories();

/// A store without content.
class StoreContract : public ::testing::TestWithParam<StoreFactory>
{
protected:
    static StoreOptions creating()
    {
        StoreOptions options;
        options.createIfMissing = true;
        options.patience = std::chrono::minutes(1);
        return options;
    }

    std::unique_ptr<Store> open(const StoreOptions& options = creating()) const
    {
        return data->open(options);
    }

    template <typename Action>
    void write(Action&& action)
    {
        const auto session = store->write();
        action(*session);
        session->commit();
    }

    std::unique_ptr<StoreData> data = GetParam().makeData();
    std::unique_ptr<Store> store = open();
};

/// The failure that the action ends with.
template <typename Action>
std::string failureOf(Action&& action)
{
    try {
        action();
    } catch (const StoreError& error) {
        switch (error.failure()) {
        case StoreFailure::Busy:
            return "busy";
        case StoreFailure::Conflict:
            return "conflict";
        case StoreFailure::CannotOpen:
            return "cannot open";
        case StoreFailure::Internal:
            return "internal";
        default:
            return error.what();
        }
    }
    return "none";
}

/// The failure that a change ends with, at the latest when it is committed.
template <typename Change>
std::string failureOf(Session& session, Change&& change)
{
    return failureOf([&] {
        change();
        session.commit();
    });
}

inline std::string nameOfFactory(const ::testing::TestParamInfo<StoreFactory>& info)
{
    return info.param.name;
}

} // namespace monitorservice::test

/// Runs a suite with every store under test.
#define RK_EVERY_STORE(Suite)                                                                                \
    INSTANTIATE_TEST_SUITE_P(Store, Suite, ::testing::ValuesIn(::monitorservice::test::storeFactories()),    \
                             ::monitorservice::test::nameOfFactory)
