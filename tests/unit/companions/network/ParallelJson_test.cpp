#include "ParallelJson.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QStringList>
#include <QVariant>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#ifdef __GLIBC__
#include <pthread.h>

#endif

namespace {

using rk::JsonSharing;
using rk::parseJson;
using rk::parseJsonPieces;

// Cuts wherever that is possible.
constexpr JsonSharing everywhere{0, 1, 2};

// Parsing on several threads has to be indistinguishable from parsing on one.
void expectSame(const QByteArray& text, const JsonSharing& sharing = everywhere)
{
    SCOPED_TRACE(text.left(2000).toStdString());
    QJsonParseError expectedError = {};
    const QJsonDocument expected = QJsonDocument::fromJson(text, &expectedError);
    QJsonParseError error = {-1, QJsonParseError::DocumentTooLarge};
    const QJsonDocument document = parseJson(text, &error, sharing);

    EXPECT_EQ(error.error, expectedError.error);
    EXPECT_EQ(error.offset, expectedError.offset);
    EXPECT_EQ(document.isNull(), expected.isNull());
    EXPECT_EQ(document.isArray(), expected.isArray());
    EXPECT_EQ(document, expected);
    EXPECT_EQ(document.toJson(), expected.toJson());
    EXPECT_EQ(document.toVariant(), expected.toVariant());
    EXPECT_EQ(parseJson(text, nullptr, sharing), expected);
}

// `count` points with a list of samples each.
QByteArray points(int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i) {
        text += (i == 0 ? "[" : ",") + QByteArray(R"({"_id":")") + QByteArray::number(i) +
                R"(","data":[{"value":1.5},{"value":-0.25},{"value":1e300}],"alias":null})";
    }
    return text + "]";
}

// JSON at random: white space anywhere, texts full of what looks like structure, lists whose elements begin
// like those of the outermost one.
class RandomJson
{
public:
    explicit RandomJson(unsigned seed) : m_random(seed) {}

    QByteArray array(int count, int depth)
    {
        QByteArray text = blanks() + "[" + blanks();
        for (int i = 0; i < count; ++i) {
            text += (i > 0 ? "," + blanks() : QByteArray()) +
                    (below(200) == 0 ? value(depth) : object(depth)) + blanks();
        }
        return text + "]" + blanks();
    }

    // The text with a few bytes taken away, changed, doubled or moved.
    QByteArray damaged(QByteArray text)
    {
        for (int changes = 1 + below(3); changes > 0 && !text.isEmpty(); --changes) {
            const int at = below(text.size());
            const int length = 1 + below(std::min(text.size() - at, 12));
            switch (below(5)) {
            case 0:
                text.remove(at, length);
                break;
            case 1:
                text.insert(at, one({",", "[", "]", "{", "}", "\"", "\\", ":", ",]", "[]", "{}", ",,", "1",
                                     "\xEF\xBB\xBF"}));
                break;
            case 2:
                text[at] = static_cast<char>(below(256));
                break;
            case 3:
                text.insert(below(text.size()), text.mid(at, length));
                break;
            default:
                text.truncate(at);
            }
        }
        return text;
    }

    int below(int bound) { return static_cast<int>(m_random() % static_cast<unsigned>(bound)); }

private:
    QByteArray one(const QList<QByteArray>& choices) { return choices.at(below(choices.size())); }
    QByteArray blanks() { return one({"", "", "", "", " ", "\n", "\t\r\n  "}); }

    QByteArray value(int depth)
    {
        switch (below(depth > 0 ? 6 : 4)) {
        case 0:
            return one(
                {"0", "-0", "12", "-7", "1.5", "1e3", "1E-300", "9007199254740993", "12345678901234567890"});
        case 1:
            return one({"true", "false", "null"});
        case 2:
        case 3:
            return text();
        case 4:
            return array(below(3), depth - 1).trimmed();
        default:
            return object(depth - 1);
        }
    }

    QByteArray object(int depth)
    {
        // No key comes twice: Qt 5.15 leaks what it loses then, and the leak checker would say so.
        QByteArray members;
        const int count = below(4);
        for (int i = 0; i < count; ++i) {
            members += (i > 0 ? "," : "") + blanks() + "\"k" + QByteArray::number(i) + "\"" + blanks() + ":" +
                       blanks() + value(depth) + blanks();
        }
        return "{" + members + "}";
    }

