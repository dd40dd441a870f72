#include "CommandOptions.h"

#include "HelpFormatter.h"

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

template <typename Target>
CLI::Option* addTextInto(CLI::App& app, const char* names, Target& target, const char* description)
{
    return app
        .add_option_function<std::string>(
            names, [&target](const std::string& text) { target = QString::fromStdString(text); }, description)
        ->check(CLI::Validator(refuseEmpty, ""))
        ->type_name("TEXT");
}

CLI::Option* addTextsInto(CLI::App& app, const char* names, QStringList& target, const char* description,
                          const char* typeName)
{
    const auto assign = [&target](const std::vector<std::string>& texts) {
        target.clear();
        for (const std::string& text : texts) {
            target.append(QString::fromStdString(text));
        }
    };
    return app.add_option_function<std::vector<std::string>>(names, assign, description)
        ->check(CLI::Validator(refuseEmpty, ""))
        ->type_name(typeName);
}

} // namespace

CLI::Option* addText(CLI::App& app, const char* names, QString& target, const char* description)
{
    return addTextInto(app, names, target, description);
}

CLI::Option* addText(CLI::App& app, const char* names, std::optional<QString>& target,
                     const char* description)
{
    return addTextInto(app, names, target, description);
}

CLI::Option* addCell(CLI::App& app, QString& cell)
{
    return addText(app, "--cell", cell, "The monitoring, by identifier or exact name")
        ->type_name("MONITORING");
}

CLI::Option* addMonitoring(CLI::App& app, QString& monitoring)
{
    return addText(app, "MONITORING", monitoring, "Identifier or exact name")
        ->required()
        ->type_name("MONITORING");
}

CLI::Option* addSubCategory(CLI::App& app, QString& subCategory, const char* description)
{
    return addText(app, "--sub-category", subCategory, description)->type_name("SUB-CATEGORY");
}

CLI::Option* addIdentifier(CLI::App& app, const char* names, QString& target, const char* description)
{
    return addText(app, names, target, description)
        ->check(CLI::Validator(refuseOtherThanIdentifier, ""))
        ->type_name("ID");
}

CLI::Option* addTexts(CLI::App& app, const char* names, QStringList& target, const char* description)
{
    return addTextsInto(app, names, target, description, "TEXT")->allow_extra_args(false);
}

CLI::Option* addFiles(CLI::App& app, const char* name, QStringList& target, const char* description)
{
    return addTextsInto(app, name, target, description, "FILE");
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

namespace {

// An example that is too wide, continued on another line as a shell understands it.
QString folded(const QString& example)
{
    const QString continuation = QStringLiteral(" \\");
    const QString indent(6, QLatin1Char(' '));
    const int widest = help::lineWidth - continuation.size();
    const int option = example.lastIndexOf(QStringLiteral(" --"), widest);
    const int place = option > indent.size() ? option : example.lastIndexOf(QLatin1Char(' '), widest);
    if (example.size() <= help::lineWidth || place <= indent.size()) {
        return example;
    }
    return example.left(place) + continuation + QLatin1Char('\n') + folded(indent + example.mid(place + 1));
}

} // namespace

void setExamples(CLI::App& app, const char* examples)
{
    QString text = QStringLiteral("Examples:");
    const QStringList lines = QString::fromUtf8(examples).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        text += QLatin1Char('\n') + folded(line);
    }
    app.footer(text.toStdString());
}

} // namespace options
