#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct evp_md_ctx_st;

namespace monitorservice {

/// SHA-256 of a sequence of texts and numbers, in which none can be taken for another one.
class Checksum
{
public:
    Checksum();
    Checksum(const Checksum&) = delete;
    Checksum& operator=(const Checksum&) = delete;
    ~Checksum();

    void add(std::string_view text);
    void add(std::int64_t number);
    /// The bits of the number; zero has one sign.
    void add(double number);

    /// As 64 hexadecimal digits; the object is spent.
    std::string finish();

private:
    struct Free
    {
        void operator()(evp_md_ctx_st* context) const;
    };

    void flush();

    std::unique_ptr<evp_md_ctx_st, Free> m_context;
    std::string m_pending; ///< many small pieces cost more than their bytes
};

} // namespace monitorservice