    QByteArray text()
    {
        return one({R"("")", R"("A")", R"("]")", R"("},{")", R"("},{\"k0\":1")", R"(",{\"k0\"")", R"("\\")",
                    R"("\\\"")", R"("\u00e9\ud83d\ude00")", "\"\xC3\xA9\xF0\x9F\x98\x80\"",
                    R"("/\/\b\f\n\r\t")", R"("[[[[")"});
    }

    std::mt19937 m_random;
};

} // namespace

TEST(ParallelJson, JoinsThePiecesInTheirOrder)
{
    const QByteArray text = points(500);
    for (const int threads : {1, 2, 3, 8}) {
        for (const int pieceSize : {1, 100, 1000, text.size() / 2, text.size() - 200}) {
            const QJsonArray elements = parseJsonPieces(text, {0, pieceSize, threads});
            ASSERT_EQ(elements.size(), 500) << threads << " threads, pieces of " << pieceSize;
            EXPECT_EQ(QJsonDocument(elements), QJsonDocument::fromJson(text));
            EXPECT_EQ(elements.at(499).toObject().value(QLatin1String("_id")).toString(),
                      QLatin1String("499"));
        }
    }
}

TEST(ParallelJson, SharesALargeReplyOutAsItStands)
{
    const QByteArray text = points(8000);
    ASSERT_GT(text.size(), JsonSharing().smallestText);
    EXPECT_EQ(parseJsonPieces(text, JsonSharing()).size(), 8000);
    expectSame(text, JsonSharing());
    expectSame(text.left(text.size() - 1), JsonSharing());
}

TEST(ParallelJson, CutsBetweenElementsWhateverStandsAroundTheComma)
{
    for (const char* text : {
             R"([{"a":1},{"a":2},{"a":3}])",
             "\n[\n  {\n    \"a\": 1\n  },\n  {\n    \"a\": 2\n  }\n]\n",
             R"([{"a": 1}, {"a": 2}, {"a": 3}])",
             R"([ {"a":1} , {"a":2} , {"a":3} ] )",
             R"([{"a":1},{},{"a":2},{}])",
             R"([{"":1},{"":2}])",
             R"([{"b":[1,2]},{"a":{"b":1}},{"b":[{"a":1}]}])",
             R"([{"a":"},{\"a\":1"},{"a":",{\"a\":2"}])",
             R"([{"é":1},{"é":2}])",
             R"([{"a\"":1},{"a\"":2}])",
         }) {
        EXPECT_FALSE(parseJsonPieces(text, everywhere).isEmpty()) << text;
        expectSame(text);
    }
}

TEST(ParallelJson, ParsesInOnePieceWhatCannotBeCut)
{
    for (const char* text : {"",
                             " ",
                             "[]",
                             "[ ]",
                             "{}",
                             "1",
                             "\"x\"",
                             "null",
                             "[1,2,3]",
                             "[{}]",
                             "[{},{}]",
                             R"([{"a":1}])",
                             R"({"a":[{"a":1},{"a":2}]})",
                             R"([["a",1],["a",2]])",
                             "[",
                             "[{",
                             R"([{")",
                             R"([{"a)",
                             R"([{"a")",
                             R"([{"a":1})",
                             R"([{"a":1},)",
                             "\xEF\xBB\xBF[{\"a\":1},{\"a\":2}]",
                             R"([{"a":1},{"b":2}])",
                             R"([{"a":1},9007199254740993,{"a":2}])",
                             R"([{"a":1},{"a":2},"x",true,[5]])"}) {
        EXPECT_TRUE(parseJsonPieces(text, everywhere).isEmpty()) << text;
        expectSame(text);
    }
    expectSame("[{\"" + QByteArray(300, 'k') + "\":1},{\"" + QByteArray(300, 'k') + "\":2}]");
}

// The elements of a list inside an element may begin like the elements themselves.
TEST(ParallelJson, ParsesAnewWhatWasCutInsideAnElement)
{
    for (const char* text : {
             R"([{"a":1,"b":[{"a":2},{"a":3}]},{"a":4}])",
             R"([{"a":[{"a":2},{"a":3},{"a":[{"a":5},{"a":6}]}]},{"a":4}])",
             R"([{"a":1},{"b":[{"c":1},{"a":2}]}])",
         }) {
        EXPECT_TRUE(parseJsonPieces(text, everywhere).isEmpty()) << text;
        expectSame(text);
    }
}

