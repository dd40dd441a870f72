#pragma once

#include <fcntl.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace monitorservice::test {

/// A program as a process of its own; killed with the object if it still runs then.
class ChildProcess
{
public:
    /// The first argument is the program's file. `beforeStart` is called in the new process, for what it is
    /// to inherit; only calls that are safe after fork().
    explicit ChildProcess(std::vector<std::string> arguments, void (*beforeStart)() = nullptr)
    {
        std::vector<char*> pointers;
        pointers.reserve(arguments.size() + 1);
        for (std::string& argument : arguments) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        const auto [outRead, outWrite] = makePipe();
        const auto [errorRead, errorWrite] = makePipe();
        m_process = fork();
        if (m_process == 0) {
            dup2(outWrite, STDOUT_FILENO);
            dup2(errorWrite, STDERR_FILENO);
            if (beforeStart != nullptr) {
                beforeStart();
            }
            execv(pointers.front(), pointers.data());
            _exit(127);
        }
        ::close(outWrite);
        ::close(errorWrite);
        m_out = outRead;
        m_error = errorRead;
    }
    ~ChildProcess()
    {
        if (m_process > 0) {
            signal(SIGKILL);
            wait();
        }
        ::close(m_out);
        ::close(m_error);
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// The next line of the standard output, without its end.
    std::string readLine() const
    {
        std::string line;
        for (char character = 0; ::read(m_out, &character, 1) == 1 && character != '\n';) {
            line += character;
        }
        return line;
    }

    /// Everything that is still to come, up to the process's end.
    std::string readOutput() const { return readAll(m_out); }
    std::string readErrors() const { return readAll(m_error); }

    pid_t id() const { return m_process; }
    void signal(int number) const { ::kill(m_process, number); }

    /// The exit code, or the number of the signal that ended the process as a negative number.
    int wait()
    {
        int status = 0;
        waitpid(m_process, &status, 0);
        m_process = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

private:
    // Other threads start processes too, which must not keep these ends open.
    static std::pair<int, int> makePipe()
    {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe to be had");
        }
        return {ends[0], ends[1]};
    }

    static std::string readAll(int pipe)
    {
        std::string text;
        std::array<char, 4096> bytes{};
        for (ssize_t size = 0; (size = ::read(pipe, bytes.data(), bytes.size())) > 0;) {
            text.append(bytes.data(), static_cast<std::size_t>(size));
        }
        return text;
    }

    pid_t m_process = -1;
    int m_out = -1;
    int m_error = -1;
};

} // namespace monitorservice::test
