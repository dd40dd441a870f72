#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

/// What a run of rkmon left.
struct Result
{
    int code = -1;
    bool isCrashed = false;
    QString output;
    QString messages;

    /// Output as JSON; empty when it is none.
    QJsonArray array() const;
    QJsonObject object() const;
};

/// Runs rkmon as a user would, with an environment and a configuration folder of its own. The test's own
/// events run meanwhile, so that a server in the test can answer.
class Program
{
public:
    Program();

    /// Where the service is, which project, and the token, which is put into a file.
    void configure(const QString& baseAddress, const QString& project, const QString& token);
    void setVariable(const QString& name, const QString& value) { m_environment.insert(name, value); }
    void removeVariable(const QString& name) { m_environment.remove(name); }

    /// The folder of the token file "token" and of rkmon/config.ini.
    QString folder() const { return m_folder.path(); }

    Result run(const QStringList& arguments) const;
    /// As run(); `onStarted` is called once the process is there.
    Result run(const QStringList& arguments, const std::function<void(QProcess&)>& onStarted) const;
    /// Runs a line of bash, in which rkmon is found by name.
    Result runShell(const QString& line) const;

    /// Lines of the terminals that rkmon is run on.
    static constexpr int terminalLines = 30;

    /// Runs rkmon on a terminal of its own, `columns` wide, with `typed` on its keyboard; output and messages
    /// come together. Unix only.
    Result runOnTerminal(const QStringList& arguments, int columns, const QByteArray& typed = {}) const;

private:
    Result finish(QProcess& process) const;

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
};
