#pragma once

#include <stdexcept>
#include <string_view>

namespace monitorservice {

/// A stored document is not what was once written; the message says of which kind it is, and is for the
/// operator.
class DamagedDocument : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Reads a stored document, the reverse of toDocument(). Throws DamagedDocument. Each kind of document has
/// its own.
template <typename Document>
Document fromDocument(std::string_view text);

/// The document without its closing brace, so that members can be added behind it. Throws DamagedDocument
/// when it does not end in one.
std::string_view openedDocument(std::string_view text);

} // namespace monitorservice
