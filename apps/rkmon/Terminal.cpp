#include "Terminal.h"

#include "DisplayText.h"

#include <QByteArray>
#include <QtGlobal>

#include <array>
#include <csignal>

#ifdef Q_OS_WIN
#include <io.h>
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace terminal {

namespace {

constexpr int usualWidth = 80;

int askedWidth()
{
#ifdef Q_OS_WIN
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info)) {
        return info.srWindow.Right - info.srWindow.Left + 1;
    }
#else
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0) {
        return size.ws_col;
    }
#endif
    return 0;
}

} // namespace

bool isTerminal(std::FILE* stream)
{
#ifdef Q_OS_WIN
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

int width()
{
    const int wanted = qEnvironmentVariableIntValue("COLUMNS");
    if (wanted > 0) {
        return wanted;
    }
    const int asked = askedWidth();
    return asked > 0 ? asked : usualWidth;
}

bool hasColour()
{
    return isTerminal(stdout) && qgetenv("NO_COLOR").isEmpty() && qgetenv("TERM") != "dumb";
}

bool canAsk()
{
    return isTerminal(stdin) && isTerminal(stderr);
}

bool confirm(const QString& question)
{
    const QByteArray text = display::escaped(question).toUtf8() + " [y/N] ";
    std::fputs(text.constData(), stderr);
    std::array<char, 16> answer{}; // longer ones are not yes
    if (std::fgets(answer.data(), static_cast<int>(answer.size()), stdin) == nullptr) {
        return false;
    }
    const QByteArray word = QByteArray(answer.data()).trimmed().toLower();
    return word == "y" || word == "yes";
}

void prepareStreams()
{
#ifdef Q_OS_WIN
    SetConsoleOutputCP(CP_UTF8);
#else
    std::signal(SIGPIPE, SIG_IGN);
#endif
}

} // namespace terminal
