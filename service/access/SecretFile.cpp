#include "access/SecretFile.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace monitorservice {

namespace {

namespace fs = std::filesystem;

// Where permissions are those of POSIX.
bool isOpenToOthers(const fs::path& file)
{
#ifdef _WIN32
    static_cast<void>(file);
    return false;
#else
    std::error_code error;
    return (fs::status(file, error).permissions() & fs::perms::others_all) != fs::perms::none;
#endif
}

} // namespace

std::string readSecretFile(const std::string& option, const std::string& file)
{
    const auto refuse = [&](const std::string& reason) {
        throw std::invalid_argument(option + ": " + file + ' ' + reason);
    };
    const fs::path path = fs::u8path(file);
    std::error_code error;
    if (!fs::is_regular_file(path, error)) {
        refuse(fs::exists(path, error) ? "is no file" : "does not exist");
    }
    if (isOpenToOthers(path)) {
        refuse("can be read by every user of this machine; take that right away (chmod o= FILE)");
    }
    std::ifstream stream(path, std::ios::binary);
    std::string line;
    std::getline(stream, line);
    if (!stream.is_open() || stream.bad()) {
        refuse("cannot be read");
    }
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    if (line.empty()) {
        refuse("begins with an empty line");
    }
    if (stream.peek() != std::ifstream::traits_type::eof()) {
        refuse("has more than one line");
    }
    return line;
}

} // namespace monitorservice
