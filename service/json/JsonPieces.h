#pragma once

#include <optional>
#include <stdexcept>
#include <string_view>

namespace monitorservice {

/// The text around a piece is not that of an array.
class JsonPieceError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Cuts the text of a JSON array (RFC 8259, section 5) into its elements, one after another, without reading
/// them: what a parser builds for a text grows with the text, so a large one is given to it in pieces. Looks
/// at quotes, brackets and commas alone; whether a piece is JSON is for the parser of the piece to say.
class JsonArrayPieces
{
public:
    /// The text must outlive the object. Throws JsonPieceError when it does not begin with "[".
    explicit JsonArrayPieces(std::string_view text);

    /// The next element, never empty; nothing after the last one. Throws JsonPieceError when elements are not
    /// separated by single commas, when the array does not end, or when something but blanks follows it.
    std::optional<std::string_view> next();

private:
    void requireEnd();

    std::string_view m_rest;
    bool m_first = true;
};

/// The value of the first member of this name, which is written as in the text, quotes included. Nothing when
/// there is none, or when the text is not that of an object up to there.
std::optional<std::string_view> findJsonMember(std::string_view object, std::string_view quotedName);

/// The text without the blanks at its beginning.
std::string_view withoutLeadingBlanks(std::string_view text);

} // namespace monitorservice
