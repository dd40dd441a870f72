#include "store/segments/TextColumn.h"

#include "store/segments/IntegerColumn.h"
#include "store/segments/SegmentError.h"

#include <unordered_map>
#include <utility>

namespace monitorservice {

void appendTexts(std::string& out, const std::vector<std::string_view>& texts)
{
    std::vector<std::string_view> occurring;
    std::vector<std::uint64_t> indices;
    std::unordered_map<std::string_view, std::uint64_t> indexOf;
    indices.reserve(texts.size());
    for (const std::string_view text : texts) {
        // Nearly all are as the one before.
        if (!indices.empty() && text == occurring[indices.back()]) {
            indices.push_back(indices.back());
            continue;
        }
        const auto [found, isNew] = indexOf.try_emplace(text, occurring.size());
        if (isNew) {
            occurring.push_back(text);
        }
        indices.push_back(found->second);
    }
    appendNumber(out, occurring.size());
    for (const std::string_view text : occurring) {
        appendNumber(out, text.size());
        out += text;
    }
    appendIntegers(out, std::move(indices));
}

TextColumn readTexts(ByteReader& bytes, std::size_t count, std::size_t mostBytes)
{
    TextColumn column;
    const std::uint64_t occurring = bytes.number();
    if (occurring > count) {
        throw SegmentError("the segment has more texts than samples");
    }
    column.occurring.reserve(occurring);
    while (column.occurring.size() < occurring) {
        column.occurring.push_back(bytes.bytes(bytes.number()));
    }
    column.indices = readIntegers(bytes, count);
    std::size_t left = mostBytes;
    for (const std::uint64_t index : column.indices) {
        if (index >= occurring) {
            throw SegmentError("the segment refers to a text that it does not have");
        }
        if (column.occurring[index].size() > left) {
            throw SegmentError("the segment has texts that are too long together");
        }
        left -= column.occurring[index].size();
    }
    return column;
}

} // namespace monitorservice
