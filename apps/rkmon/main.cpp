#include "Advice.h"
#include "CommandLine.h"
#include "Completion.h"
#include "CompletionValues.h"
#include "Configuration.h"
#include "ExitCode.h"
#include "ManualPages.h"
#include "Messages.h"
#include "Session.h"
#include "Terminal.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QTextCodec>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string_view>

namespace {

// Ends at once: results are written in one piece at the end of a command, so nothing is left half-written.
void endInterrupted(int)
{
    std::_Exit(static_cast<int>(ExitCode::Interrupted));
}

void writeCompletions(const CommandLine& commandLine, const QStringList& words)
{
    QStringList found = completions(commandLine.app(), words);
    const QString kind = found.isEmpty() ? QString() : found.constFirst();
    // Only the shell knows its files.
    if (kind.startsWith(QLatin1Char('@')) && kind != QLatin1String("@file")) {
        const QString typed =
            words.isEmpty() || words.constLast() == QLatin1String("=") ? QString() : words.constLast();
        found = completionValues(overridesIn(words), kind, typed);
    }
    for (const QString& word : qAsConst(found)) {
        std::puts(qUtf8Printable(word));
    }
}

ExitCode runCommand(const CommandLine& commandLine)
{
    Session session(readConfiguration(commandLine.overrides()),
                    Output(commandLine.form(), commandLine.columns()));
    const ExitCode code = commandLine.command()(session);
    session.finish();
    return code;
}

// For the build, which installs them.
ExitCode writeManual(const CommandLine& commandLine, const QStringList& words)
{
    const QDir folder(words.value(0));
    const QMap<QString, QByteArray> pages = manualPages(commandLine.app(), QStringLiteral(RKMON_VERSION));
    for (auto page = pages.cbegin(); page != pages.cend(); ++page) {
        QFile file(folder.filePath(page.key()));
        const bool isWritten = folder.mkpath(QStringLiteral(".")) && file.open(QIODevice::WriteOnly) &&
                               file.write(*page) == page->size() && file.flush();
        if (!isWritten) {
            throw Failure(FailureKind::Other,
                          QStringLiteral("cannot write %1: %2").arg(file.fileName(), file.errorString()));
        }
    }
    return ExitCode::Success;
}

ExitCode run(QStringList words)
{
    CommandLine commandLine;
    if (!words.isEmpty() && words.constFirst() == QLatin1String("__man")) {
        return writeManual(commandLine, words.mid(1));
    }
    if (!words.isEmpty() && words.constFirst() == QLatin1String("__complete")) {
        words.removeFirst();
        writeCompletions(commandLine, words);
        return ExitCode::Success;
    }
    if (const auto finished = commandLine.parse(words)) {
        return *finished;
    }
    return runCommand(commandLine);
}

ExitCode runGuarded(const QStringList& words)
{
    try {
        return run(words);
    } catch (const Failure& failure) {
        writeMessage(withAdvice(failure));
        return exitCodeOf(failure.kind());
    } catch (const std::exception& error) {
        writeMessage(QString::fromLocal8Bit(error.what()));
        return ExitCode::Failed;
    }
}

bool drawsChart(int count, char** words)
{
    for (int i = 1; i < count; ++i) {
        const std::string_view word(words[i]);
        if (word == "--plot" || word.substr(0, 7) == "--plot=") {
            return true;
        }
    }
    return false;
}

// Only a chart needs what draws, and it needs no screen.
std::unique_ptr<QCoreApplication> makeApplication(int& count, char** words)
{
    if (!drawsChart(count, words)) {
        return std::make_unique<QCoreApplication>(count, words);
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    // Where there is no session, Qt warns of what a chart does not need.
    QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));
    auto application = std::make_unique<QGuiApplication>(count, words);
    QLoggingCategory::setFilterRules(QString());
    return application;
}

} // namespace

int main(int argc, char** argv)
{
    std::signal(SIGINT, endInterrupted);
    terminal::prepareStreams();
    const std::unique_ptr<QCoreApplication> application = makeApplication(argc, argv);
#ifndef Q_OS_WIN
    // Arguments and file names are UTF-8 whatever the locale: under LANG=C a name would reach the service
    // mangled.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
#endif
    return static_cast<int>(runGuarded(QCoreApplication::arguments().mid(1)));
}
