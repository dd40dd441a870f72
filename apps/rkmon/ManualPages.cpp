#include "ManualPages.h"

#include "HelpTopics.h"

#include <QStringList>

#include <CLI/CLI.hpp>

namespace {

// `text` as roff shows it.
QString roff(const QString& text)
{
    QString result = text;
    result.replace(QLatin1Char('\\'), QLatin1String("\\e"));
    result.replace(QLatin1Char('-'), QLatin1String("\\-"));
    result.replace(QLatin1Char('\''), QLatin1String("\\(aq"));
    const bool isRequest = result.startsWith(QLatin1Char('.'));
    return isRequest ? QStringLiteral("\\&") + result : result;
}

QString roff(const std::string& text)
{
    return roff(QString::fromStdString(text));
}

// Lines as they are.
QString verbatim(const QStringList& lines)
{
    QString text = QStringLiteral(".nf\n");
    for (const QString& line : lines) {
        text += roff(line) + QLatin1Char('\n');
    }
    return text + QStringLiteral(".fi\n");
}

QString heading(const QString& name, const QString& version)
{
    return QStringLiteral(".TH \"%1\" 1 \"\" \"rkmon %2\" \"rkmon manual\"\n")
        .arg(roff(name).toUpper(), version);
}

QString optionEntry(const CLI::Option& option)
{
    QString title = QString::fromStdString(option.get_name(option.get_positional(), true));
    title.replace(QLatin1Char(','), QLatin1String(", "));
    QString entry = QStringLiteral(".TP\n\\fB%1\\fR").arg(roff(title));
    if (option.get_type_size() != 0 && !option.get_positional()) {
        entry += QStringLiteral(" \\fI%1\\fR").arg(roff(option.get_type_name()));
    }
    if (option.get_required()) {
        entry += QStringLiteral(" (required)");
    }
    return entry + QStringLiteral("\n%1\n").arg(roff(option.get_description()));
}

QString optionEntries(const CLI::App& app)
{
    QString entries;
    for (const CLI::Option* option : app.get_options()) {
        entries += optionEntry(*option);
    }
    return entries;
}

// What stands below the options of --help: "Examples:" and lines.
QString footer(const CLI::App& app)
{
    const QStringList lines = QString::fromStdString(app.get_footer()).split(QLatin1Char('\n'));
    return lines.size() < 2 ? QString() : verbatim(lines.mid(1));
}

QStringList commandsBelow(const CLI::App& app)
{
    QStringList entries;
    for (const CLI::App* command : app.get_subcommands({})) {
        entries.append(QStringLiteral(".TP\n\\fB%1\\fR\n%2\n")
                           .arg(roff(command->get_name()), roff(command->get_description())));
    }
    return entries;
}

QString commandPage(const CLI::App& app, const QString& version)
{
    const QString command = QString::fromStdString(app.get_name());
    QString page = heading(QStringLiteral("rkmon-") + command, version);
    page += QStringLiteral(".SH NAME\nrkmon\\-%1 \\- %2\n").arg(roff(command), roff(app.get_description()));
    page += QStringLiteral(".SH SYNOPSIS\n\\fBrkmon %1\\fR ...\n").arg(roff(command));
    page += QStringLiteral(".SH OPTIONS\n") + optionEntries(app);
    for (const CLI::App* below : app.get_subcommands({})) {
        page += QStringLiteral(".SH \"RKMON %1 %2\"\n%3\n")
                    .arg(roff(command).toUpper(), roff(below->get_name()).toUpper(),
                         roff(below->get_description()));
        page += optionEntries(*below) + QStringLiteral(".PP\nExamples:\n.PP\n") + footer(*below);
    }
    page += QStringLiteral(".SH EXAMPLES\n") + footer(app);
    return page + QStringLiteral(".SH SEE ALSO\n\\fBrkmon\\fR(1)\n");
}

QString mainPage(const CLI::App& root, const QString& version)
{
    QString page = heading(QStringLiteral("rkmon"), version);
    page += QStringLiteral(".SH NAME\nrkmon \\- %1\n").arg(roff(root.get_description()));
    page += QStringLiteral(".SH SYNOPSIS\n\\fBrkmon\\fR [\\fIOPTIONS\\fR] \\fICOMMAND\\fR ...\n");
    page += QStringLiteral(".SH OPTIONS\nThese go with every command.\n") + optionEntries(root);
    page += QStringLiteral(".SH COMMANDS\nEach has a page of its own: \\fBrkmon\\-monitoring\\fR(1).\n") +
            commandsBelow(root).join(QString());
    for (const HelpTopic& topic : helpTopics()) {
        page += QStringLiteral(".SH \"%1\"\n").arg(roff(topic.title.toUpper())) +
                verbatim(topic.text.trimmed().split(QLatin1Char('\n')));
    }
    return page + QStringLiteral(".SH EXAMPLES\n") + footer(root);
}

} // namespace

QMap<QString, QByteArray> manualPages(const CLI::App& root, const QString& version)
{
    QMap<QString, QByteArray> pages{{QStringLiteral("rkmon.1"), mainPage(root, version).toUtf8()}};
    for (const CLI::App* command : root.get_subcommands({})) {
        const QString name = QStringLiteral("rkmon-%1.1").arg(QString::fromStdString(command->get_name()));
        pages.insert(name, commandPage(*command, version).toUtf8());
    }
    return pages;
}
