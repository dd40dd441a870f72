#pragma once

#include "ScriptServer.h"

#include <QByteArray>
#include <QList>
#include <QNetworkReply>

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Something that a server or the way to it does instead of answering as it should.
struct Fault
{
    using Error = QNetworkReply::NetworkError;
    /// What a plain reply of the same size would hold.
    using Steps = std::function<QList<ScriptServer::Step>(const QByteArray& answer)>;
    /// What of the reply the operation may read.
    enum class Readable
    {
        Nothing,
        Message, ///< serviceMessage
        Answer,  ///< the good answer, under whatever status
        Other,   ///< `other`
    };

    std::string name;
    Error error = QNetworkReply::NoError; ///< NoError: by design no failure
    Steps steps;                          ///< none: no request arrives
    Readable readable = Readable::Nothing;
    QByteArray other;

    int deadline = 10000;              ///< milliseconds; that of a fault that only the deadline ends is short
    std::optional<Error> errorForRead; ///< when it is not `error`
    std::optional<Error> otherError;   ///< may come instead of `error`
    bool endsInSilence = false; ///< the connection ends without a byte: a read is sent again on another
    ScriptServer::Arrival arrival = ScriptServer::Arrival::Served;

    // By name, as in a table.
    Fault& reading(Readable what) { return readable = what, *this; }
    Fault& readingOther(const QByteArray& text) { return readable = Readable::Other, other = text, *this; }
    Fault& endedByDeadline(int milliseconds) { return deadline = milliseconds, *this; }
    Fault& failingReads(Error code) { return errorForRead = code, *this; }
    Fault& orFailing(Error code) { return otherError = code, *this; }
    Fault& silent() { return endsInSilence = true, *this; }
    Fault& arriving(ScriptServer::Arrival how) { return arrival = how, *this; }
};

/// What the service says of a request that it refuses.
extern const QByteArray serviceMessage;
/// The largest reply taken while faults are played.
constexpr qint64 largestReply = 1024 * 1024;

struct FaultGroup
{
    const char* name;
    std::vector<Fault> faults;
};

/// Every fault but those of TLS and the cuts at every offset.
const std::vector<FaultGroup>& faultGroups();
