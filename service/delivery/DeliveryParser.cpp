#include "delivery/DeliveryParser.h"

#include "delivery/DeliveryRefusal.h"
#include "domain/Depth.h"
#include "json/JsonPieces.h"
#include "json/JsonText.h"
#include "query/QuotedText.h"
#include "time/Timestamp.h"

#include <simdjson.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace monitorservice {

namespace {

namespace ondemand = simdjson::ondemand;

// What the parser is given at a time, and the most that one element may hold besides its samples.
constexpr std::size_t pieceSize = 256 * 1024;
constexpr std::size_t largestPiece = 1024 * 1024;
constexpr std::size_t longestText = 4096;
// All elements together, their samples not counted: what is kept of them, and answered, is bounded with it.
constexpr std::size_t mostDescription = 16 * 1024 * 1024;
constexpr std::size_t mostElements = 50'000;
constexpr std::size_t mostLinks = 1000;
constexpr std::size_t mostTimeFlags = 65'535;

[[noreturn]] void refuse(const std::string& place, const std::string& reason)
{
    throw DeliveryRefusal("\"" + place + "\" " + reason);
}

// A member of a delivered object: its value, and where it stands.
struct Member
{
    ondemand::value value;
    const std::string& object; // the object's place
    std::string_view name;

    std::string place() const { return object + "." + std::string(name); }
    [[noreturn]] void refuse(const std::string& reason) const { monitorservice::refuse(place(), reason); }
};

// The view is valid until the next piece is parsed.
std::string_view textOf(Member& member)
{
    std::string_view text;
    if (member.value.get_string().get(text) != simdjson::SUCCESS) {
        member.refuse("must be a text");
    }
    if (text.size() > longestText) {
        member.refuse("is longer than " + std::to_string(longestText) + " bytes");
    }
    // An escape may stand for half a surrogate pair, which UTF-8 has no form for.
    if (text.find('\0') != std::string_view::npos || !simdjson::validate_utf8(text)) {
        member.refuse("holds U+0000 or half a surrogate pair");
    }
    return text;
}

std::string nonEmptyTextOf(Member& member)
{
    const std::string_view text = textOf(member);
    if (text.empty()) {
        member.refuse("must not be empty");
    }
    return std::string(text);
}

// What is empty, null or 0 is as good as not sent: clients that send whole records send all their members.
std::optional<std::string> sentTextOf(Member& member)
{
    const std::string_view text = textOf(member);
    return text.empty() ? std::nullopt : std::optional<std::string>(text);
}

std::optional<std::string> sentTextOrNullOf(Member& member)
{
    bool isNull = false;
    if (member.value.is_null().get(isNull) != simdjson::SUCCESS) {
        member.refuse("must be a text or null");
    }
    return isNull ? std::nullopt : sentTextOf(member);
}

template <typename Number>
std::optional<Number> sentNumber(Number number)
{
    return number == 0 ? std::nullopt : std::optional(number);
}

std::int32_t integerOf(Member& member)
{
    std::int64_t number = 0;
    if (member.value.get_int64().get(number) != simdjson::SUCCESS || number < INT32_MIN ||
        number > INT32_MAX) {
        member.refuse("must be a whole number from -2147483648 to 2147483647");
    }
    return static_cast<std::int32_t>(number);
}

// simdjson 3.0 takes "0." with 20 digits and more for another number: 0.5400000000000000000000 for 0.00136.
// So the text of a long number is read again; nothing when the number is too large.
std::optional<double> readAgain(std::string_view text, double number)
{
    double again = 0;
    const std::errc error = std::from_chars(text.data(), text.data() + text.size(), again).ec;
    if (error != std::errc::result_out_of_range) {
        return again;
    }
    // Too small or too large to be told from 0 or to be kept.
    return std::abs(number) < 1 ? std::optional(0.0) : std::nullopt;
}

double numberOf(Member& member)
{
    constexpr std::size_t longestSafe = 20;
    const std::string_view text = member.value.raw_json_token(); // before the value is taken
    std::optional<double> number = 0.0;
    if (member.value.get_double().get(*number) != simdjson::SUCCESS) {
        number.reset();
    } else if (text.size() > longestSafe) {
        number = readAgain(text, *number);
    }
    if (!number) {
        member.refuse("must be a finite number");
    }
    return *number;
}

Timestamp timeOf(Member& member)
{
    const std::optional<Timestamp> time = parseTimestamp(textOf(member));
    if (!time) {
        member.refuse("must be a time such as 2015-12-21T06:30:00.000-08:00, with Z or an offset");
    }
    return *time;
}

// Visits the members of an object; a name that is given twice or is not among the known ones is refused.
template <std::size_t size, typename Visit>
void forEachMember(ondemand::object object, const std::string& place,
                   const std::array<std::string_view, size>& known, Visit&& visit)
{
    static_assert(size <= 32);
    std::uint32_t seen = 0;
    for (auto field : object) {
        const std::string_view name = field.unescaped_key();
        const auto found = std::find(known.begin(), known.end(), name);
        if (found == known.end()) {
            refuse(place + "." + shortened(name), "is not a member that can be delivered");
        }
        const std::uint32_t bit = 1U << static_cast<unsigned>(found - known.begin());
        Member member{field.value(), place, *found};
        if ((seen & bit) != 0) {
            member.refuse("is given twice");
        }
        seen |= bit;
        visit(member);
    }
}

constexpr std::array<std::string_view, 4> sampleMembers{"count", "time", "value", "timeFlag"};
constexpr std::array<std::string_view, 2> linkMembers{"type", "rId"};
constexpr std::array<std::string_view, 15> pointMembers{
    "projectId",    "cellId",          "name",  "alias",       "subCategoryId", "dataType",
    "initialValue", "offsetDirection", "depth", "insertCount", "lastCount",     "fileId",
    "lastDate",     "links",           "data"};

class DeliveryReader
{
public:
    Delivery read(std::string_view body);

private:
    void readElements(std::string_view body);
    void readInner(std::string_view array, std::size_t outer);
    void readElement(std::string_view text, Delivery::Element element);
    void readHead(std::string_view text, DeliveredPoint& point, const std::string& place);
    void readMember(Member& member, DeliveredPoint& point);
    void checkComputed(Member& member) const;
    void readSamplePieces(std::string_view array, DeliveredPoint& point, const std::string& place);
    void readSamples(ondemand::array array, DeliveredPoint& point, const std::string& place);
    DeliveredSample readSample(ondemand::object object, const std::string& place);
    std::optional<std::string> readLinks(Member& member);
    std::uint16_t timeFlagIndex(std::string_view flag);

