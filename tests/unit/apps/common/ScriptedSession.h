#pragma once

#include "ScriptServer.h"
#include "ServiceSession.h"
#include "Text.h"

#include <gtest/gtest.h>

/// A test of what the applications share, in project "p7" of a scripted service.
class ScriptedSession : public testing::Test
{
protected:
    ScriptedSession() : session(configurationFor(server)) { session.data().clear(); }

    void TearDown() override { EXPECT_TRUE(server.isUsedUp()); }

    static Configuration configurationFor(const ScriptServer& server)
    {
        Configuration configuration;
        configuration.baseApi = server.baseAddress();
        configuration.project = "p7"_q;
        configuration.token = "rkm_secret"_q;
        configuration.tokenFile = "/home/ana/token"_q;
        return configuration;
    }

    /// The kind of the failure that `work` ends with.
    template <typename Work>
    static std::optional<FailureKind> failureOf(Work work)
    {
        try {
            work();
        } catch (const Failure& failure) {
            return failure.kind();
        }
        return std::nullopt;
    }

    static RKMonitoring monitoring()
    {
        RKMonitoring monitoring;
        monitoring.id = "0123456789abcdef01234567"_q;
        monitoring.name = "VH"_q;
        monitoring.category = "Slope"_q;
        return monitoring;
    }

    ScriptServer server;
    ServiceSession session;
};
