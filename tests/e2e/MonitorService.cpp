#include "MonitorService.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

namespace {

// Only keeps a broken service from hanging the tests; nothing is measured by it.
constexpr int patience = 60'000;

const QString program = QStringLiteral(MONITOR_SERVICE_PROGRAM);

} // namespace

MonitorService::MonitorService()
{
    EXPECT_TRUE(m_folder.isValid());
    m_process.setProcessChannelMode(QProcess::SeparateChannels);
    m_process.setStandardErrorFile(m_folder.filePath(QStringLiteral("service.log")));
}

MonitorService::~MonitorService()
{
    if (isRunning()) {
        EXPECT_EQ(stop(), 0);
    }
}

bool MonitorService::start()
{
    m_process.start(program, QStringList{QStringLiteral("serve")} + data() +
                                 QStringList{QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0")});
    while (!m_process.canReadLine() && m_process.waitForReadyRead(patience)) {
    }
    static const QRegularExpression announcement(
        QStringLiteral("\\Amonitor-service listening on (http://127\\.0\\.0\\.1:\\d+/)\\R\\z"));
    const QString line = QString::fromUtf8(m_process.readLine());
    const QRegularExpressionMatch match = announcement.match(line);
    EXPECT_TRUE(match.hasMatch()) << "instead of its address it printed \"" << qPrintable(line) << '"';
    m_baseAddress = match.captured(1);
    return match.hasMatch();
}

int MonitorService::stop()
{
    m_process.terminate();
    EXPECT_TRUE(m_process.waitForFinished(patience));
    EXPECT_EQ(m_process.exitStatus(), QProcess::NormalExit);
    return m_process.exitCode();
}

void MonitorService::kill()
{
    m_process.kill();
    EXPECT_TRUE(m_process.waitForFinished(patience));
}

void MonitorService::freeze()
{
#ifdef Q_OS_UNIX
    const auto process = static_cast<id_t>(m_process.processId());
    ::kill(static_cast<pid_t>(process), SIGSTOP);
    // Its threads stop one after the other; until all have, a request may still be answered.
    siginfo_t stopped{};
    EXPECT_EQ(waitid(P_PID, process, &stopped, WSTOPPED), 0);
#endif
}

void MonitorService::resume()
{
#ifdef Q_OS_UNIX
    ::kill(static_cast<pid_t>(m_process.processId()), SIGCONT);
#endif
}

QString MonitorService::admin(const QStringList& arguments) const
{
    QProcess process;
    process.start(program, QStringList{QStringLiteral("admin")} + data() + arguments);
    EXPECT_TRUE(process.waitForFinished(patience));
    EXPECT_EQ(process.exitCode(), 0) << qPrintable(arguments.join(QLatin1Char(' '))) << ": "
                                     << process.readAllStandardError().constData();
    QString output = QString::fromUtf8(process.readAllStandardOutput());
    if (output.endsWith(QLatin1Char('\n'))) {
        output.chop(1);
    }
    return output;
}

QStringList MonitorService::data() const
{
    return {QString::fromLatin1(m_data.option()), QString::fromStdString(m_data.location())};
}

QString MonitorService::createProject(const QString& name) const
{
    return admin({QStringLiteral("project"), QStringLiteral("create"), QStringLiteral("--name"), name,
                  QStringLiteral("--time-zone"), QStringLiteral("America/Los_Angeles")});
}

MonitorService::Token MonitorService::createTokenWithoutRights(const QString& owner) const
{
    Token token;
    token.text = admin({QStringLiteral("token"), QStringLiteral("create"), QStringLiteral("--owner"), owner});
    const QString list = admin({QStringLiteral("token"), QStringLiteral("list"), QStringLiteral("--json")});
    const QJsonArray tokens = QJsonDocument::fromJson(list.toUtf8()).array();
    // The latest one is the last.
    token.id = tokens.last().toObject().value(QLatin1String("_id")).toString();
    EXPECT_FALSE(token.id.isEmpty()) << qPrintable(list);
    return token;
}

MonitorService::Token MonitorService::createToken(const QString& owner, const QString& project,
                                                  const QString& role, const QString& category) const
{
    const Token token = createTokenWithoutRights(owner);
    QStringList arguments{QStringLiteral("grant"),
                          QStringLiteral("--token"),
                          token.id,
                          QStringLiteral("--project"),
                          project,
                          QStringLiteral("--role"),
                          role};
    if (!category.isEmpty()) {
        arguments << QStringLiteral("--category") << category;
    }
    admin(arguments);
    return token;
}
