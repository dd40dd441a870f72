#include "HelpCommand.h"

#include "CommandOptions.h"
#include "Failure.h"
#include "HelpTopics.h"
#include "Suggestion.h"

#include <CLI/CLI.hpp>

namespace {

QStringList topicNames()
{
    QStringList names;
    for (const HelpTopic& topic : helpTopics()) {
        names.append(topic.name);
    }
    return names;
}

const CLI::App* commandNamed(const CLI::App& parent, const QString& name)
{
    for (const CLI::App* command : parent.get_subcommands({})) {
        if (QString::fromStdString(command->get_name()) == name) {
            return command;
        }
    }
    return nullptr;
}

QStringList commandNames(const CLI::App& parent)
{
    QStringList names;
    for (const CLI::App* command : parent.get_subcommands({})) {
        names.append(QString::fromStdString(command->get_name()));
    }
    return names;
}

[[noreturn]] void refuse(const QString& word, const QStringList& candidates)
{
    const QString meant = closest(word, candidates);
    throw Failure(FailureKind::BadInput,
                  QStringLiteral("there is no help on \"%1\"; %2")
                      .arg(word, meant.isEmpty() ? QStringLiteral("rkmon help lists commands and topics")
                                                 : QStringLiteral("did you mean \"%1\"?").arg(meant)));
}

} // namespace

CLI::App& addHelpCommand(CLI::App& root, QStringList& words)
{
    CLI::App& app = *root.add_subcommand("help", "Show the help of a command, or about a topic");
    options::addTexts(app, "WORD", words,
                      "A command, or a topic: ags, configuration, exit-codes, files, import, output, times")
        ->allow_extra_args()
        ->type_name("TOPIC");
    options::setExamples(app, "  rkmon help times\n"
                              "  rkmon help monitoring list");
    return app;
}

QString helpOn(const CLI::App& root, const QStringList& words)
{
    if (words.size() == 1) {
        for (const HelpTopic& topic : helpTopics()) {
            if (topic.name == words.constFirst()) {
                return topic.title + QStringLiteral("\n\n") + topic.text;
            }
        }
    }
    const CLI::App* command = &root;
    QString name = QString::fromStdString(root.get_name());
    for (const QString& word : words) {
        const CLI::App* below = commandNamed(*command, word);
        if (below == nullptr) {
            refuse(word, commandNames(*command) + (words.size() == 1 ? topicNames() : QStringList()));
        }
        command = below;
        name += QLatin1Char(' ') + word;
    }
    // Not the command's own: that would give the help of the command "help", which was named.
    return QString::fromStdString(
        command->get_formatter()->make_help(command, name.toStdString(), CLI::AppFormatMode::Normal));
}
