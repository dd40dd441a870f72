#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace monitorservice {

/// Why something cannot be administered as it was asked for.
enum class AdministrationFailure
{
    BadValue,     ///< a value cannot be taken
    Unknown,      ///< there is no such thing
    InUse,        ///< it is to be removed and something uses it
    Contradiction ///< something that is there already is in the way
};

/// What was asked for cannot be done; nothing was changed. The message is for people. That of a bad value
/// says only what is wrong with it, such as "is empty": how the value is called is up to who asked for it.
class AdministrationError : public std::runtime_error
{
public:
    AdministrationError(AdministrationFailure failure, std::string subject, std::string value,
                        const std::string& message)
        : std::runtime_error(message), m_failure(failure), m_subject(std::move(subject)),
          m_value(std::move(value))
    {
    }

    AdministrationFailure failure() const noexcept { return m_failure; }
    /// What it is about: the member whose value cannot be taken, such as "timeZone", otherwise the kind of
    /// thing, such as "project".
    const std::string& subject() const noexcept { return m_subject; }
    /// The value, or what identifies the thing.
    const std::string& value() const noexcept { return m_value; }

private:
    AdministrationFailure m_failure;
    std::string m_subject;
    std::string m_value;
};

/// There is none of this kind, such as "project", that is identified so.
inline AdministrationError noSuch(const std::string& kind, const std::string& id)
{
    return {AdministrationFailure::Unknown, kind, id, "there is no " + kind + " \"" + id + "\""};
}

} // namespace monitorservice
