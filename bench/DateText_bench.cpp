// Reading and writing timestamps: RKPub against QDateTime with Qt::ISODateWithMs, on the same texts and
// times. The two take turns, round by round, so that a machine that slows down slows both; the medians are
// compared.

#include <QDateTime>
#include <QStringList>
#include <QVector>
#include <RKPub.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <vector>

namespace {

constexpr int timeCount = 2000;
constexpr int roundCount = 41;

// Nanoseconds per element of `input` that `convert` takes, summed into `sink` so that nothing is optimised
// away.
template <typename Input, typename Convert>
double nanosecondsEach(const Input& input, const Convert& convert, qint64& sink)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    for (const auto& element : input) {
        sink += convert(element);
    }
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count() / input.size();
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

template <typename Input, typename Ours, typename Peer>
void compare(const char* what, const Input& input, const Ours& ours, const Peer& peer)
{
    qint64 ourSink = 0;
    qint64 peerSink = 0;
    std::vector<double> ourTimes;
    std::vector<double> peerTimes;
    for (int round = 0; round < roundCount; ++round) {
        ourTimes.push_back(nanosecondsEach(input, ours, ourSink));
        peerTimes.push_back(nanosecondsEach(input, peer, peerSink));
    }
    const double ourMedian = median(ourTimes);
    const double peerMedian = median(peerTimes);
    std::printf("%-26s %9.1f ns %9.1f ns %7.1f x%s\n", what, ourMedian, peerMedian, peerMedian / ourMedian,
                ourSink == peerSink ? "" : "   RESULTS DIFFER");
}

// Times spread over thirty years, in one time specification.
QVector<QDateTime> someTimes(Qt::TimeSpec specification, int offset)
{
    std::mt19937_64 random(20240229);
    std::uniform_int_distribution<qint64> milliseconds(946684800000, 1893456000000);
    QVector<QDateTime> times;
    times.reserve(timeCount);
    while (times.size() < timeCount) {
        times.append(QDateTime::fromMSecsSinceEpoch(milliseconds(random), specification, offset));
    }
    return times;
}

QStringList textsOf(const QVector<QDateTime>& times)
{
    QStringList texts;
    for (const QDateTime& time : times) {
        texts.append(time.toString(Qt::ISODateWithMs));
    }
    return texts;
}

void compareReading(const char* what, const QStringList& texts)
{
    // The calendar day is what the statistics ask for; it costs the same on both sides.
    compare(
        what, texts,
        [](const QString& text) { return RKPub::getDateTimeByQString(text).date().toJulianDay(); },
        [](const QString& text) {
            return QDateTime::fromString(text, Qt::ISODateWithMs).date().toJulianDay();
        });
}

// The last digit that the two forms of a zero offset, `Z` and `+00:00`, have in common.
qint64 lastMillisecond(const QString& text)
{
    return text.at(22).unicode();
}

template <typename Peer>
void compareWriting(const char* what, const QVector<QDateTime>& times, const Peer& peer)
{
    compare(
        what, times, [](const QDateTime& time) { return lastMillisecond(RKPub::getQStringByDateTime(time)); },
        peer);
}

} // namespace

int main()
{
    const auto utc = someTimes(Qt::UTC, 0);
    const auto offset = someTimes(Qt::OffsetFromUTC, 8 * 60 * 60);
    const auto local = someTimes(Qt::LocalTime, 0);
    std::printf("%d times, medians of %d rounds in turn\n%-26s %12s %12s %9s\n", timeCount, roundCount, "",
                "RKPub", "QDateTime", "ratio");
    compareReading("read  ...Z", textsOf(utc));
    compareReading("read  ...+08:00", textsOf(offset));
    compareReading("read  local", textsOf(local));
    const auto isoText = [](const QDateTime& time) {
        return lastMillisecond(time.toString(Qt::ISODateWithMs));
    };
    compareWriting("write UTC", utc, isoText);
    compareWriting("write +08:00", offset, isoText);
    // Of local times Qt leaves out the offset unless asked for it, so it is given the same work.
    compareWriting("write local", local, [](const QDateTime& time) {
        return lastMillisecond(time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODateWithMs));
    });
    return 0;
}
