#include "query/Pattern.h"

#include "query/QueryError.h"
#include "query/QuotedText.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace monitorservice {

namespace {

// \C could split a character.
constexpr std::uint32_t baseOptions = PCRE2_UTF | PCRE2_UCP | PCRE2_NEVER_BACKSLASH_C;

std::uint32_t readOptions(std::string_view letters, std::string_view path)
{
    std::uint32_t options = baseOptions;
    for (const char letter : letters) {
        switch (letter) {
        case 'i':
            options |= PCRE2_CASELESS;
            break;
        case 'm':
            options |= PCRE2_MULTILINE;
            break;
        case 's':
            options |= PCRE2_DOTALL;
            break;
        case 'x':
            options |= PCRE2_EXTENDED;
            break;
        default:
            throw QueryError(400, "where: $options " + quotedText(letters) +
                                      " has letters other than imsx at " + quotedText(path));
        }
    }
    return options;
}

std::string message(int error)
{
    std::array<PCRE2_UCHAR, 256> text{};
    pcre2_get_error_message(error, text.data(), text.size());
    return std::string(text.begin(), std::find(text.begin(), text.end(), PCRE2_UCHAR{0}));
}

} // namespace

void Pattern::FreeCode::operator()(pcre2_code* code) const
{
    pcre2_code_free(code);
}

Pattern::Pattern(std::string_view text, std::string_view options, std::string_view path)
    : m_text(text), m_path(path)
{
    const std::uint32_t bits = readOptions(options, path);
    m_counted = compiled(bits | PCRE2_AUTO_CALLOUT);
    m_uncounted = compiled(bits);
}

Pattern::Code Pattern::compiled(std::uint32_t options) const
{
    int error = 0;
    PCRE2_SIZE offset = 0;
    Code code(pcre2_compile(reinterpret_cast<PCRE2_SPTR>(m_text.data()), m_text.size(), options, &error,
                            &offset, nullptr));
    if (!code) {
        throw QueryError(400, "where: pattern " + quotedText(m_text) + " at " + quotedText(m_path) + ": " +
                                  message(error) + " (at byte " + std::to_string(offset) + ")");
    }
    // Where there is no just-in-time compiler, the interpreter gives the same answers.
    pcre2_jit_compile(code.get(), PCRE2_JIT_COMPLETE);
    return code;
}

} // namespace monitorservice
