#include "Program.h"

#include "Text.h"

#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTimer>

#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#endif

namespace {

// Only keeps a hanging program from hanging the tests; nothing is measured by it.
constexpr int patience = 60'000;

const QString program = QStringLiteral(RKMON_PROGRAM);

void waitForEnd(QProcess& process)
{
    if (process.state() == QProcess::NotRunning) {
        return;
    }
    QEventLoop loop;
    QObject::connect(&process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &loop,
                     &QEventLoop::quit);
    QTimer watchdog;
    QObject::connect(&watchdog, &QTimer::timeout, &process, [&] {
        ADD_FAILURE() << "rkmon did not end";
        process.kill();
    });
    watchdog.start(patience);
    loop.exec();
}

#ifdef Q_OS_UNIX
// A process whose standard streams are the other end of a pseudo-terminal.
class TerminalProcess : public QProcess
{
public:
    explicit TerminalProcess(int columns) : m_master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        EXPECT_GE(m_master, 0);
        EXPECT_EQ(grantpt(m_master), 0);
        EXPECT_EQ(unlockpt(m_master), 0);
        // Held open, so that what the process wrote can still be read after its end.
        m_slave = ::open(ptsname(m_master), O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_GE(m_slave, 0);
        termios modes{};
        tcgetattr(m_slave, &modes);
        modes.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        modes.c_oflag &= ~static_cast<tcflag_t>(OPOST);
        tcsetattr(m_slave, TCSANOW, &modes);
        winsize size{};
        size.ws_col = static_cast<unsigned short>(columns);
        size.ws_row = Program::terminalLines;
        ioctl(m_slave, TIOCSWINSZ, &size);
        fcntl(m_master, F_SETFL, O_NONBLOCK);
    }

    ~TerminalProcess() override
    {
        ::close(m_slave);
        ::close(m_master);
    }

    TerminalProcess(const TerminalProcess&) = delete;
    TerminalProcess& operator=(const TerminalProcess&) = delete;

    void type(const QByteArray& text)
    {
        EXPECT_EQ(::write(m_master, text.constData(), static_cast<size_t>(text.size())), text.size());
    }

    QByteArray shown() const
    {
        QByteArray text;
        QByteArray piece(4096, '\0');
        for (;;) {
            const ssize_t length = ::read(m_master, piece.data(), static_cast<size_t>(piece.size()));
            if (length <= 0) {
                return text;
            }
            text.append(piece.constData(), static_cast<int>(length));
        }
    }

protected:
    void setupChildProcess() override
    {
        setsid();
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            dup2(m_slave, stream);
        }
    }

private:
    int m_master;
    int m_slave = -1;
};
#endif

// A process that takes those with it that it leaves in its background.
class GroupLeader : public QProcess
{
public:
    GroupLeader() = default;
    GroupLeader(const GroupLeader&) = delete;
    GroupLeader& operator=(const GroupLeader&) = delete;

    ~GroupLeader() override
    {
#ifdef Q_OS_UNIX
        if (m_group > 0) {
            ::kill(static_cast<pid_t>(-m_group), SIGKILL);
        }
#endif
    }

    // To be called while it runs.
    void keepGroup()
    {
        m_group = processId();
    }

protected:
    void setupChildProcess() override
    {
#ifdef Q_OS_UNIX
        setpgid(0, 0);
#endif
    }

private:
    qint64 m_group = 0;
};

} // namespace

QJsonArray Result::array() const
{
    return QJsonDocument::fromJson(output.toUtf8()).array();
}

QJsonObject Result::object() const
{
    return QJsonDocument::fromJson(output.toUtf8()).object();
}

Program::Program() : m_environment(QProcessEnvironment::systemEnvironment())
{
    EXPECT_TRUE(m_folder.isValid());
    const QStringList names = m_environment.keys();
    for (const QString& name : names) {
        if (name.startsWith("RKMON_"_q) || name.endsWith("_proxy"_q, Qt::CaseInsensitive)) {
            m_environment.remove(name);
        }
    }
    for (const QString& name : {"NO_COLOR"_q, "COLUMNS"_q, "LINES"_q}) {
        m_environment.remove(name);
    }
    m_environment.insert("XDG_CONFIG_HOME"_q, m_folder.path());
    m_environment.insert("TZ"_q, "UTC"_q);
    m_environment.insert("TERM"_q, "xterm"_q);
    // Not UTF-8 on purpose: names must not depend on it.
    m_environment.insert("LC_ALL"_q, "C"_q);
    m_environment.insert("PATH"_q,
                         QFileInfo(program).path() + QLatin1Char(':') + m_environment.value("PATH"_q));
}

void Program::configure(const QString& baseAddress, const QString& project, const QString& token)
{
    QFile file(m_folder.filePath("token"_q));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(token.toUtf8() + '\n');
    file.close();
    EXPECT_TRUE(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
    setVariable("RKMON_BASE_API"_q, baseAddress);
    setVariable("RKMON_PROJECT"_q, project);
    setVariable("RKMON_TOKEN_FILE"_q, file.fileName());
}

Result Program::run(const QStringList& arguments) const
{
    return run(arguments, [](QProcess&) {});
}

Result Program::run(const QStringList& arguments, const std::function<void(QProcess&)>& onStarted) const
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForStarted(patience));
    onStarted(process);
    return finish(process);
}

Result Program::runShell(const QString& line) const
{
    GroupLeader process;
    process.setProcessEnvironment(m_environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start("bash"_q, {"-c"_q, line});
    EXPECT_TRUE(process.waitForStarted(patience));
    process.keepGroup();
    return finish(process);
}

Result Program::finish(QProcess& process) const
{
    waitForEnd(process);
    Result result;
    result.code = process.exitCode();
    result.isCrashed = process.exitStatus() == QProcess::CrashExit;
    EXPECT_FALSE(result.isCrashed);
    result.output = QString::fromUtf8(process.readAllStandardOutput());
    result.messages = QString::fromUtf8(process.readAllStandardError());
    return result;
}

Result Program::runOnTerminal(const QStringList& arguments, int columns, const QByteArray& typed) const
{
    Result result;
#ifdef Q_OS_UNIX
    TerminalProcess process(columns);
    process.setProcessEnvironment(m_environment);
    if (!typed.isEmpty()) {
        process.type(typed);
    }
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForStarted(patience));
    result = finish(process);
    result.output = QString::fromUtf8(process.shown());
#else
    Q_UNUSED(arguments)
    Q_UNUSED(columns)
    Q_UNUSED(typed)
#endif
    return result;
}
