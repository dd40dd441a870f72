#pragma once

#include <QString>
#include <QStringList>

#include <CLI/CLI.hpp>

#include <string>

namespace help {

/// Cells of a line of help.
constexpr int lineWidth = 80;

/// `text` in lines of at most `width` cells, broken at blanks. A word that is longer stands alone.
QStringList wrapped(const QString& text, int width);

} // namespace help

/// How --help looks: of an option its value and whether it must be given, of a command what it does, in lines
/// that fit.
class HelpFormatter : public CLI::Formatter
{
public:
    HelpFormatter();

    std::string make_option_opts(const CLI::Option* option) const override;
    std::string make_option_desc(const CLI::Option* option) const override;
    std::string make_subcommand(const CLI::App* command) const override;
};
