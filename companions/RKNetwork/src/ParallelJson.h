#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>

namespace rk {

/// How a large JSON text is shared out among threads.
struct JsonSharing
{
    int smallestText = 512 * 1024; ///< in bytes; a smaller one is parsed by the calling thread alone
    int pieceSize = 64 * 1024;     ///< in bytes, about
    int threads = 0;               ///< with the calling one; 0 for one per core, at most 4
};

/// The document and the error that QJsonDocument::fromJson makes of the text. A large array of objects is
/// parsed on several threads, all of which have ended when this returns.
QJsonDocument parseJson(const QByteArray& text, QJsonParseError* error = nullptr,
                        const JsonSharing& sharing = JsonSharing());

/// The elements of an array of nothing but objects, whose text is cut between them and parsed piece by piece.
/// Empty when no place to cut it is found, or when one was wrong; nothing is known of the text then.
QJsonArray parseJsonPieces(const QByteArray& text, const JsonSharing& sharing);

} // namespace rk
