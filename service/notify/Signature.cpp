#include "notify/Signature.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <array>
#include <stdexcept>

namespace monitorservice {

std::string hexadecimal(std::string_view bytes)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        text += digits[byte >> 4U];
        text += digits[byte & 0x0fU];
    }
    return text;
}

std::string signatureOf(std::string_view secret, const std::string& timestamp, std::string_view body)
{
    std::string text = timestamp;
    text += '.';
    text += body;
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    if (HMAC(EVP_sha256(), secret.data(), static_cast<int>(secret.size()),
             reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest.data(),
             &length) == nullptr) {
        throw std::runtime_error("HMAC-SHA-256 cannot be computed");
    }
    return hexadecimal(std::string(digest.begin(), digest.begin() + length));
}

} // namespace monitorservice
