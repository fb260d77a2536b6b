// Tests error texts, Base64, encoding guesses, scans and line counts.
#include "codecs/markup/text/base64.h"
#include "codecs/markup/text/char_class.h"
#include "codecs/markup/text/encoding.h"
#include "codecs/markup/text/line_counter.h"
#include "codecs/markup/text/scan.h"

#include <QString>

#include <gtest/gtest.h>

#include <array>
#include <string>

using namespace corvanta;
using namespace corvanta::markup;

TEST(MarkupError, HasFixedTexts)
{
    const char *const texts[] = {
        "No error",
        "Warning: Unmatched end tag",
        "Warning: No XML/JSON tag found",
        "Error: No XML/JSON data",
        "Error: Unmatched end tag",
        "Error: Unexpected end tag",
        "Error: Unmatched clear tag end",
        "Error: File not found",
        "Error: First Tag not found",
        "Error: Unknown character entity",
        "Error: Character code above 255 is forbidden in MultiByte char mode.",
        "Error: Invalid char in tag name",
        "Error: Invalid char in end tag name",
        "Error: Invalid char at tag end",
        "Error: Invalid char at PI end",
        "Error: Attribute with No Equal Sign",
        "Error: Quote or DoubleQuote expected",
        "Error: Unable to convert between WideChar and MultiByte chars",
        "Error: DOM Max Memory Reached",
        "Error: Memory Allocation error",
        "Error: read stream data",
        "Error: Unable to open file for writing",
        "Error: Cannot write into file",
        "Error: colon (:) character expected",
        "Error: invalid character inside number",
        "Error: 'true' string expected",
        "Error: 'false' string expected",
        "Error: 'null' string expected",
        "Warning: Base64-string length is not a multiple of 4",
        "Error: Base64-string contains an illegal character",
        "Warning: Base64-string is truncated",
        "Error: Base64 decode output buffer is too small",
        "Unknown error",
    };
    for (size_t code = 0; code < std::size(texts); ++code) {
        const auto error = static_cast<MarkupError>(code);
        EXPECT_EQ(QString::fromUtf16(errorText(error)), QLatin1String(texts[code]));
        EXPECT_EQ(isWarning(error),
                  QLatin1String(texts[code]).startsWith(QLatin1String("Warning")));
    }
}

TEST(Base64, DecodesEncodedBytes)
{
    std::array<char, 64> out{};
    for (qsizetype n = 0; n < 20; ++n) {
        const QByteArray bytes = QByteArray("\x00\xff\x10 any carnal pleas", 20).first(n);
        const std::u16string text = QString::fromLatin1(encodeBase64(bytes)).toStdU16String();
        const auto decoded = decodeBase64(text, out);
        ASSERT_TRUE(decoded);
        EXPECT_FALSE(decoded->warning);
        EXPECT_EQ(QByteArray(out.data(), decoded->size), bytes);
    }
}

TEST(Base64, ReportsErrorsAndWarnings)
{
    struct Case
    {
        const char16_t *text;
        MarkupError code;
        qsizetype size;
    };
    std::array<char, 4> out{};
    for (const auto &[text, code, size] :
         {Case{u"QU\r\nJ D", MarkupError::None, 3},
          Case{u"QUI", MarkupError::Base64LengthWarning, 2},
          Case{u"QUJDR", MarkupError::Base64TruncatedWarning, 3},
          Case{u"QU!D", MarkupError::Base64IllegalCharacter, 1},
          Case{u"QQ==QQ==", MarkupError::Base64IllegalCharacter, 1},
          Case{u"QUJDREVG", MarkupError::Base64BufferTooSmall, 4}}) {
        const auto decoded = decodeBase64(text, out);
        const MarkupError found =
            decoded ? decoded->warning.value_or(MarkupError::None) : decoded.fault().code;
        EXPECT_EQ(found, code) << QString::fromUtf16(text).toStdString();
        EXPECT_EQ(decoded ? decoded->size : decoded.fault().offset, size);
    }
}

