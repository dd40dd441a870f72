#pragma once

#include "Configuration.h"
#include "ExitCode.h"
#include "Output.h"
#include "Session.h"

#include <QStringList>

#include <CLI/CLI.hpp>

#include <optional>

/// The whole command line: the options of every command, and the commands.
class CommandLine
{
public:
    CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    /// Reads the words after the program's name. Returns the exit status when there is nothing more to do:
    /// help and version have then been written to standard output, what is wrong to standard error. Throws a
    /// Failure for help on what there is not.
    std::optional<ExitCode> parse(const QStringList& words);

    const ConfigurationOverrides& overrides() const { return m_overrides; }
    OutputForm form() const;
    /// Keys of the columns that lists are to show; empty: the usual ones.
    QStringList columns() const { return m_columns; }
    const Command& command() const { return m_command; }
    const CLI::App& app() const { return m_app; }

private:
    void addCommonOptions();

    CLI::App m_app;
    ConfigurationOverrides m_overrides;
    bool m_isJson = false;
    bool m_isCsv = false;
    QStringList m_columns;
    const CLI::App* m_help = nullptr; ///< the command of that name
    QStringList m_helpWords;
    Command m_command;
};
