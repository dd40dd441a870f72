#include "Completion.h"

#include "HelpTopics.h"

#include <QMap>

#include <CLI/CLI.hpp>

namespace {

// Where the words typed so far have led.
struct Position
{
    const CLI::App* app;
    // The option whose value comes next.
    const CLI::Option* awaiting = nullptr;
};

const CLI::Option* findOption(const CLI::App& app, const QString& word)
{
    const std::string name = word.toStdString();
    for (const CLI::App* level = &app; level != nullptr; level = level->get_parent()) {
        for (const CLI::Option* option : level->get_options()) {
            if (!option->get_positional() && option->check_name(name)) {
                return option;
            }
        }
    }
    return nullptr;
}

const CLI::App* findCommand(const CLI::App& app, const QString& word)
{
    for (const CLI::App* sub : app.get_subcommands({})) {
        if (QString::fromStdString(sub->get_name()) == word) {
            return sub;
        }
    }
    return nullptr;
}

Position follow(const CLI::App& root, const QStringList& words)
{
    Position position{&root};
    for (const QString& word : words) {
        if (position.awaiting != nullptr) {
            position.awaiting = nullptr;
        } else if (word.startsWith(QLatin1Char('-'))) {
            const CLI::Option* option = findOption(*position.app, word);
            if (option != nullptr && option->get_items_expected_max() > 0) {
                position.awaiting = option;
            }
        } else if (const CLI::App* command = findCommand(*position.app, word)) {
            position.app = command;
        }
    }
    return position;
}

QStringList kindOf(const CLI::Option& option)
{
    static const QString subCategoryType = QStringLiteral("SUB-CATEGORY");
    static const QMap<QString, QString> kinds{{QStringLiteral("FILE"), QStringLiteral("@file")},
                                              {QStringLiteral("CATEGORY"), QStringLiteral("@category")},
                                              {QStringLiteral("GROUP"), QStringLiteral("@group")},
                                              {QStringLiteral("MONITORING"), QStringLiteral("@monitoring")},
                                              {QStringLiteral("PROFILE"), QStringLiteral("@profile")},
                                              {QStringLiteral("PROJECT"), QStringLiteral("@project")},
                                              {subCategoryType, QStringLiteral("@sub-category")}};
    const bool isSubCategory = option.check_lname("sub-category");
    const QString type = isSubCategory ? subCategoryType : QString::fromStdString(option.get_type_name());
    if (kinds.contains(type)) {
        return {kinds[type]};
    }
    return {};
}

QStringList optionNames(const CLI::App& app)
{
    QStringList names;
    for (const CLI::App* level = &app; level != nullptr; level = level->get_parent()) {
        for (const CLI::Option* option : level->get_options()) {
            for (const std::string& name : option->get_lnames()) {
                names.append(QStringLiteral("--") + QString::fromStdString(name));
            }
        }
    }
    names.removeDuplicates();
    return names;
}

// What "rkmon help" knows, on which `app` is the command of that name.
QStringList subjectsOfHelp(const CLI::App& app)
{
    QStringList subjects;
    for (const CLI::App* command : app.get_parent()->get_subcommands({})) {
        subjects.append(QString::fromStdString(command->get_name()));
    }
    for (const HelpTopic& topic : helpTopics()) {
        subjects.append(topic.name);
    }
    return subjects;
}

QStringList argumentsOf(const CLI::App& app)
{
    QStringList names;
    for (const CLI::App* sub : app.get_subcommands({})) {
        names.append(QString::fromStdString(sub->get_name()));
    }
    if (!names.isEmpty()) {
        return names;
    }
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_positional()) {
            return option->get_type_name() == "TOPIC" ? subjectsOfHelp(app) : kindOf(*option);
        }
    }
    return {};
}

} // namespace

QStringList completions(const CLI::App& root, const QStringList& words)
{
    QStringList before = words;
    QString typed = before.isEmpty() ? QString() : before.takeLast();
    // The shell splits --option=value into three words.
    if (typed == QLatin1String("=")) {
        typed.clear();
    }
    before.removeAll(QStringLiteral("="));

    const Position position = follow(root, before);
    if (position.awaiting != nullptr) {
        return kindOf(*position.awaiting);
    }
    const QStringList candidates =
        typed.startsWith(QLatin1Char('-')) ? optionNames(*position.app) : argumentsOf(*position.app);
    QStringList fitting;
    for (const QString& candidate : candidates) {
        if (candidate.startsWith(typed) || candidate.startsWith(QLatin1Char('@'))) {
            fitting.append(candidate);
        }
    }
    return fitting;
}
