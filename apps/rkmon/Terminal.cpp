#include "Terminal.h"

#include "DisplayText.h"

#include <QByteArray>
#include <QSize>
#include <QtGlobal>

#include <algorithm>
#include <array>
#include <csignal>
#include <initializer_list>

#ifdef Q_OS_WIN
#include <io.h>
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace terminal {

namespace {

constexpr QSize usualSize(80, 24);

// Columns and lines, as far as there is a terminal that tells them.
QSize askedSize()
{
#ifdef Q_OS_WIN
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info)) {
        return {info.srWindow.Right - info.srWindow.Left + 1, info.srWindow.Bottom - info.srWindow.Top + 1};
    }
#else
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0) {
        return {size.ws_col, size.ws_row};
    }
#endif
    return {0, 0};
}

int firstPositive(std::initializer_list<int> numbers)
{
    const auto* const found =
        std::find_if(numbers.begin(), numbers.end(), [](int number) { return number > 0; });
    return found == numbers.end() ? 0 : *found;
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
    return firstPositive({qEnvironmentVariableIntValue("COLUMNS"), askedSize().width(), usualSize.width()});
}

int height()
{
    return firstPositive({qEnvironmentVariableIntValue("LINES"), askedSize().height(), usualSize.height()});
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