    ondemand::document parsed(std::string_view before, std::string_view piece, std::string_view after,
                              const std::string& place);
    DeliveredPoint& pointLike(DeliveredPoint&& described);
    void settleSamples(DeliveredPoint& point) const;

    Delivery m_delivery;
    std::unordered_map<std::string, std::size_t> m_pointIndex;
    std::unordered_map<std::string, std::uint16_t> m_timeFlagIndex;
    std::uint32_t m_rows = 0;
    std::size_t m_described = 0; // bytes of the elements read so far, their samples not counted
    ondemand::parser m_parser;
    std::string m_piece;
};

Delivery DeliveryReader::read(std::string_view body)
{
    try {
        readElements(body);
    } catch (const JsonPieceError& error) {
        throw DeliveryRefusal(std::string("the body is not a JSON array: ") + error.what());
    }
    for (DeliveredPoint& point : m_delivery.points) {
        settleSamples(point);
    }
    return std::move(m_delivery);
}

void DeliveryReader::readElements(std::string_view body)
{
    const bool nested = isNestedDelivery(body);
    JsonArrayPieces pieces(body);
    std::size_t outer = 0;
    while (const auto piece = pieces.next()) {
        if (!nested) {
            readElement(*piece, {outer, std::nullopt, m_rows});
        } else if (piece->front() == '[') {
            readInner(*piece, outer);
        } else {
            refuse("[" + std::to_string(outer) + "]", "must be an array, as the first element is");
        }
        ++outer;
    }
}

void DeliveryReader::readInner(std::string_view array, std::size_t outer)
{
    JsonArrayPieces pieces(array);
    std::size_t inner = 0;
    while (const auto piece = pieces.next()) {
        readElement(*piece, {outer, inner, m_rows});
        ++inner;
    }
}

void DeliveryReader::readElement(std::string_view text, Delivery::Element element)
{
    if (m_delivery.elements.size() == mostElements) {
        throw DeliveryRefusal("the delivery has more than " + std::to_string(mostElements) + " elements");
    }
    const std::size_t index = m_delivery.elements.size();
    m_delivery.elements.push_back(element);
    const std::string place = m_delivery.nameOf(index);

    // Samples are what an element may have many of: they are taken out and read in pieces.
    std::optional<std::string_view> data = findJsonMember(text, "\"data\"");
    if (data && (data->empty() || data->front() != '[')) {
        data.reset();
    }
    DeliveredPoint described;
    described.element = index;
    try {
        if (!data) {
            readHead(text, described, place);
            pointLike(std::move(described));
            return;
        }
        const auto begin = static_cast<std::size_t>(data->data() - text.data());
        std::string head(text.substr(0, begin));
        head += "[]";
        head += text.substr(begin + data->size());
        readHead(head, described, place);
        readSamplePieces(*data, pointLike(std::move(described)), place);
    } catch (const simdjson::simdjson_error& error) {
        refuse(place, std::string("is not valid JSON: ") + error.what());
    } catch (const JsonPieceError& error) {
        refuse(place + ".data", std::string("is not a JSON array: ") + error.what());
    }
}

ondemand::document DeliveryReader::parsed(std::string_view before, std::string_view piece,
                                          std::string_view after, const std::string& place)
{
    const std::size_t size = before.size() + piece.size() + after.size();
    if (size > largestPiece) {
        refuse(place, "is larger than " + std::to_string(largestPiece) + " bytes, its samples not counted");
    }
    m_piece.reserve(size + simdjson::SIMDJSON_PADDING);
    m_piece.assign(before).append(piece).append(after);
    return m_parser.iterate(m_piece.data(), m_piece.size(), m_piece.capacity());
}

void DeliveryReader::readHead(std::string_view text, DeliveredPoint& point, const std::string& place)
{
    m_described += text.size();
    if (m_described > mostDescription) {
        throw DeliveryRefusal("the points of the delivery have more than " + std::to_string(mostDescription) +
                              " bytes besides their samples");
    }
    ondemand::document document = parsed({}, text, {}, place);
    ondemand::object object;
    if (document.get_object().get(object) != simdjson::SUCCESS) {
        refuse(place, "must be an object");
    }
    std::array<bool, 3> required{};
    forEachMember(object, place, pointMembers, [&](Member& member) {
        required[0] = required[0] || member.name == "cellId";
        required[1] = required[1] || member.name == "subCategoryId";
        required[2] = required[2] || member.name == "name";
        readMember(member, point);
    });
    constexpr std::array<const char*, 3> names{"cellId", "subCategoryId", "name"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!required.at(i)) {
            refuse(place + "." + names.at(i), "is missing");
        }
    }
}

