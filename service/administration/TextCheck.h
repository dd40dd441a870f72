#pragma once

#include <string>
#include <string_view>

namespace monitorservice {

/// What is wrong with a text that people are to read, such as "is empty"; empty when it is UTF-8, not blank,
/// and without control characters.
std::string faultOf(std::string_view text);

/// Throws AdministrationError when something is wrong with the text of this member.
void requireText(const std::string& member, const std::string& text);

/// The same where an empty text stands for none.
void requireTextOrNone(const std::string& member, const std::string& text);

} // namespace monitorservice
