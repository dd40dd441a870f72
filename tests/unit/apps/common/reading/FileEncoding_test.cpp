#include "reading/FileEncoding.h"

#include "Text.h"

#include <gmock/gmock.h>

// Files in the encodings that programs of different countries and times save.

namespace {

const QByteArray chinese = "\xe6\xb5\x8b\xe7\x82\xb9,\xe6\x97\xb6\xe9\x97\xb4\nW1\n";

std::string problemOf(const QByteArray& content, std::optional<FileEncoding> encoding = {})
{
    const FileText text = readFileText(content, encoding);
    return text.problem.isEmpty() ? "none" : text.problem.toStdString() + " " + std::to_string(text.line);
}

} // namespace

TEST(FileEncoding, IsUtf8UnlessAMarkSaysOtherwise)
{
    EXPECT_EQ(readFileText("W1,\xc3\xa4", {}).utf8, "W1,\xc3\xa4");
    EXPECT_EQ(readFileText("\xef\xbb\xbfW1", {}).utf8, "W1");
    const FileText little = readFileText(QByteArray("\xff\xfeW\0"
                                                    "1\0",
                                                    6),
                                         {});
    EXPECT_EQ(little.utf8, "W1");
    EXPECT_EQ(little.encoding, FileEncoding::Utf16LittleEndian);
    EXPECT_EQ(readFileText(QByteArray("\xfe\xff\0W\0"
                                      "1",
                                      6),
                           {})
                  .utf8,
              "W1");
}

TEST(FileEncoding, WhatIsWrittenInOneIsReadInIt)
{
    for (const FileEncoding encoding : {FileEncoding::Utf8, FileEncoding::Utf16LittleEndian,
                                        FileEncoding::Utf16BigEndian, FileEncoding::Gb18030}) {
        const QByteArray bytes = bytesOf(chinese, encoding);
        EXPECT_EQ(readFileText(bytes, encoding).utf8, chinese) << nameOf(encoding).toStdString();
        EXPECT_EQ(problemOf(bytes, encoding), "none");
    }
    EXPECT_EQ(bytesOf("\xe6\xb5\x8b", FileEncoding::Gb18030), "\xb2\xe2");
    EXPECT_EQ(readFileText("\xb2\xe2", FileEncoding::Gb18030).utf8, "\xe6\xb5\x8b");
    EXPECT_EQ(readFileText("H\xf6he \x80", FileEncoding::Windows1252).utf8, "H\xc3\xb6he \xe2\x82\xac");
}

TEST(FileEncoding, BytesThatMeanNothingAreNamedByTheirLine)
{
    EXPECT_EQ(problemOf("a\nb\nc\xff", FileEncoding::Gb18030), "the text is not GB18030 3");
    EXPECT_EQ(problemOf("a\nb\x81", FileEncoding::Windows1252), "the text is not WINDOWS-1252 2");
    EXPECT_EQ(problemOf(QByteArray("\xff\xfe"
                                   "a\0\n\0b",
                                   7)),
              "the text is not UTF-16LE 2");
    EXPECT_EQ(problemOf(QByteArray("\xff\xfe"
                                   "a\0\n\0\x3d\xd8"
                                   "b\0",
                                   10)),
              "the text is not UTF-16LE 2");
    EXPECT_EQ(problemOf(QByteArray("a\nb\0", 4)), "the file is not UTF-8 text (UTF-16?) 2");
}

TEST(FileEncoding, NamesTheEncodingsThatReadAText)
{
    EXPECT_THAT(encodingsThatRead("H\xc3\xb6he"),
                testing::ElementsAre("utf-8"_q, "gb18030"_q, "windows-1252"_q));
    EXPECT_THAT(encodingsThatRead("\xb2\xe2\xb5\xe3"), testing::ElementsAre("gb18030"_q, "windows-1252"_q));
    EXPECT_THAT(encodingsThatRead("H\xf6\xff"), testing::ElementsAre("windows-1252"_q));
    EXPECT_THAT(encodingsThatRead(QByteArray("W\0"
                                             "1\0",
                                             4)),
                testing::Contains("utf-16le"_q));
}

TEST(FileEncoding, IsChosenByName)
{
    EXPECT_EQ(encodingNamed("GB18030"_q), FileEncoding::Gb18030);
    EXPECT_EQ(encodingNamed("latin"_q), std::nullopt);
    for (const QString& name : encodingNames()) {
        EXPECT_EQ(nameOf(*encodingNamed(name)), name);
    }
}