TEST(Encoding, IsGuessedFromTheFirstBytes)
{
    const QByteArray filler(30, 'x');
    EXPECT_EQ(guessEncoding("<a/>"), "System");
    EXPECT_EQ(guessEncoding("\xef\xbb\xbf" + filler + "\xff"), "UTF-8"); // the mark decides
    EXPECT_EQ(guessEncoding("\xef\xbb\xbf" + filler), "UTF-8");
    EXPECT_EQ(guessEncoding(filler + "\xc3\xa9"), "UTF-8");
    EXPECT_EQ(guessEncoding(filler + "\xe9."), "System");
    EXPECT_EQ(guessEncoding("<?xml encoding = \" ISO-8859-15\"?>" + filler), "ISO-8859-15");
    EXPECT_EQ(guessEncoding("<?xml encoding='UTF-8'?>" + filler), "UTF-8");
    EXPECT_EQ(guessEncoding("<?xml encoding='utf8'?>" + filler + "\xe9."), "ERROR");
    EXPECT_EQ(guessEncoding("<?xml encoding?>" + filler), "UTF-8");
    EXPECT_EQ(guessEncoding(QByteArray("\xff\xfe<\0a\0", 6) + filler), "UTF-16");
    EXPECT_EQ(guessEncoding(QByteArray("\xff\xfe\0\0<\0\0\0", 8) + filler), "UTF-32");
    // An encoding of wider units contradicts a declaration that is read byte by byte.
    EXPECT_EQ(guessEncoding("<?xml encoding='utf-16'?>" + filler), "UTF-8");
    EXPECT_EQ(guessEncoding("<?xml encoding='UCS-2'?>" + filler + "\xe9."), "System");
    EXPECT_EQ(chooseEncoding("<?xml encoding='UTF-16LE'?>" + filler, "auto").contradicted,
              "UTF-16LE");
    EXPECT_TRUE(chooseEncoding("<a>\xc3\xa9</a>", "").isAssumed);
    EXPECT_FALSE(chooseEncoding("<a/>", "").isAssumed);
    EXPECT_FALSE(chooseEncoding("<a>\xe9</a>", "System").isAssumed);
    EXPECT_EQ(guessJSONEncoding("[1]"), CharMode::Utf8);
    EXPECT_EQ(guessJSONEncoding(QByteArrayView("[\0001\0]\0", 6)), CharMode::Utf16);
    EXPECT_EQ(encodingCode("Utf-8"), CharMode::Utf8);
    EXPECT_EQ(encodingCode("SJIS"), CharMode::ShiftJis);
    EXPECT_EQ(encodingCode("gbk"), CharMode::Gbk);
    EXPECT_EQ(encodingCode("ISO-8859-1"), CharMode::CodePage);
}

TEST(Scan, StopsAtTheSameBytesAsTheCharacterClasses)
{
    for (int c = 0; c < 256; ++c) {
        for (qsizetype before = 0; before < 40; before += 13) {
            const auto byte = static_cast<char>(c);
            const QByteArray name = QByteArray(before, 'n') + byte + QByteArray(kReadAhead, 0);
            const QByteArray space = QByteArray(before, ' ') + byte + QByteArray(kReadAhead, 0);
            const qsizetype after = before + 1;
            EXPECT_EQ(skipNameChars(name) - name, isNameChar(byte) ? after : before) << c;
            EXPECT_EQ(skipSpaces(space) - space, isSpace(byte) ? after : before) << c;
        }
    }
}

// All short documents of breaks and letters, in two pieces, against the rule: a break that differs
// from the open one before it completes it, any other ends a line.
TEST(LineCounter, DoesNotDependOnBlockBoundaries)
{
    constexpr int kLength = 7;
    for (int number = 0; number < 2187; ++number) { // 3 to the 7th
        std::string text;
        for (int left = number; text.size() < kLength; left /= 3) {
            text += "\n\rx"[left % 3];
        }
        qint64 line = 1;
        qint64 column = 0;
        char open = 0;
        for (const char c : text) {
            const bool completes = c != 'x' && open != 0 && open != c;
            line += c != 'x' && !completes ? 1 : 0;
            column = c == 'x' ? column + 1 : 0;
            open = c == 'x' || completes ? '\0' : c;
        }
        for (int split = 0; split <= kLength; ++split) {
            LineCounter counter;
            counter.advance(text.data(), split);
            counter.advance(text.data() + split, kLength - split);
            ASSERT_EQ(counter.line(), line) << number << " at " << split;
            ASSERT_EQ(counter.column(), column) << number << " at " << split;
        }
    }
}
