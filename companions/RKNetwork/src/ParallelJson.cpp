#include "ParallelJson.h"

#include <QByteArrayMatcher>
#include <QJsonValue>

#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#include <utility>
#include <vector>

namespace rk {

namespace {

// The white space of JSON (RFC 8259, 2).
bool isBlank(char character)
{
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

// The first position from `at` on that is not blank; the size of the text when there is none.
int skipBlanks(const QByteArray& text, int at)
{
    while (at < text.size() && isBlank(text.at(at))) {
        ++at;
    }
    return at;
}

// The first element up to the end of its first key, such as {"_id"; empty when the text is no array of
// objects.
QByteArray beginningOfElements(const QByteArray& text)
{
    constexpr int longest = 128;
    const auto holds = [&text](int at, char character) {
        return at < text.size() && text.at(at) == character;
    };
    const int array = skipBlanks(text, 0);
    const int element = skipBlanks(text, array + 1);
    const int key = skipBlanks(text, element + 1);
    if (!holds(array, '[') || !holds(element, '{') || !holds(key, '"')) {
        return {};
    }
    const int keyEnd = text.indexOf('"', key + 1);
    return keyEnd < 0 || keyEnd - element > longest ? QByteArray() : text.mid(element, keyEnd + 1 - element);
}

// Commas about `pieceSize` apart that are followed by what the first element begins with. Nearly always they
// stand between elements of the array, but not where a list inside an element has elements that begin like
// this.
std::vector<int> likelyCommas(const QByteArray& text, int pieceSize)
{
    std::vector<int> commas;
    const QByteArrayMatcher beginning(beginningOfElements(text));
    int element = beginning.pattern().isEmpty() ? -1 : beginning.indexIn(text, pieceSize);
    while (element >= 0) {
        int comma = element - 1;
        while (comma > 0 && isBlank(text.at(comma))) {
            --comma;
        }
        const bool isFound = text.at(comma) == ',';
        if (isFound) {
            commas.push_back(comma);
        }
        element = beginning.indexIn(text, std::min(element + (isFound ? pieceSize : 1), text.size()));
    }
    return commas;
}

// The array has elements, and they are objects.
bool holdsObjects(const QJsonArray& array)
{
    const auto isObject = [](const QJsonValue& element) {
        return element.isObject();
    };
    return !array.isEmpty() && std::all_of(array.begin(), array.end(), isObject);
}

// The text of an array of objects, cut at commas. Threads parse one piece after the other as an array of its
// own.
//
// When every piece is an array with at least one element, each comma stood between two elements of the whole
// array, and this has the pieces' elements in turn; no other knowledge of the commas is needed. When one is
// not (its only element is missing, it ends within a text or a list, it is damaged), nothing is known.
// Neither is anything said of other elements than objects: QJsonArray takes those as QJsonValue, which rounds
// whole numbers above 2^53 that fromJson keeps.
class ArrayPieces
{
public:
    ArrayPieces(const QByteArray& text, std::vector<int> commas)
        : m_text(text), m_commas(std::move(commas)), m_arrays(m_commas.size() + 1)
    {
    }

    std::size_t count() const { return m_arrays.size(); }

    // Parses what no other thread has begun to parse, until nothing is left or a piece was no array of
    // objects.
    void parse() noexcept
    {
        try {
            for (std::size_t i = m_next++; i < count() && m_areGood; i = m_next++) {
                m_arrays[i] = QJsonDocument::fromJson(textOf(i)).array();
                if (!holdsObjects(m_arrays[i])) {
                    m_areGood = false;
                }
            }
        } catch (const std::exception&) { // no memory; must not leave the thread
            m_areGood = false;
        }
    }

    bool areGood() const { return m_areGood; }

    // The elements of all, to be asked for when no thread parses any more.
    QJsonArray joined() const
    {
        QJsonArray elements = m_arrays.front();
        for (std::size_t i = 1; i < count(); ++i) {
            for (const QJsonValue& element : m_arrays[i]) {
                elements.append(element);
            }
        }
        return elements;
    }

private:
    QByteArray textOf(std::size_t i) const
    {
        const int begin = i == 0 ? 0 : m_commas[i - 1] + 1;
        const int end = i == m_commas.size() ? m_text.size() : m_commas[i];
        QByteArray text;
        text.reserve(end - begin + 2);
        if (i > 0) {
            text.append('[');
        }
        text.append(m_text.constData() + begin, end - begin);
        if (i < m_commas.size()) {
            text.append(']');
        }
        return text;
    }

    const QByteArray& m_text;
    const std::vector<int> m_commas;
    std::vector<QJsonArray> m_arrays;
    std::atomic<std::size_t> m_next{0};
    std::atomic<bool> m_areGood{true};
};

// Threads that end with their owner.
class Helpers
{
public:
    Helpers() = default;
    ~Helpers()
    {
        for (std::thread& thread : m_threads) {
            thread.join();
        }
    }
    Helpers(const Helpers&) = delete;
    Helpers& operator=(const Helpers&) = delete;

    // Begins as many as the system allows, `count` at most. Their stack is the system's smallest one for
    // threads; what fromJson needs of it at its limit of 1024 nested values is 261 kB (x86-64, Qt 5.15).
    template <typename Work>
    void begin(std::size_t count, const Work& work)
    {
        try {
            m_threads.reserve(count);
            while (m_threads.size() < count) {
                m_threads.emplace_back(work);
            }
        } catch (const std::exception&) { // those that have begun, and the caller, do the work
        }
    }

private:
    std::vector<std::thread> m_threads;
};

std::size_t threadsOf(const JsonSharing& sharing)
{
    constexpr unsigned most = 4;
    return sharing.threads > 0 ? static_cast<std::size_t>(sharing.threads)
                               : std::clamp(std::thread::hardware_concurrency(), 1U, most);
}

} // namespace

QJsonArray parseJsonPieces(const QByteArray& text, const JsonSharing& sharing)
{
    ArrayPieces pieces(text, likelyCommas(text, sharing.pieceSize));
    if (pieces.count() < 2) {
        return {};
    }
    {
        Helpers helpers;
        helpers.begin(std::min(threadsOf(sharing), pieces.count()) - 1, [&pieces] { pieces.parse(); });
        pieces.parse();
    }
    return pieces.areGood() ? pieces.joined() : QJsonArray();
}

QJsonDocument parseJson(const QByteArray& text, QJsonParseError* error, const JsonSharing& sharing)
{
    if (text.size() >= sharing.smallestText && threadsOf(sharing) > 1) {
        const QJsonArray elements = parseJsonPieces(text, sharing);
        if (!elements.isEmpty()) {
            if (error) {
                *error = {0, QJsonParseError::NoError};
            }
            return QJsonDocument(elements);
        }
    }
    return QJsonDocument::fromJson(text, error);
}

} // namespace rk