void DeliveryReader::readMember(Member& member, DeliveredPoint& point)
{
    if (member.name == "cellId") {
        point.cell = textOf(member);
    } else if (member.name == "subCategoryId") {
        point.subCategory = textOf(member);
    } else if (member.name == "name") {
        point.name = nonEmptyTextOf(member);
    } else if (member.name == "depth") {
        point.depth = textOf(member);
    } else if (member.name == "projectId") {
        point.project = sentTextOrNullOf(member);
    } else if (member.name == "alias") {
        point.alias = sentTextOf(member);
    } else if (member.name == "dataType") {
        point.dataType = sentNumber(integerOf(member));
    } else if (member.name == "initialValue") {
        point.initialValue = sentNumber(numberOf(member));
    } else if (member.name == "offsetDirection") {
        point.offsetDirection = sentTextOf(member);
    } else if (member.name == "fileId") {
        point.fileId = sentTextOrNullOf(member);
    } else if (member.name == "links") {
        point.links = readLinks(member);
    } else if (member.name == "data") {
        ondemand::array array;
        if (member.value.get_array().get(array) != simdjson::SUCCESS) {
            member.refuse("must be an array");
        }
        readSamples(array, point, member.object);
    } else {
        checkComputed(member);
    }
}

// What the service computes from the samples is sent by clients that send whole records.
void DeliveryReader::checkComputed(Member& member) const
{
    if (member.name != "lastDate") {
        integerOf(member);
        return;
    }
    const std::string_view text = textOf(member);
    if (!text.empty() && !parseTimestamp(text)) {
        member.refuse("must be a time or empty");
    }
}

