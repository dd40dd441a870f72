#include "HelpFormatter.h"

#include "DisplayText.h"

#include <sstream>
#include <utility>

namespace {

// Cells that the names of options and commands are given.
constexpr int titleColumn = 24;

// Its lines, which CLI11 indents.
std::string described(const std::string& description)
{
    return help::wrapped(QString::fromStdString(description), help::lineWidth - titleColumn)
        .join(QLatin1Char('\n'))
        .toStdString();
}

} // namespace

QStringList help::wrapped(const QString& text, int width)
{
    QStringList lines;
    QString line;
    const QStringList words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString& word : words) {
        const QString longer = line.isEmpty() ? word : line + QLatin1Char(' ') + word;
        if (!line.isEmpty() && display::width(longer) > width) {
            lines.append(line);
            line = word;
        } else {
            line = longer;
        }
    }
    return line.isEmpty() ? lines : lines + QStringList{line};
}

HelpFormatter::HelpFormatter()
{
    column_width(titleColumn);
}

std::string HelpFormatter::make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const
{
    // A group that is left out leaves its blank line.
    return CLI::detail::find_and_replace(CLI::Formatter::make_help(app, std::move(name), mode), "\n\n\n",
                                         "\n\n");
}

std::string HelpFormatter::make_group(std::string group, bool isPositional,
                                      std::vector<const CLI::Option*> options) const
{
    return group == help::groupOfTopic ? std::string()
                                       : CLI::Formatter::make_group(group, isPositional, std::move(options));
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const
{
    std::string text;
    if (option->get_type_size() != 0 && !option->get_positional()) {
        text += " " + option->get_type_name();
    }
    if (option->get_required()) {
        text += " (required)";
    }
    return text;
}

std::string HelpFormatter::make_option_desc(const CLI::Option* option) const
{
    return described(option->get_description());
}

std::string HelpFormatter::make_subcommand(const CLI::App* command) const
{
    std::stringstream text;
    CLI::detail::format_help(text, command->get_display_name(true), described(command->get_description()),
                             get_column_width());
    return text.str();
}
