#include "Advice.h"

#include "Text.h"

#include <gtest/gtest.h>

TEST(Advice, NamesWhatHelps)
{
    const std::vector<std::pair<Remedy, const char*>> rows{
        {Remedy::GiveAddress, "--base-api"},
        {Remedy::GiveProject, "--project"},
        {Remedy::GiveTokenFile, "--token-file"},
        {Remedy::ExtendDeadline, "--deadline"},
        {Remedy::TrustCertificate, "--ca-file"},
        {Remedy::ListProjects, "rkmon project list"},
        {Remedy::ListMonitorings, "rkmon monitoring ids"},
        {Remedy::ListSubCategories, "rkmon subcategory list"},
    };
    for (const auto& [remedy, words] : rows) {
        const QString message = withAdvice(Failure(FailureKind::Other, "it failed"_q, remedy));
        EXPECT_TRUE(message.startsWith("it failed; "_q)) << message.toStdString();
        EXPECT_TRUE(message.contains(QString::fromUtf8(words))) << message.toStdString();
    }
}

TEST(Advice, AddsNothingWhereNothingHelps)
{
    EXPECT_EQ(withAdvice(Failure(FailureKind::Other, "it failed"_q)), "it failed"_q);
}
