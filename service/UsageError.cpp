#include "UsageError.h"

#include "admin/Suggestion.h"

#include <iostream>
#include <string>
#include <vector>

namespace monitorservice {

namespace {

// The innermost command that was named.
const CLI::App& namedCommand(const CLI::App& application)
{
    const std::vector<CLI::App*> named = application.get_subcommands();
    return named.empty() ? application : namedCommand(*named.back());
}

std::string fullName(const CLI::App& command)
{
    const CLI::App* const parent = command.get_parent();
    return parent == nullptr ? command.get_name() : fullName(*parent) + ' ' + command.get_name();
}

// The words that neither the command nor those above it know.
std::vector<std::string> unknownWords(const CLI::App& command)
{
    std::vector<std::string> words = command.remaining();
    if (words.empty() && command.get_parent() != nullptr) {
        return unknownWords(*command.get_parent());
    }
    return words;
}

std::vector<std::string> optionsOf(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const CLI::Option* const option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

std::vector<std::string> commandsOf(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const CLI::App* const one : command.get_subcommands({})) {
        names.push_back(one->get_name());
    }
    return names;
}

std::string describe(const CLI::ParseError& error, const CLI::App& command)
{
    const std::vector<std::string> unknown = unknownWords(command);
    if (unknown.empty()) {
        return error.what();
    }
    const std::string& word = unknown.front();
    if (word.size() > 1 && word.front() == '-') {
        const std::string name = word.substr(0, word.find('='));
        return "unknown option \"" + name + "\"" + didYouMean(name, optionsOf(command));
    }
    const std::vector<std::string> commands = commandsOf(command);
    return (commands.empty() ? "unexpected argument \"" : "unknown command \"") + word + "\"" +
           didYouMean(word, commands);
}

} // namespace

void reportUsageError(const CLI::ParseError& error, const CLI::App& application)
{
    const CLI::App& command = namedCommand(application);
    std::cerr << "monitor-service: " + describe(error, command) + " (see " + fullName(command) + " --help)\n";
}

} // namespace monitorservice
