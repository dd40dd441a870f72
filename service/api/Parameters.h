#pragma once

#include "http/HttpMessage.h"
#include "query/Where.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// The parameters of a request's query. Every member throws ApiError 400 that names the parameter.
class Parameters
{
public:
    /// Throws for a parameter that is not among `known`, or that is given twice. The request must outlive the
    /// object.
    Parameters(const HttpRequest& request, const std::vector<std::string_view>& known);

    /// Null when it is absent.
    const std::string* text(std::string_view name) const;
    /// Throws when it is absent.
    const std::string& requiredText(std::string_view name) const;
    /// Decimal digits and nothing else.
    std::optional<std::uint64_t> number(std::string_view name) const;
    /// "true" or "false"; false when it is absent.
    bool flag(std::string_view name) const;

private:
    const HttpRequest& m_request;
};

/// The where document of a request that changes what matches. Throws ApiError 400 when it is absent or
/// without conditions; `otherwise` tells what that would do.
Where requiredCondition(const Parameters& parameters, const std::string& otherwise);

} // namespace monitorservice
