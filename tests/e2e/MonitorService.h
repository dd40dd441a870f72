#pragma once

#include "support/TestStore.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// The real monitor-service on a free loopback port, with data of its own that goes away with it.
class MonitorService
{
public:
    struct Token
    {
        QString id;
        QString text;
    };

    /// Prepares a folder for the data; the service is not running yet.
    MonitorService();
    /// Stops the service when it runs.
    ~MonitorService();
    MonitorService(const MonitorService&) = delete;
    MonitorService& operator=(const MonitorService&) = delete;

    /// Starts the service and waits until it answers. False with a test failure when it does not.
    bool start();
    /// Asks it to end (SIGTERM) and waits; returns its exit status.
    int stop();
    /// Ends it without warning and waits.
    void kill();
    qint64 processId() const { return m_process.processId(); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }

    /// The running process stops working, connections stay open; resume() lets it go on. Unix only.
    void freeze();
    void resume();

    /// "http://127.0.0.1:PORT/", also after it has ended.
    QString baseAddress() const { return m_baseAddress; }
    QString folder() const { return m_folder.path(); }

    /// Runs `monitor-service admin` on its data and returns what it printed, without the line end.
    QString admin(const QStringList& arguments) const;
    QString createProject(const QString& name) const;
    /// A token with `role` (reader or editor) in the project, in every category or only in `category`.
    Token createToken(const QString& owner, const QString& project, const QString& role,
                      const QString& category = QString()) const;
    Token createTokenWithoutRights(const QString& owner) const;

private:
    // What its commands are given of the data.
    QStringList data() const;

    monitorservice::test::TestStore m_data;
    QTemporaryDir m_folder;
    QProcess m_process;
    QString m_baseAddress;
};
