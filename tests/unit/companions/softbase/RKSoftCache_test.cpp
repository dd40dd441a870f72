#include <RKSoftCache.h>

#include <gtest/gtest.h>

#include <thread>

TEST(RKSoftCache, NoProjectIsOpenAtFirst)
{
    RKSoftCache cache;
    EXPECT_TRUE(cache.getProjectId().isEmpty());
}

TEST(RKSoftCache, GivesTheProjectLastSet)
{
    RKSoftCache cache;
    cache.setProjectId(QStringLiteral("64b0c1d2e3f405162738495a"));
    cache.setProjectId(QStringLiteral("基坑一号 №1"));
    EXPECT_EQ(cache.getProjectId(), QStringLiteral("基坑一号 №1"));
    cache.setProjectId(QString());
    EXPECT_TRUE(cache.getProjectId().isEmpty());
}

TEST(RKSoftCache, ObjectsDoNotShareTheirProject)
{
    RKSoftCache one;
    RKSoftCache other;
    one.setProjectId(QStringLiteral("one"));
    EXPECT_TRUE(other.getProjectId().isEmpty());
}

TEST(RKSoftCache, TheAccessorCanBeOverridden)
{
    class FixedProject : public RKSoftCache
    {
    public:
        QString getProjectId() override { return QStringLiteral("fixed"); }
    };
    FixedProject fixed;
    RKSoftCache& cache = fixed;
    cache.setProjectId(QStringLiteral("set"));
    EXPECT_EQ(cache.getProjectId(), QStringLiteral("fixed"));
}

TEST(GetSoftCache, GivesOneObjectToEverybody)
{
    RKSoftCache* const here = GetSoftCache();
    RKSoftCache* there = nullptr;
    std::thread([&there] { there = GetSoftCache(); }).join();
    ASSERT_NE(here, nullptr);
    EXPECT_EQ(here, there);
    here->setProjectId(QStringLiteral("p"));
    EXPECT_EQ(GetSoftCache()->getProjectId(), QStringLiteral("p"));
    here->setProjectId(QString());
}
