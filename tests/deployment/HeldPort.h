#pragma once

#include <cstdint>

namespace monitorservice::test {

/// A port of 127.0.0.1 that no program is given which asks for any free one. Programs that are told to listen
/// on it can, one after the other.
class HeldPort
{
public:
    HeldPort();
    ~HeldPort();
    HeldPort(const HeldPort&) = delete;
    HeldPort& operator=(const HeldPort&) = delete;

    std::uint16_t number() const { return m_number; }

private:
    int m_socket;
    std::uint16_t m_number;
};

} // namespace monitorservice::test
