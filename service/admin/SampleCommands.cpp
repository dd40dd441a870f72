#include "admin/AdminCommand.h"
#include "domain/PointLocation.h"
#include "domain/SampleText.h"
#include "inspection/SampleCheck.h"
#include "json/JsonText.h"

#include <iostream>

namespace monitorservice {

namespace {

std::string numberOf(std::uint64_t number, const std::string& things)
{
    return std::to_string(number) + ' ' + things + (number == 1 ? "" : "s");
}

void check(const AdminSettings& settings)
{
    const auto store = openExisting(settings);
    const CheckedSamples checked =
        checkSamples(*store, [](const std::string& flaw) { std::cout << flaw << '\n'; });
    const std::string read = numberOf(checked.points, "point") + ", " + numberOf(checked.samples, "sample") +
                             " on " + numberOf(checked.days, "day");
    if (checked.flaws > 0) {
        throw CommandError(numberOf(checked.flaws, "flaw") + " in " + read);
    }
    std::cout << read << ": nothing is wrong\n";
}

StoredPoint requirePoint(const Session& session, const std::string& id)
{
    const std::optional<StoredDocument> document = session.documents(DocumentKind::PointLocation).find(id);
    if (!document) {
        throw CommandError("there is no point location \"" + id + "\"");
    }
    const auto location = fromDocument<PointLocation>(document->text);
    std::optional<StoredPoint> point =
        session.measurements().findPoint(location.cell, location.subCategory, location.name, location.depth);
    if (!point) {
        throw CommandError("point location \"" + id + "\" is not found by its name and depth");
    }
    return *std::move(point);
}

void dump(const AdminSettings& settings, const std::string& id)
{
    const auto store = openExisting(settings);
    const auto session = store->read();
    std::string line;
    session->measurements().visitKept(requirePoint(*session, id).key, [&line](const KeptSample& kept) {
        line.clear();
        appendSample(line, kept.sample);
        line.pop_back();
        line += ",\"delivery\":" + std::to_string(kept.delivery) + "}\n";
        std::cout << line;
    });
}

} // namespace

void addSampleCommands(CLI::App& admin, const std::shared_ptr<AdminSettings>& settings)
{
    CLI::App* const samples =
        admin.add_subcommand("samples", "What is kept of the points")->require_subcommand(1);

    CLI::App* const checkAll = samples->add_subcommand(
        "check", "Read all samples and compare what is kept of them; a line for each flaw, exit code 1");
    checkAll->callback([settings] { check(*settings); });

    CLI::App* const dumpPoint = samples->add_subcommand(
        "dump", "Print the samples of a point with the numbers of their deliveries, one JSON object a line");
    const auto point = std::make_shared<std::string>();
    dumpPoint->add_option("id", *point, "The point location's identifier")->required()->type_name("ID");
    dumpPoint->callback([settings, point] { dump(*settings, *point); });
}

} // namespace monitorservice
