#pragma once

#include "copy/ContentCount.h"
#include "store/Store.h"

#include <functional>
#include <stdexcept>
#include <string>

namespace monitorservice {

/// Why a copy was not begun or is not right; the message is for the operator.
class CopyError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// What both stores hold in the end.
struct CopiedContent
{
    ContentCount count;
    std::string checksum; ///< SHA-256, 64 hexadecimal digits; the same for the same content
};

/// Is given a line when a part was written, such as
/// "monitoring "Shaft 3" of project "Harbour tunnel": 12 points, 3400 samples".
using CopyProgress = std::function<void(const std::string& line)>;

/// Copies all that a store holds at one moment into another one of whatever kind: identifiers, tokens and
/// history with it. What was written is read again from both stores and compared.
///
/// The other store has to be empty, or to hold a part of the same copy, which goes on then: each monitoring
/// is written in one transaction, and those there are skipped. It was opened with
/// StoreOptions::mayBeUnfinished and for every channel, and nobody else writes to it. Until all was compared,
/// it is unfinished (Session::isUnfinished()).
///
/// Throws CopyError when the other store holds something else, before or afterwards; also StoreError,
/// DamagedDocument, and what `progress` throws. What was written so far stays.
CopiedContent copyStore(Store& from, Store& to, const CopyProgress& progress);

} // namespace monitorservice
