#include "CommandLine.h"

#include "CommandOptions.h"
#include "Commands.h"
#include "HelpCommand.h"
#include "HelpFormatter.h"
#include "Messages.h"
#include "Suggestion.h"

#include <algorithm>
#include <cstdio>
#include <memory>

namespace {

// The innermost command that was named.
const CLI::App& namedCommand(const CLI::App& root)
{
    const CLI::App* app = &root;
    while (!app->get_subcommands().empty()) {
        app = app->get_subcommands().back();
    }
    return *app;
}

QString fullName(const CLI::App& app)
{
    const QString name = QString::fromStdString(app.get_name());
    return app.get_parent() == nullptr ? name : fullName(*app.get_parent()) + QLatin1Char(' ') + name;
}

QStringList candidatesFor(const QString& word, const CLI::App& app)
{
    QStringList candidates;
    if (!word.startsWith(QLatin1Char('-'))) {
        for (const CLI::App* sub : app.get_subcommands({})) {
            candidates.append(QString::fromStdString(sub->get_name()));
        }
        return candidates;
    }
    for (const CLI::App* level = &app; level != nullptr; level = level->get_parent()) {
        for (const CLI::Option* option : level->get_options()) {
            for (const std::string& name : option->get_lnames()) {
                candidates.append(QStringLiteral("--") + QString::fromStdString(name));
            }
        }
    }
    return candidates;
}

// Words that no command or option took, at whatever level they were left.
QStringList unknownWords(const CLI::App& app)
{
    QStringList words;
    for (const CLI::App* level = &app; level != nullptr; level = level->get_parent()) {
        for (const std::string& word : level->remaining()) {
            words.append(QString::fromStdString(word));
        }
    }
    return words;
}

QString describe(const CLI::ParseError& error, const CLI::App& app)
{
    const QStringList unknown = unknownWords(app);
    if (unknown.isEmpty()) {
        return QString::fromUtf8(error.what());
    }
    const bool isOption = unknown.constFirst().startsWith(QLatin1Char('-'));
    const QString word =
        isOption ? unknown.constFirst().section(QLatin1Char('='), 0, 0) : unknown.constFirst();
    const bool isCommand = !isOption && !app.get_subcommands({}).empty();
    const QString kind = isOption    ? QStringLiteral("unknown option")
                         : isCommand ? QStringLiteral("unknown command")
                                     : QStringLiteral("unexpected argument");
    const QString suggestion = closest(word, candidatesFor(word, app));
    const QString message = QStringLiteral("%1 \"%2\"").arg(kind, word);
    return suggestion.isEmpty() ? message
                                : message + QStringLiteral("; did you mean \"%1\"?").arg(suggestion);
}

ExitCode writeUsageError(const QString& message, const CLI::App& app)
{
    writeMessage(QStringLiteral("%1 (see %2 --help)").arg(message, fullName(app)));
    return ExitCode::Usage;
}

ExitCode writeHelp(const std::string& text)
{
    std::fputs(text.c_str(), stdout);
    return ExitCode::Success;
}

} // namespace

CommandLine::CommandLine()
    : m_app("Reads and writes engineering-monitoring data held by a monitoring service.", "rkmon")
{
    m_app.set_version_flag("--version", std::string("rkmon ") + RKMON_VERSION);
    // Names and patterns may begin with a slash.
    m_app.allow_windows_style_options(false);
    m_app.require_subcommand(1);
    m_app.formatter(std::make_shared<HelpFormatter>());
    addCommonOptions();
    addMonitoringCommands(m_app, m_command);
    addCategoryCommands(m_app, m_command);
    addSubCategoryCommands(m_app, m_command);
    addPointCommands(m_app, m_command);
    addSampleCommands(m_app, m_command);
    addStatisticsCommands(m_app, m_command);
    addGroupCommands(m_app, m_command);
    addDataCommands(m_app, m_command);
    addAlarmCommands(m_app, m_command);
    addChangeCommands(m_app, m_command);
    addPermissionCommands(m_app, m_command);
    addProjectCommands(m_app, m_command);
    addServiceCommands(m_app, m_command);
    m_help = &addHelpCommand(m_app, m_helpWords);
    options::setExamples(m_app,
                         "  rkmon monitoring list --name '^LS-' --json\n"
                         "  rkmon help configuration\n\n"
                         "Topics of help: ags, configuration, exit-codes, files, import, output, times.");
}

void CommandLine::addCommonOptions()
{
    options::addText(m_app, "--base-api", m_overrides.baseApi, "Address of the service (RKMON_BASE_API)")
        ->type_name("URL");
    options::addText(m_app, "--project", m_overrides.project,
                     "Identifier or name of the project (RKMON_PROJECT)")
        ->type_name("PROJECT");
    options::addText(m_app, "--token-file", m_overrides.tokenFile,
                     "File that holds the token (RKMON_TOKEN_FILE)")
        ->type_name("FILE");
    options::addText(m_app, "--config", m_overrides.configFile,
                     "Configuration file; usually rkmon/config.ini")
        ->type_name("FILE");
    options::addText(m_app, "--profile", m_overrides.profile,
                     "Profile of the configuration file (RKMON_PROFILE)")
        ->type_name("PROFILE");
    options::addText(m_app, "--deadline", m_overrides.deadline, "Longest time for one request")
        ->type_name("SECONDS");
    options::addText(m_app, "--ca-file", m_overrides.caFile, "Certificates to trust (RKMON_CA_FILE)")
        ->type_name("FILE");
    CLI::Option* json = m_app.add_flag("--json", m_isJson, "Write JSON");
    m_app.add_flag("--csv", m_isCsv, "Write comma-separated values (RFC 4180)")->excludes(json);
    options::addTexts(m_app, "--columns", m_columns, "Columns of a list, by the keys of its JSON")
        ->delimiter(',')
        ->type_name("KEY,...");
    for (CLI::Option* option : m_app.get_options({})) {
        option->group("Options of every command");
    }
    // Set once, as a rule: the topic "configuration" has them.
    for (const char* rare : {"--config", "--profile", "--deadline", "--ca-file"}) {
        m_app.get_option(rare)->group(help::groupOfTopic);
    }
}

OutputForm CommandLine::form() const
{
    if (m_isJson) {
        return OutputForm::Json;
    }
    return m_isCsv ? OutputForm::Csv : OutputForm::Table;
}

std::optional<ExitCode> CommandLine::parse(const QStringList& words)
{
    std::vector<std::string> arguments; // last one first
    for (const QString& word : words) {
        if (word.contains(QChar::ReplacementCharacter)) {
            return writeUsageError(QStringLiteral("argument \"%1\" is not UTF-8").arg(word), m_app);
        }
        arguments.insert(arguments.begin(), word.toStdString());
    }
    try {
        m_app.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        return writeHelp(m_app.help());
    } catch (const CLI::CallForVersion& version) {
        return writeHelp(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError& error) {
        const CLI::App& app = namedCommand(m_app);
        return writeUsageError(describe(error, app), app);
    }
    if (m_help->parsed()) {
        return writeHelp(helpOn(m_app, m_helpWords).toStdString());
    }
    return std::nullopt;
}