TEST(ParallelJson, FailsWhereTheWholeTextFails)
{
    for (const char* text : {
             R"([{"a":1},{"a":2})",
             R"([{"a":1},{"a":2}]])",
             R"([{"a":1},{"a":2}]x)",
             R"([{"a":1},{"a":2}],)",
             R"([{"a":1},{"a":2}],[{"a":3}])",
             R"([{"a":1}],[{"a":2}])",
             R"([{"a":1},{"a":2},])",
             R"([{"a":1},,{"a":2}])",
             R"([,{"a":1},{"a":2}])",
             R"([{"a":1}{"a":1},{"a":2}])",
             R"([{"a":1},{"a":2}})",
             R"([{"a":1},{"a":tru},{"a":2}])",
             R"([{"a":1},{"a":01},{"a":2}])",
             R"([{"a":1},{"a":1},{"a":"])",
             R"([{"a":1},{"a":"\x"},{"a":2}])",
             R"([{"a":1},{"a":"\ud83d"},{"a":2}])",
             R"([{"a":1},{"a":"\u12"},{"a":2}])",
             "[{\"a\":1},{\"a\":\"\xC3\"},{\"a\":2}]",
             "[{\"a\":1},{\"a\":\"\xC0\x80\"},{\"a\":2}]",
             "[{\"a\":1},\xEF\xBB\xBF{\"a\":1},{\"a\":2}]",
             "[{\"a\":1},\xC2\xA0{\"a\":1},{\"a\":2}]",
             "[{\"a\":1},\f{\"a\":1},{\"a\":2}]",
         }) {
        expectSame(text);
    }
    using namespace std::string_literals;
    for (const std::string& text :
         {"[{\"a\":1},{\"a\":2}]\0"s, "[{\"a\":1},\0{\"a\":2}]"s, "[{\"a\":1},{\"a\":\"\0\"}]"s}) {
        expectSame(QByteArray::fromStdString(text));
    }
}

TEST(ParallelJson, NestsAsDeepAsOneThreadDoes)
{
    const auto nested = [](int depth) {
        const QByteArray element =
            R"({"a":)" + QByteArray("[").repeated(depth) + QByteArray("]").repeated(depth) + "}";
        return "[" + element + "," + element + "," + element + "]";
    };
    EXPECT_EQ(parseJsonPieces(nested(1022), everywhere).size(), 3);
    for (int depth = 1020; depth < 1026; ++depth) {
        expectSame(nested(depth));
    }
}

TEST(ParallelJson, IsEqualForTextsAtRandom)
{
    int cut = 0;
    for (unsigned seed = 0; seed < 2000 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        RandomJson random(seed);
        const QByteArray text = random.array(random.below(30), 3);
        const JsonSharing sharing{0, 1 + random.below(200), 1 + random.below(3)};
        cut += parseJsonPieces(text, sharing).isEmpty() ? 0 : 1;
        expectSame(text, sharing);
    }
    EXPECT_GT(cut, 500);
}

TEST(ParallelJson, IsEqualForDamagedTextsAtRandom)
{
    for (unsigned seed = 0; seed < 4000 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        RandomJson random(seed);
        const QByteArray text = random.damaged(random.array(2 + random.below(10), 2));
        expectSame(text, {0, 1 + random.below(60), 2});
    }
}

#ifdef __GLIBC__
TEST(ParallelJson, GoesOnAloneWhenTheSystemHasNoThreadToGive)
{
    pthread_attr_t usual = {};
    pthread_attr_t impossible = {};
    ASSERT_EQ(pthread_getattr_default_np(&usual), 0);
    ASSERT_EQ(pthread_attr_init(&impossible), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&impossible, std::size_t(1) << 60), 0);
    ASSERT_EQ(pthread_setattr_default_np(&impossible), 0);
    EXPECT_EQ(parseJsonPieces(points(100), everywhere).size(), 100);
    EXPECT_EQ(pthread_setattr_default_np(&usual), 0);
    pthread_attr_destroy(&impossible);
    pthread_attr_destroy(&usual);
}
#endif