std::optional<std::string> DeliveryReader::readLinks(Member& member)
{
    ondemand::array array;
    if (member.value.get_array().get(array) != simdjson::SUCCESS) {
        member.refuse("must be an array");
    }
    JsonArrayWriter links;
    std::size_t index = 0;
    for (auto element : array) {
        const std::string place = member.place() + "[" + std::to_string(index++) + "]";
        if (index > mostLinks) {
            member.refuse("has more than " + std::to_string(mostLinks) + " elements");
        }
        ondemand::object object;
        if (element.get_object().get(object) != simdjson::SUCCESS) {
            refuse(place, "must be an object");
        }
        std::string type;
        std::string identifier;
        forEachMember(object, place, linkMembers, [&](Member& part) {
            (part.name == "type" ? type : identifier) = nonEmptyTextOf(part);
        });
        if (type.empty()) {
            refuse(place + ".type", "is missing");
        }
        // A relation that is named without an identifier: there shall be none of it.
        if (!identifier.empty()) {
            links.json(JsonObjectWriter().text("type", type).text("rId", identifier).finish());
        }
    }
    return index == 0 ? std::nullopt : std::optional(links.finish());
}

void DeliveryReader::readSamplePieces(std::string_view array, DeliveredPoint& point, const std::string& place)
{
    JsonArrayPieces elements(array);
    std::optional<std::string_view> element = elements.next();
    while (element) {
        const char* const begin = element->data();
        std::string_view piece;
        do {
            piece = {begin, static_cast<std::size_t>(element->data() + element->size() - begin)};
            element = elements.next();
        } while (element && piece.size() < pieceSize);
        ondemand::document document = parsed("[", piece, "]", place + ".data");
        readSamples(document.get_array(), point, place);
    }
}

void DeliveryReader::readSamples(ondemand::array array, DeliveredPoint& point, const std::string& place)
{
    const Delivery::Element& element = m_delivery.elements.back();
    for (auto value : array) {
        const std::string samplePlace = place + ".data[" + std::to_string(m_rows - element.firstRow) + "]";
        ondemand::object object;
        if (value.get_object().get(object) != simdjson::SUCCESS) {
            refuse(samplePlace, "must be an object");
        }
        point.samples.push_back(readSample(object, samplePlace));
        ++point.rows;
        ++m_rows;
    }
}

DeliveredSample DeliveryReader::readSample(ondemand::object object, const std::string& place)
{
    DeliveredSample sample;
    sample.row = m_rows;
    sample.timeFlag = UINT16_MAX;
    std::array<bool, 3> required{};
    forEachMember(object, place, sampleMembers, [&](Member& member) {
        if (member.name == "count") {
            sample.count = integerOf(member);
            required[0] = true;
        } else if (member.name == "time") {
            const Timestamp time = timeOf(member);
            sample.time = time.milliseconds;
            sample.offsetMinutes =
                time.offsetMinutes ? static_cast<std::int16_t>(*time.offsetMinutes) : DeliveredSample::utc;
            required[1] = true;
        } else if (member.name == "value") {
            sample.value = numberOf(member);
            required[2] = true;
        } else {
            sample.timeFlag = timeFlagIndex(textOf(member));
        }
    });
    for (std::size_t i = 0; i < required.size(); ++i) {
        if (!required.at(i)) {
            refuse(place + "." + std::string(sampleMembers.at(i)), "is missing");
        }
    }
    if (sample.timeFlag == UINT16_MAX) {
        sample.timeFlag = timeFlagIndex({});
    }
    return sample;
}

