#include "admin/AdminCommand.h"
#include "admin/CommandAuthor.h"
#include "administration/TokenAdministration.h"
#include "domain/Document.h"
#include "json/JsonText.h"
#include "time/Timestamp.h"

#include <iostream>

namespace monitorservice {

namespace {

std::optional<Instant> expiry(const std::string& text, Instant now)
{
    if (text.empty()) {
        return std::nullopt;
    }
    const std::optional<Timestamp> time = parseTimestamp(text);
    if (!time) {
        throw CommandError("--expires \"" + text +
                           "\" is not a time with its zone; 2030-12-31T23:00:00Z would be one");
    }
    if (time->milliseconds <= now) {
        throw CommandError("--expires " + text + " is past");
    }
    return time->milliseconds;
}

void createToken(const AdminSettings& settings, TokenDescription description, const std::string& expires,
                 bool json)
{
    // Before a file comes to be.
    explained(nullptr, [&] { TokenAdministration::check(description); });
    const auto store = openOrCreate(settings);
    const NewToken made = administer(*store, [&](Session& session) {
        description.expiresAt = expiry(expires, session.now());
        return TokenAdministration(session, commandAuthor()).create(description);
    });
    if (json) {
        std::cout << JsonObjectWriter().text("_id", made.token.id).text("token", made.secret).finish()
                  << '\n';
        return;
    }
    std::cout << made.secret << '\n';
    std::cerr << "token " << made.token.id << " of " << made.token.owner << "; it is not shown again\n";
}

void revokeToken(const AdminSettings& settings, const std::string& id)
{
    const auto store = openExisting(settings);
    administer(*store,
               [&](Session& session) { return TokenAdministration(session, commandAuthor()).revoke(id); });
}

const char* stateOf(const Token& token, Instant now)
{
    if (token.revokedAt) {
        return "revoked";
    }
    return token.expiresAt && now >= *token.expiresAt ? "expired" : "valid";
}

void listTokens(const AdminSettings& settings, bool json)
{
    const auto store = openExisting(settings);
    const auto session = store->read();
    JsonArrayWriter array;
    std::vector<std::vector<std::string>> rows;
    for (const Token& token : session->tokens().list()) {
        array.json(std::string(openedDocument(toDocument(token))) + ",\"state\":\"" +
                   stateOf(token, session->now()) + "\"}");
        rows.push_back({token.id, stateOf(token, session->now()), isoText(token.createdAt),
                        token.expiresAt ? isoText(*token.expiresAt) : "never", token.owner, token.name});
    }
    if (json) {
        std::cout << array.finish() << '\n';
    } else {
        printTable({"ID", "STATE", "CREATED", "EXPIRES", "OWNER", "NAME"}, rows);
    }
}

} // namespace

void addTokenCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings)
{
    CLI::App* const command =
        admin.add_subcommand("token", "What clients are let in by")->require_subcommand(1);

    CLI::App* const create = command->add_subcommand(
        "create",
        "Make a token; prints it once to the standard output and its identifier to the standard error");
    const auto made = std::make_shared<TokenDescription>();
    const auto expires = std::make_shared<std::string>();
    create->add_option("--owner", made->owner, "Whose it is: the author of what is written with it")
        ->required();
    create->add_option("--name", made->name, "What it is for");
    create->add_option("--expires", *expires, "When it ends, such as 2030-12-31T23:00:00Z")
        ->type_name("TIME");
    const auto createJson = std::make_shared<bool>(false);
    create->add_flag("--json", *createJson, "Token and identifier as a JSON object, for scripts");
    create->callback(
        [settings, made, expires, createJson] { createToken(*settings, *made, *expires, *createJson); });

    CLI::App* const list = command->add_subcommand("list", "Print all tokens without their secrets");
    const auto json = std::make_shared<bool>(false);
    addJsonFlag(*list, *json);
    list->callback([settings, json] { listTokens(*settings, *json); });

    CLI::App* const revoke = command->add_subcommand("revoke", "Refuse a token from now on");
    const auto id = std::make_shared<std::string>();
    revoke->add_option("id", *id, "The token's identifier, not the token")->required()->type_name("ID");
    revoke->callback([settings, id] { revokeToken(*settings, *id); });
}

} // namespace monitorservice
