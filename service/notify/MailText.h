#pragma once

#include "notify/Notification.h"

#include <string>

namespace monitorservice {

/// What a recipient reads, in UTF-8 with "\n" at the ends of lines.
struct MailText
{
    std::string subject;
    std::string body;
};

MailText mailTextOf(const Notification& notification);

/// The mail as it goes to the server (RFC 5322), in ASCII with "\r\n" at the ends of lines. `from` and the
/// recipient are addresses as isMailAddress() takes them.
std::string mailOf(const Notification& notification, const std::string& from);

} // namespace monitorservice
