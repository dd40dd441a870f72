#include "api/Parameters.h"

#include "api/ApiError.h"

#include <algorithm>
#include <charconv>

namespace monitorservice {

Parameters::Parameters(const HttpRequest& request, const std::vector<std::string_view>& known)
    : m_request(request)
{
    const auto& parameters = request.parameters;
    for (auto parameter = parameters.begin(); parameter != parameters.end(); ++parameter) {
        const std::string& name = parameter->first;
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            throw ApiError(400, "parameter \"" + name + "\" is not known here");
        }
        if (std::any_of(parameters.begin(), parameter,
                        [&](const auto& earlier) { return earlier.first == name; })) {
            throw ApiError(400, "parameter \"" + name + "\" is given twice");
        }
    }
}

const std::string* Parameters::text(std::string_view name) const
{
    for (const auto& parameter : m_request.parameters) {
        if (parameter.first == name) {
            return &parameter.second;
        }
    }
    return nullptr;
}

const std::string& Parameters::requiredText(std::string_view name) const
{
    const std::string* const value = text(name);
    if (value == nullptr) {
        throw ApiError(400, "parameter \"" + std::string(name) + "\" is missing");
    }
    return *value;
}

std::optional<std::uint64_t> Parameters::number(std::string_view name) const
{
    const std::string* const value = text(name);
    if (value == nullptr) {
        return std::nullopt;
    }
    std::uint64_t number = 0;
    const char* const end = value->data() + value->size();
    const auto [rest, error] = std::from_chars(value->data(), end, number);
    if (error != std::errc() || rest != end) {
        throw ApiError(400, "parameter \"" + std::string(name) + "\" must be a number from 0 on, not \"" +
                                *value + "\"");
    }
    return number;
}

bool Parameters::flag(std::string_view name) const
{
    const std::string* const value = text(name);
    if (value == nullptr || *value == "false") {
        return false;
    }
    if (*value != "true") {
        throw ApiError(400, "parameter \"" + std::string(name) + "\" must be true or false, not \"" + *value +
                                "\"");
    }
    return true;
}

Where requiredCondition(const Parameters& parameters, const std::string& otherwise)
{
    Where where = Where::parse(parameters.requiredText("where"));
    if (where.isEmpty()) {
        throw ApiError(400, "parameter \"where\" must have a condition: without one " + otherwise);
    }
    return where;
}

} // namespace monitorservice
