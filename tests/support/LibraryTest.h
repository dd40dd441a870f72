#pragma once

#include "RKMonitoringData.h"
#include "ScriptServer.h"
#include "Text.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <RKBaseApi.h>
#include <RKSoftCache.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// A test of the library's members against a scripted service on the loopback: fresh caches, project "p7",
/// and at the end a script that was used up to its last answer.
class LibraryTest : public testing::Test
{
protected:
    LibraryTest()
    {
        RKBaseApi::GetInstance().setBaseApi(server.baseAddress());
        GetSoftCache()->setProjectId("p7"_q);
        data.clear();
    }

    void TearDown() override { EXPECT_TRUE(server.isUsedUp()); }

    ScriptServer::Request lastRequest() const { return server.requests().last(); }
    QByteArray lastMethod() const { return lastRequest().method; }
    /// The path of the last request after "/monitor-service/".
    QString lastPath() const
    {
        const QString path = ScriptServer::decodedPath(lastRequest().target);
        EXPECT_TRUE(path.startsWith("/monitor-service/"_q)) << path.toStdString();
        return path.mid(static_cast<int>(sizeof("/monitor-service/")) - 1);
    }
    QList<QPair<QString, QString>> lastQuery() const
    {
        return ScriptServer::decodedQuery(lastRequest().target);
    }
    QJsonObject lastBody() const { return QJsonDocument::fromJson(lastRequest().body).object(); }

    ScriptServer server;
    RKMonitoringData& data = *RKMonitoringData::instance();
};

using Query = QList<QPair<QString, QString>>;
