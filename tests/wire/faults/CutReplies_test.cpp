// A reply with a body of 1 200 bytes, cut at every offset from its first byte to its last: by the regular end
// of the connection and by a reset, with and without a Content-Length. A read and a create meet every offset,
// the others every seventh unless RK_TEST_LONG is set.

#include "FaultTest.h"

#include <QtGlobal>

#include <ostream>
#include <string>
#include <tuple>

namespace {

using Step = ScriptServer::Step;

constexpr int bodySize = 1200;
constexpr Fault::Error closed = QNetworkReply::RemoteHostClosedError;

enum class Framing
{
    Length,
    EndOfConnection,
};

enum class Cut
{
    Fin,
    Reset,
};

QByteArray headOf(Framing framing)
{
    QByteArray head = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n";
    if (framing == Framing::Length) {
        head += "Content-Length: " + QByteArray::number(bodySize) + "\r\n";
    }
    return head + "\r\n";
}

class CutReplies : public FaultTest,
                   public testing::WithParamInterface<std::tuple<size_t, Framing, Cut, bool>>
{
protected:
    const WireOperation& operation() const { return wireOperations().at(std::get<0>(GetParam())); }
    Framing framing() const { return std::get<1>(GetParam()); }
    Cut cut() const { return std::get<2>(GetParam()); }
    bool onKeptConnection() const { return std::get<3>(GetParam()); }

    int stride() const
    {
        const QByteArray name = operation().name;
        const bool meetsAll = name == "getMonitoringById" || name == "createMonitoring";
        return meetsAll || qEnvironmentVariableIsSet("RK_TEST_LONG") ? 1 : 7;
    }

    // The reply ends after so many bytes.
    Fault cutAt(int offset) const
    {
        const QByteArray head = headOf(framing());
        Fault fault;
        fault.name = "CutAt" + std::to_string(offset);
        fault.steps = [head, offset, end = cut()](const QByteArray& answer) {
            return QList<Step>{Step::bytes((head + answer).left(offset)),
                               end == Cut::Fin ? Step::fin() : Step::reset()};
        };
        fault.error = closed;
        // Whoever says how long the body is by ending the connection has said that this is all.
        const bool looksWhole = framing() == Framing::EndOfConnection && cut() == Cut::Fin;
        if (looksWhole && offset > head.size()) {
            fault.error = QNetworkReply::ProtocolFailure;
        }
        if (cut() == Cut::Fin && offset == head.size() + bodySize) {
            fault.error = QNetworkReply::NoError;
            fault.readable = Fault::Readable::Answer;
        }
        fault.endsInSilence = offset < head.indexOf('\n') + 1;
        return fault;
    }
};

TEST_P(CutReplies, NeverLookLikeAnAnswer)
{
    // Whether a reset takes the end of a whole answer with it is the system's affair.
    const int end = headOf(framing()).size() + bodySize - (cut() == Cut::Reset ? 1 : 0);
    ScriptServer server;
    int faults = 0;
    for (int offset = 0; offset <= end; offset += stride(), ++faults) {
        play(cutAt(offset), operation(), onKeptConnection(), bodySize, server);
    }
    report(faults);
}

std::string nameOf(const testing::TestParamInfo<CutReplies::ParamType>& row)
{
    const auto& [operation, framing, cut, isKept] = row.param;
    return wireOperations().at(operation).name +
           std::string(framing == Framing::Length ? "_Length" : "_NoLength") +
           (cut == Cut::Fin ? "_Fin" : "_Reset") + (isKept ? "_Kept" : "_Fresh");
}

INSTANTIATE_TEST_SUITE_P(Wire, CutReplies,
                         testing::Combine(testing::Range<size_t>(0, wireOperations().size()),
                                          testing::Values(Framing::Length, Framing::EndOfConnection),
                                          testing::Values(Cut::Fin, Cut::Reset), testing::Bool()),
                         nameOf);

} // namespace
