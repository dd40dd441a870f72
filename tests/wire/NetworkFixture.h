#pragma once

#include "ScriptServer.h"

#include <NetworkEventLoop.h>
#include <NetworkManager.h>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <RKBaseApi.h>

#include <gmock/gmock.h>

#include <chrono>

/// A script server, and the manager as it is at first but for an observer that keeps every exchange.
class NetworkFixture : public testing::Test
{
protected:
    NetworkFixture()
    {
        RKBaseApi::GetInstance().setBaseApi(server.baseAddress());
        resetManager();
        manager.setProxy(QStringLiteral("direct"));
    }
    ~NetworkFixture() override { resetManager(); }
    NetworkFixture(const NetworkFixture&) = delete;
    NetworkFixture& operator=(const NetworkFixture&) = delete;

    /// What a wait said when it was over.
    struct Outcome
    {
        bool isSuccessful = false;
        QNetworkReply::NetworkError error = QNetworkReply::NoError;
        QJsonObject object;
        QList<QJsonObject> objectList;
        QJsonArray array;
        QString errorText; ///< the observer's
    };

    Outcome waitFor(QNetworkReply* reply)
    {
        NetworkEventLoop wait(reply, nullptr);
        wait.exec(QEventLoop::AllEvents);
        Outcome outcome = {wait.isSuccessful(), wait.error(), wait.object(),
                           wait.objectList(),   wait.array(), QString()};
        if (!exchanges.isEmpty()) {
            outcome.errorText = exchanges.last().errorText;
        }
        return outcome;
    }

    QString url(const QString& path = QStringLiteral("x")) const { return server.baseAddress() + path; }
    Outcome get() { return waitFor(manager.get(url())); }
    Outcome post() { return waitFor(manager.postJson(url(), QJsonObject{{QStringLiteral("a"), 1}})); }
    Outcome put() { return waitFor(manager.putJson(url(), QJsonObject{{QStringLiteral("a"), 1}})); }
    Outcome patch() { return waitFor(manager.patchJson(url(), QJsonObject{{QStringLiteral("a"), 1}})); }
    Outcome remove() { return waitFor(manager.deleteResource(url())); }

    ScriptServer server;
    NetworkManager& manager = NetworkManager::instance();
    QList<NetworkExchange> exchanges;

private:
    void resetManager()
    {
        manager.setBearerToken(QString());
        manager.setDeadline(std::chrono::seconds(30));
        manager.setConnectTimeout(std::chrono::seconds(10));
        manager.setMaximumReplySize(256 * 1024 * 1024);
        manager.setCaFile(QString());
        manager.setProxy(QString());
    }

    const NetworkObservation m_observation =
        manager.addObserver([this](const NetworkExchange& exchange) { exchanges.append(exchange); });
};
