// Stands in for libFuzzer where there is none: tries each file of the folders that the command line names, so
// that every input that once broke something stays a test.

#include "Fuzzer.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

std::vector<std::filesystem::path> filesOf(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

Bytes contentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path.string());
    }
    Bytes bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    bytes.shrink_to_fit(); // so that the sanitizers see a read behind the end
    return bytes;
}

} // namespace

int main(int argc, char** argv)
{
    std::size_t tried = 0;
    for (int argument = 1; argument < argc; ++argument) {
        for (const std::filesystem::path& path : filesOf(argv[argument])) {
            std::cerr << path.filename().string() << std::endl; // the last one named is the one that fails
            const Bytes bytes = contentOf(path);
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
            ++tried;
        }
    }
    const Bytes nothing;
    LLVMFuzzerTestOneInput(nothing.data(), 0);
    if (tried == 0) {
        std::cerr << "no inputs" << std::endl;
        return 1;
    }
    return 0;
}
