#include "FaultTest.h"

#include "../../support/LoopLateness.h"
#include "../../support/Text.h"

#include <NetworkEventLoop.h>
#include <QElapsedTimer>
#include <RKBaseApi.h>
#include <RKSoftCache.h>

#include <array>
#include <cstring>
#include <iostream>

namespace {

using namespace std::chrono_literals;

// What the library may take beyond its deadline to give up and return.
constexpr qint64 grace = 200;

// The caches as fillCaches leaves them. Never destroyed, as the destructor is private; reachable for the leak
// check.
RKMonitoringData& filledCaches()
{
    static RKMonitoringData* const filled = [] {
        fillCaches(*RKMonitoringData::instance());
        return new RKMonitoringData(*RKMonitoringData::instance());
    }();
    return *filled;
}

// Where the six caches' data lie. Qt's containers share their data until one of the copies is changed, so the
// caches of two objects lie at the same places as long as nothing has touched them.
using Places = std::array<void*, 6>;

Places placesOf(const RKMonitoringData& data)
{
    static_assert(sizeof(RKMonitoringData) == sizeof(Places), "the six caches and nothing else");
    Places places;
    std::memcpy(places.data(), static_cast<const void*>(&data), sizeof places);
    return places;
}

} // namespace

FaultTest::FaultTest()
{
    GetSoftCache()->setProjectId("p7"_q);
    manager.setProxy("direct"_q);
    m_data = filledCaches();
    manager.setMaximumReplySize(largestReply);
}

FaultTest::~FaultTest()
{
    manager.setProxy({});
    manager.setCaFile({});
    manager.setBearerToken({});
    manager.setDeadline(30s);
    manager.setMaximumReplySize(Q_INT64_C(256) * 1024 * 1024);
}

void FaultTest::report(int faults) const
{
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    std::cout << test->test_suite_name() << '.' << test->name() << ": " << faults << " faults, " << m_runs
              << " runs, " << m_failures << " failures\n";
    RecordProperty("faults", faults);
    RecordProperty("runs", m_runs);
    RecordProperty("failures", m_failures);
}

void FaultTest::play(const Fault& fault)
{
    for (const WireOperation& operation : wireOperations()) {
        for (const bool isKept : {false, true}) {
            play(fault, operation, isKept, 200, *makeServer());
        }
    }
}

void FaultTest::play(const Fault& fault, const WireOperation& operation, bool onKeptConnection,
                     int answerSize, ScriptServer& server)
{
    RKBaseApi::GetInstance().setBaseApi(server.baseAddress());
    const auto error = operation.isRead() ? fault.errorForRead.value_or(fault.error) : fault.error;
    Run run = {fault, operation, onKeptConnection, operation.answer(answerSize), error, server, {}};
    m_data = filledCaches();
    manager.setDeadline(30s);
    if (run.isKept) {
        keepConnection(run);
    }
    // A DELETE has a connection of its own.
    if (!run.isKept || run.operation.method == "DELETE") {
        run.connection = server.connectionCount() + 1;
    }
    arrange(run);
    runOperation(run);
    checkNextOperation(run);

    ++m_runs;
    if (run.deviations.isEmpty()) {
        return;
    }
    ++m_failures;
    ADD_FAILURE() << fault.name << ", " << operation.name << ", " << (run.isKept ? "kept" : "fresh")
                  << " connection: " << run.deviations.join("; "_q).toStdString();
}

// One exchange before the fault, whose connection stays.
void FaultTest::keepConnection(Run& run)
{
    run.server.answerJson(200, "{}");
    NetworkEventLoop wait(manager.get(run.server.baseAddress()), nullptr);
    wait.exec(QEventLoop::AllEvents);
    if (!wait.isSuccessful()) {
        run.deviations.append("no connection could be kept"_q);
    } else {
        run.connection = run.server.requests().last().connection;
    }
}

void FaultTest::arrange(Run& run) const
{
    using Arrival = ScriptServer::Arrival;
    const Arrival arrival = run.fault.arrival;
    // A connection that is kept would never see how the next one is received.
    if (arrival != Arrival::Served && arrival != Arrival::ResetAtFirstByte) {
        run.server.hangUp();
    }
    run.server.setArrival(arrival);
    spoil(run.server);
    if (!run.fault.steps) {
        return;
    }
    const QList<ScriptServer::Step> steps = run.fault.steps(run.answer);
    run.server.answerRaw(steps);
    if (run.fault.endsInSilence && run.isKept && run.operation.isRead()) {
        run.server.answerRaw(steps);
    }
}