std::uint16_t DeliveryReader::timeFlagIndex(std::string_view flag)
{
    // Nearly always the flag of the sample before.
    if (!m_delivery.timeFlags.empty() && m_delivery.timeFlags.back() == flag) {
        return static_cast<std::uint16_t>(m_delivery.timeFlags.size() - 1);
    }
    const auto [found, isNew] = m_timeFlagIndex.try_emplace(
        std::string(flag), static_cast<std::uint16_t>(m_delivery.timeFlags.size()));
    if (isNew) {
        if (m_delivery.timeFlags.size() == mostTimeFlags) {
            throw DeliveryRefusal("the delivery has more than " + std::to_string(mostTimeFlags) +
                                  " different time flags");
        }
        m_delivery.timeFlags.emplace_back(flag);
    }
    return found->second;
}

template <typename Value>
void takeOver(std::optional<Value>& present, const std::optional<Value>& later)
{
    if (later) {
        present = later;
    }
}

// The point that the description names: that of an earlier element, which it then adds to, or a new one.
DeliveredPoint& DeliveryReader::pointLike(DeliveredPoint&& described)
{
    std::string key = described.cell + '\0' + described.subCategory + '\0' + described.name + '\0' +
                      settledDepth(described.depth);
    const auto [found, isNew] = m_pointIndex.try_emplace(std::move(key), m_delivery.points.size());
    if (isNew) {
        return m_delivery.points.emplace_back(std::move(described));
    }
    DeliveredPoint& point = m_delivery.points[found->second];
    takeOver(point.project, described.project);
    takeOver(point.alias, described.alias);
    takeOver(point.dataType, described.dataType);
    takeOver(point.initialValue, described.initialValue);
    takeOver(point.offsetDirection, described.offsetDirection);
    takeOver(point.fileId, described.fileId);
    takeOver(point.links, described.links);
    point.samples.insert(point.samples.end(), described.samples.begin(), described.samples.end());
    point.rows += described.rows;
    return point;
}

// Puts the samples into their order and leaves each once.
void DeliveryReader::settleSamples(DeliveredPoint& point) const
{
    const auto key = [](const DeliveredSample& sample) {
        return std::tie(sample.time, sample.count, sample.row);
    };
    const auto before = [&key](const DeliveredSample& left, const DeliveredSample& right) {
        return key(left) < key(right);
    };
    if (!std::is_sorted(point.samples.begin(), point.samples.end(), before)) {
        std::sort(point.samples.begin(), point.samples.end(), before);
    }
    const auto isRepeated = [this](const DeliveredSample& first, const DeliveredSample& second) {
        if (first.time != second.time || first.count != second.count) {
            return false;
        }
        if (first.value != second.value || first.timeFlag != second.timeFlag) {
            refuse(m_delivery.nameOfRow(second.row), "contradicts \"" + m_delivery.nameOfRow(first.row) +
                                                         "\": same point, time and count, another value");
        }
        return true;
    };
    point.samples.erase(std::unique(point.samples.begin(), point.samples.end(), isRepeated),
                        point.samples.end());
}

} // namespace

Delivery parseDelivery(std::string_view body)
{
    return DeliveryReader().read(body);
}

bool isNestedDelivery(std::string_view body)
{
    body = withoutLeadingBlanks(body);
    if (body.empty() || body.front() != '[') {
        return false;
    }
    body = withoutLeadingBlanks(body.substr(1));
    return !body.empty() && body.front() == '[';
}

} // namespace monitorservice
