#include "CommandLine.h"
#include "Completion.h"
#include "Configuration.h"
#include "Failure.h"
#include "Messages.h"
#include "Session.h"
#include "Terminal.h"

#include <QCoreApplication>
#include <QTextCodec>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace {

/// Ends at once: results are written in one piece at the end of a command, so nothing is left half-written.
void endInterrupted(int)
{
    std::_Exit(static_cast<int>(ExitCode::Interrupted));
}

void writeCompletions(const CommandLine& commandLine, const QStringList& words)
{
    const QStringList found = completions(commandLine.app(), words);
    for (const QString& word : found)
        std::puts(qUtf8Printable(word));
}

ExitCode runCommand(const CommandLine& commandLine)
{
    Session session(readConfiguration(commandLine.flags()), commandLine.form());
    const ExitCode code = commandLine.command()(session);
    session.finish();
    return code;
}

ExitCode run(QStringList words)
{
    CommandLine commandLine;
    if (!words.isEmpty() && words.constFirst() == QLatin1String("__complete")) {
        words.removeFirst();
        writeCompletions(commandLine, words);
        return ExitCode::Success;
    }
    if (const auto finished = commandLine.parse(words))
        return *finished;
    return runCommand(commandLine);
}

ExitCode runGuarded(const QStringList& words)
{
    try {
        return run(words);
    } catch (const Failure& failure) {
        writeMessage(failure.message());
        return failure.code();
    } catch (const std::exception& error) {
        writeMessage(QString::fromLocal8Bit(error.what()));
        return ExitCode::Failed;
    }
}

} // namespace

int main(int argc, char** argv)
{
    std::signal(SIGINT, endInterrupted);
    terminal::prepareStreams();
    QCoreApplication application(argc, argv);
#ifndef Q_OS_WIN
    // Arguments and file names are UTF-8 whatever the locale: under LANG=C a name would reach the service
    // mangled.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
#endif
    return static_cast<int>(runGuarded(QCoreApplication::arguments().mid(1)));
}
