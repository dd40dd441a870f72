#pragma once

#include "delivery/Withdrawal.h"
#include "domain/Document.h"
#include "json/JsonText.h"

#include <string>
#include <string_view>

namespace monitorservice {

/// The document of what was taken away, or of what something was taken away from, with what became of it:
/// "removed", "restored", "removedPoints", "alarms".
inline std::string withWithdrawal(std::string_view document, const Withdrawal& withdrawal)
{
    JsonArrayWriter alarms;
    for (const std::string& alarm : withdrawal.alarms) {
        alarms.text(alarm);
    }
    return std::string(openedDocument(document)) + ",\"removed\":" + std::to_string(withdrawal.removed) +
           ",\"restored\":" + std::to_string(withdrawal.restored) +
           ",\"removedPoints\":" + std::to_string(withdrawal.removedPoints) +
           ",\"alarms\":" + alarms.finish() + "}";
}

} // namespace monitorservice
