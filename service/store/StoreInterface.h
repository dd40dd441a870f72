#pragma once

namespace monitorservice {

/// What the interfaces of the store have in common: they are destroyed through their base and never copied.
class StoreInterface
{
public:
    StoreInterface() = default;
    StoreInterface(const StoreInterface&) = delete;
    StoreInterface& operator=(const StoreInterface&) = delete;
    virtual ~StoreInterface() = default;
};

} // namespace monitorservice
