#include "CommandOptions.h"

#include <algorithm>
#include <string>
#include <vector>

namespace options {

namespace {

std::string refuseEmpty(const std::string& text)
{
    return text.empty() ? "must not be empty" : "";
}

std::string refuseOtherThanIdentifier(const std::string& text)
{
    const auto isAllowed = [](char character) {
        return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
               (character >= 'A' && character <= 'Z') || character == '-' || character == '_';
    };
    const bool isIdentifier = !text.empty() && std::all_of(text.cbegin(), text.cend(), isAllowed);
    return isIdentifier ? "" : "\"" + text + "\" is not an identifier";
}

std::function<void(const std::vector<std::string>&)> intoList(QStringList& target)
{
    return [&target](const std::vector<std::string>& texts) {
        target.clear();
        for (const std::string& text : texts) {
            target.append(QString::fromStdString(text));
        }
    };
}

} // namespace

CLI::Option* addText(CLI::App& app, const char* names, QString& target, const char* description)
{
    return app
        .add_option_function<std::string>(
            names, [&target](const std::string& text) { target = QString::fromStdString(text); }, description)
        ->check(CLI::Validator(refuseEmpty, ""))
        ->type_name("TEXT");
}

CLI::Option* addText(CLI::App& app, const char* names, std::optional<QString>& target,
                     const char* description)
{
    return app
        .add_option_function<std::string>(
            names, [&target](const std::string& text) { target = QString::fromStdString(text); }, description)
        ->check(CLI::Validator(refuseEmpty, ""))
        ->type_name("TEXT");
}

CLI::Option* addIdentifier(CLI::App& app, const char* names, QString& target, const char* description)
{
    return addText(app, names, target, description)
        ->check(CLI::Validator(refuseOtherThanIdentifier, ""))
        ->type_name("ID");
}

CLI::Option* addIdentifiers(CLI::App& app, const char* names, QStringList& target, const char* description)
{
    return app.add_option_function<std::vector<std::string>>(names, intoList(target), description)
        ->check(CLI::Validator(refuseOtherThanIdentifier, ""))
        ->type_name("ID");
}

CLI::Option* addTexts(CLI::App& app, const char* names, QStringList& target, const char* description)
{
    return app.add_option_function<std::vector<std::string>>(names, intoList(target), description)
        ->allow_extra_args(false)
        ->check(CLI::Validator(refuseEmpty, ""))
        ->type_name("TEXT");
}

CLI::Option* addFiles(CLI::App& app, const char* name, QStringList& target, const char* description)
{
    return app.add_option_function<std::vector<std::string>>(name, intoList(target), description)
        ->check(CLI::Validator(refuseEmpty, ""))
        ->type_name("FILE");
}

CLI::Option* addNumber(CLI::App& app, const char* names, std::optional<double>& target,
                       const char* description)
{
    return app
        .add_option_function<double>(
            names, [&target](const double& number) { target = number; }, description)
        ->type_name("NUMBER");
}

CLI::App& addCommandGroup(CLI::App& root, const char* name, const char* description)
{
    CLI::App& group = *root.add_subcommand(name, description);
    group.fallthrough();
    group.require_subcommand(1);
    return group;
}

void setExamples(CLI::App& app, const char* examples)
{
    app.footer(std::string("Examples:\n") + examples);
}

} // namespace options