WireOutcome FaultTest::outcomeOf(const Run& run)
{
    WireOutcome outcome;
    outcome.error = run.error;
    // What fails although the status is good has no body that anybody may read.
    if (run.error != run.fault.error) {
        return outcome;
    }
    switch (run.fault.readable) {
    case Fault::Readable::Nothing:
        break;
    case Fault::Readable::Message:
        outcome.readable = serviceMessage;
        break;
    case Fault::Readable::Answer:
        outcome.readable = run.answer;
        break;
    case Fault::Readable::Other:
        outcome.readable = run.fault.other;
        break;
    }
    return outcome;
}

void FaultTest::runOperation(Run& run)
{
    manager.setDeadline(std::chrono::milliseconds(run.fault.deadline));
    m_exchanges.clear();
    const int requestsBefore = run.server.requestCount();
    LoopLateness lateness;
    QElapsedTimer watch;
    watch.start();
    run.deviations += run.operation.deviations(m_data, outcomeOf(run));
    const qint64 milliseconds = watch.elapsed();
    checkExchange(run, milliseconds, run.fault.deadline + grace + lateness.milliseconds());
    checkRequests(run, requestsBefore);
    if (run.error != QNetworkReply::NoError) {
        checkCaches(run);
    }
    m_exchanges.clear();
}

void FaultTest::checkExchange(Run& run, qint64 milliseconds, qint64 bound) const
{
    if (milliseconds > bound) {
        run.deviations.append("it took %1 ms, more than %2"_q.arg(milliseconds).arg(bound));
    }
    if (m_exchanges.size() != 1) {
        run.deviations.append("%1 exchanges were observed"_q.arg(m_exchanges.size()));
        return;
    }
    const NetworkExchange& exchange = m_exchanges.first();
    if (exchange.error != run.error && exchange.error != run.fault.otherError) {
        run.deviations.append(
            "the error is %1 (%2), not %3"_q.arg(exchange.error).arg(exchange.errorText).arg(run.error));
    }
    if (exchange.errorText.isEmpty() != (run.error == QNetworkReply::NoError)) {
        run.deviations.append("the error's text is \"%1\""_q.arg(exchange.errorText));
    }
}

// A write is asked for once at most, a read once more when a kept connection ended in silence.
void FaultTest::checkRequests(Run& run, int requestsBefore) const
{
    const bool isRepeated = run.fault.endsInSilence && run.isKept && run.operation.isRead();
    const int expected = run.fault.steps ? (isRepeated ? 2 : 1) : 0;
    const QList<ScriptServer::Request> requests = run.server.requests().mid(requestsBefore);
    if (requests.size() != expected) {
        run.deviations.append("%1 requests, not %2"_q.arg(requests.size()).arg(expected));
    }
    for (const ScriptServer::Request& request : requests) {
        if (request.method != run.operation.method) {
            run.deviations.append("a request is a "_q + QString::fromLatin1(request.method));
        }
    }
    if (!requests.isEmpty() && requests.first().connection != run.connection) {
        run.deviations.append("the request came on another connection"_q);
    }
}

void FaultTest::checkCaches(Run& run) const
{
    const Places is = placesOf(m_data);
    const Places should = placesOf(filledCaches());
    for (size_t cache = run.operation.looksUpItsRecord ? 1 : 0; cache < is.size(); ++cache) {
        if (is[cache] != should[cache]) {
            run.deviations.append("cache %1 was touched"_q.arg(cache));
        }
    }
    const int requests = run.server.requestCount();
    run.deviations += cacheDeviations(m_data);
    if (run.server.requestCount() != requests) {
        run.deviations.append("a cache had lost a record"_q);
    }
}

void FaultTest::checkNextOperation(Run& run)
{
    run.server.setArrival(ScriptServer::Arrival::Served);
    repair(run.server);
    RKBaseApi::GetInstance().setBaseApi(run.server.baseAddress());
    if (!ScriptServer::runEventsUntil([&] { return run.server.isUsedUp(); })) {
        run.deviations.append("%1 steps of the fault were not played"_q.arg(run.server.unansweredSteps()));
    }
    manager.setDeadline(30s);
    m_data = filledCaches();
    const int requests = run.server.requestCount();
    // Its connection does not stay, so that the server may be used for another run.
    run.server.answerRaw({ScriptServer::Step::bytes(
        ScriptServer::httpAnswer(200, run.answer, {"Content-Type: application/json", "Connection: close"}))});
    WireOutcome outcome;
    outcome.readable = run.answer;
    const QStringList deviations = run.operation.deviations(m_data, outcome);
    for (const QString& deviation : deviations) {
        run.deviations.append("the next operation: "_q + deviation);
    }
    if (run.server.requestCount() != requests + 1 || !run.server.isUsedUp()) {
        run.deviations.append(
            "the next operation sent %1 requests"_q.arg(run.server.requestCount() - requests));
    }
}
