#include "copy/Checksum.h"

#include <openssl/evp.h>

#include <array>
#include <cstring>
#include <stdexcept>

namespace monitorservice {

namespace {

constexpr std::size_t mostPending = 64UL * 1024;

void require(int result)
{
    if (result != 1) {
        throw std::runtime_error("SHA-256 cannot be computed");
    }
}

} // namespace

void Checksum::Free::operator()(evp_md_ctx_st* context) const
{
    EVP_MD_CTX_free(context);
}

Checksum::Checksum() : m_context(EVP_MD_CTX_new())
{
    require(m_context ? EVP_DigestInit_ex(m_context.get(), EVP_sha256(), nullptr) : 0);
}

Checksum::~Checksum() = default;

void Checksum::add(std::string_view text)
{
    add(static_cast<std::int64_t>(text.size()));
    m_pending += text;
    if (m_pending.size() > mostPending) {
        flush();
    }
}

void Checksum::add(std::int64_t number)
{
    // The least significant byte first, whatever the machine does.
    for (auto bits = static_cast<std::uint64_t>(number), place = std::uint64_t{0}; place < 8;
         ++place, bits >>= 8U) {
        m_pending += static_cast<char>(bits & 0xffU);
    }
    if (m_pending.size() > mostPending) {
        flush();
    }
}

void Checksum::add(double number)
{
    const double settled = number + 0.0; // -0 is 0
    std::int64_t bits = 0;
    static_assert(sizeof bits == sizeof settled);
    std::memcpy(&bits, &settled, sizeof bits);
    add(bits);
}

std::string Checksum::finish()
{
    flush();
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    require(EVP_DigestFinal_ex(m_context.get(), digest.data(), &length));
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (unsigned i = 0; i < length; ++i) {
        text += digits[digest.at(i) >> 4U];
        text += digits[digest.at(i) & 0x0fU];
    }
    return text;
}

void Checksum::flush()
{
    require(EVP_DigestUpdate(m_context.get(), m_pending.data(), m_pending.size()));
    m_pending.clear();
}

} // namespace monitorservice
