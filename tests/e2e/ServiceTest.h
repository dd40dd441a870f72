#pragma once

#include "MonitorService.h"

#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <memory>

/// Tests against the real service, one process per suite. Every test has a project and tokens of its own, so
/// that it sees nothing of the others.
class ServiceTest : public testing::Test
{
public:
    static void SetUpTestSuite();
    static void TearDownTestSuite();

protected:
    ServiceTest();

    static MonitorService& service() { return *s_service; }
    /// The categories that the service knows.
    static QStringList categories();

    QString project;
    MonitorService::Token editor;
    MonitorService::Token reader;

private:
    static std::unique_ptr<MonitorService> s_service;
};
