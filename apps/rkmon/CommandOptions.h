#pragma once

#include "Session.h"

#include <QString>

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <optional>

/// Options of a subcommand that has none of its own.
struct NoOptions
{
};

/// The pieces that the subcommands' options are made of. Option values are UTF-8.
namespace options {

/// A text; an empty one is refused, since it would silently mean "not given".
CLI::Option* addText(CLI::App& app, const char* names, QString& target, const char* description);
CLI::Option* addText(CLI::App& app, const char* names, std::optional<QString>& target,
                     const char* description);

/// An identifier as the service gives it: letters, digits, "-" and "_". It becomes part of a request's path,
/// where other characters could name another resource.
CLI::Option* addIdentifier(CLI::App& app, const char* names, QString& target, const char* description);

/// --cell: a monitoring, by identifier or exact name.
CLI::Option* addCell(CLI::App& app, QString& cell);

/// MONITORING, required: the same where it is what the command is about.
CLI::Option* addMonitoring(CLI::App& app, QString& monitoring);

/// --sub-category, by identifier, name or alias.
CLI::Option* addSubCategory(CLI::App& app, QString& subCategory, const char* description);

/// Texts, one for each time that the option is given.
CLI::Option* addTexts(CLI::App& app, const char* names, QStringList& target, const char* description);

/// File names, all in one place of the command line.
CLI::Option* addFiles(CLI::App& app, const char* name, QStringList& target, const char* description);

CLI::Option* addNumber(CLI::App& app, const char* names, std::optional<double>& target,
                       const char* description);

/// A subcommand that reads its options into a record of type `Options` and then runs `run`.
template <typename Options>
struct Subcommand
{
    CLI::App& app;
    std::shared_ptr<Options> options;
};

template <typename Options>
Subcommand<Options> addSubcommand(CLI::App& parent, const char* name, const char* description,
                                  Command& chosen, ExitCode (*run)(Session&, const Options&))
{
    CLI::App& app = *parent.add_subcommand(name, description);
    app.fallthrough();
    auto values = std::make_shared<Options>();
    app.callback([values, &chosen, run] {
        chosen = [values, run](Session& session) {
            return run(session, *values);
        };
    });
    return {app, values};
}

/// A subcommand that only holds others.
CLI::App& addCommandGroup(CLI::App& root, const char* name, const char* description);

/// What "--help" shows below the options.
void setExamples(CLI::App& app, const char* examples);

} // namespace options
