#include "TwoServices.h"

#include "access/Secret.h"
#include "store/OpenStore.h"
#include "store/StoreContents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>

namespace monitorservice::test {

namespace {

std::string textOf(const HttpResponse& response)
{
    std::string text = std::to_string(response.status) + ' ' + response.contentType + ' ' + response.caller;
    for (const auto& [name, value] : response.headers) {
        text += '\n' + name + ": " + value;
    }
    return text + '\n' + response.body;
}

// Of a long answer the place where it differs.
std::string around(const std::string& text, std::size_t difference)
{
    constexpr std::size_t longest = 4000;
    constexpr std::size_t before = 500;
    if (text.size() <= longest) {
        return text;
    }
    const std::size_t begin = difference < before ? 0 : difference - before;
    return "[" + std::to_string(text.size()) + " bytes, from " + std::to_string(begin) + " on] " +
           text.substr(begin, 2 * before);
}

void compare(const std::string& first, const std::string& second, const Question& question)
{
    if (first == second) {
        return;
    }
    const auto [one, other] = std::mismatch(first.begin(), first.end(), second.begin(), second.end());
    const auto difference = static_cast<std::size_t>(one - first.begin());
    ADD_FAILURE() << question.text() << "\nis answered from the file\n"
                  << around(first, difference) << "\nand from the database\n"
                  << around(second, difference);
}

// What is told of alarms, in the order in which it is due.
void addNotices(Store& store, std::vector<std::string>& lines)
{
    const auto session = store.write(); // never committed
    for (const Channel channel : {Channel::Mail, Channel::Webhook}) {
        while (std::optional<Notice> notice =
                   session->outbox().nextDue(channel, std::numeric_limits<Instant>::max())) {
            lines.push_back("notice of " + notice->alarm + " to " + notice->recipient + " due " +
                            std::to_string(*notice->due) + ' ' + notice->told);
            notice->due.reset();
            session->outbox().update(*notice);
        }
    }
}

// What requests do not show, or only in part.
std::vector<std::string> allOf(Store& store)
{
    std::vector<std::string> lines = contentsOf(store);
    addNotices(store, lines);
    const auto session = store.read();
    for (const Token& token : session->tokens().list()) {
        lines.push_back("token " + token.id + ' ' + token.owner);
    }
    for (const Project& project : session->projects().list()) {
        for (const std::string& alarm : session->excesses().openAlarms(project.id)) {
            lines.push_back("open " + alarm);
        }
        for (const HeldPoint& point : pointsOf(*session, project.id)) {
            for (const std::int64_t delivery : session->measurements().deliveriesOf(point.key)) {
                lines.push_back("delivery of " + point.id + ' ' + std::to_string(delivery));
                session->measurements().visitSamplesOf(point.key, delivery, [&](const Sample& sample) {
                    lines.push_back("  brought " + std::to_string(sample.time) + ' ' +
                                    std::to_string(sample.count));
                });
            }
        }
    }
    return lines;
}

} // namespace

TwoServices::Service::Service(const std::string& location, const StoreOptions& options)
    : store(openStore(location, options)), api(*store, std::make_shared<HttpCounters>())
{
}

HttpResponse TwoServices::Service::answer(const Question& question) const
{
    HttpRequest request;
    request.method = question.method;
    request.path = {"monitor-service"};
    request.path.insert(request.path.end(), question.path.begin(), question.path.end());
    request.parameters = question.parameters;
    if (!question.token.empty()) {
        request.authorization = "Bearer rkm_" + question.token;
    }
    request.body = question.body;
    return api.answer(request);
}

TwoServices::TwoServices()
    : m_first(firstFile(), options()), m_second(std::make_unique<Service>(m_database.url(), options()))
{
}

StoreOptions TwoServices::options() const
{
    StoreOptions options;
    options.createIfMissing = true;
    options.patience = std::chrono::minutes(1);
    options.clock = [this] {
        return m_now;
    };
    options.channels = {Channel::Mail, Channel::Webhook};
    return options;
}

HttpResponse TwoServices::ask(const Question& question)
{
    HttpResponse first = m_first.answer(question);
    const HttpResponse second = m_second->answer(question);
    compare(textOf(first), textOf(second), question);
    return first;
}

void TwoServices::write(const std::function<void(Session& session)>& action)
{
    for (const Service* const service : std::array<const Service*, 2>{&m_first, m_second.get()}) {
        const auto session = service->store->write();
        action(*session);
        session->commit();
    }
}

void TwoServices::addToken(const std::string& name)
{
    write([&name](Session& session) {
        session.tokens().insert({name, name, "", session.now(), std::nullopt, std::nullopt},
                                sha256("rkm_" + name));
    });
}

void TwoServices::grant(const std::string& token, const std::optional<std::string>& project,
                        const std::optional<std::string>& category, Rights rights)
{
    write([&](Session& session) {
        session.grants().add({session.newIdentifier(), token, project, category, rights, session.now()});
    });
}

void TwoServices::compareContents()
{
    const std::vector<std::string> first = allOf(*m_first.store);
    const std::vector<std::string> second = allOf(*m_second->store);
    const auto [one, other] = std::mismatch(first.begin(), first.end(), second.begin(), second.end());
    EXPECT_EQ(one == first.end() ? "nothing more" : *one, other == second.end() ? "nothing more" : *other)
        << "the first difference between what the stores hold";
}

void TwoServices::moveSecond(const std::string& location)
{
    m_second.reset();
    m_second = std::make_unique<Service>(location, options());
}

} // namespace monitorservice::test
