#pragma once

#include <QString>
#include <QStringList>

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace help {

/// Cells of a line of help.
constexpr int lineWidth = 80;

/// Group of options that --help leaves to a topic, where they are more than a screen holds; the manual has
/// them.
constexpr const char* groupOfTopic = "topic";

/// `text` in lines of at most `width` cells, broken at blanks. A word that is longer stands alone.
QStringList wrapped(const QString& text, int width);

} // namespace help

/// How --help looks: of an option its value and whether it must be given, of a command what it does, in lines
/// that fit.
class HelpFormatter : public CLI::Formatter
{
public:
    HelpFormatter();

    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
    std::string make_group(std::string group, bool isPositional,
                           std::vector<const CLI::Option*> options) const override;
    std::string make_option_opts(const CLI::Option* option) const override;
    std::string make_option_desc(const CLI::Option* option) const override;
    std::string make_subcommand(const CLI::App* command) const override;
};
