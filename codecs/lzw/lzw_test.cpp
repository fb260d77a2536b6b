// Decodes the output of a simple encoder, in pieces of any size, and rejects damage.
#include "codecs/lzw/lzw_reader.h"

#include <QByteArray>

#include <gtest/gtest.h>

#include <map>
#include <random>

using namespace corvanta;

namespace {

/// A simple encoder that writes a clear code when the table is full.
class Encoder
{
public:
    Encoder(int maxWidth, bool blockMode)
        : m_maxWidth(maxWidth)
        , m_blockMode(blockMode)
        , m_out(QByteArray("\x1F\x9D") + static_cast<char>(maxWidth | (blockMode ? 0x80 : 0)))
    {
        clear();
    }

    QByteArray encode(const QByteArray &bytes)
    {
        std::string current;
        for (const char c : bytes) {
            if (current.empty() || m_table.contains(current + c)) {
                current += c;
                continue;
            }
            put(codeOf(current));
            if (m_next >> m_maxWidth == 0) {
                m_table[current + c] = m_next++;
            } else if (m_blockMode) {
                put(256);
                clear();
            }
            current = c;
        }
        if (!current.empty()) {
            put(codeOf(current));
        }
        flushGroup(false);
        return m_out;
    }

private:
    int codeOf(const std::string &s)
    {
        return s.size() == 1 ? static_cast<uchar>(s[0]) : m_table[s];
    }
    void clear()
    {
        flushGroup(true);
        m_table.clear();
        m_width = 9;
        m_next = m_blockMode ? 257 : 256;
    }
    void put(int code)
    {
        m_group.push_back(code);
        if (m_group.size() == 8) {
            flushGroup(true);
        }
        // The decoder learns an entry one code later than the encoder makes it.
        if (m_next >> m_width != 0 && m_width < m_maxWidth) {
            flushGroup(true);
            ++m_width;
        }
    }
    void flushGroup(bool pad)
    {
        if (m_group.empty()) {
            return;
        }
        QByteArray bytes(m_width, '\0');
        int bit = 0;
        for (const int code : m_group) {
            for (int i = 0; i < m_width; ++i, ++bit) {
                bytes[bit / 8] = static_cast<char>(bytes[bit / 8] | ((code >> i & 1) << bit % 8));
            }
        }
        m_out += pad ? bytes : bytes.first((bit + 7) / 8);
        m_group.clear();
    }

    int m_maxWidth;
    bool m_blockMode;
    QByteArray m_out;
    std::map<std::string, int> m_table;
    std::vector<int> m_group;
    int m_width = 9;
    int m_next = 257;
};

QByteArray sample(size_t n, unsigned seed)
{
    std::mt19937 random(seed);
    QByteArray bytes;
    while (static_cast<size_t>(bytes.size()) < n) {
        bytes +=
            QByteArray(static_cast<qsizetype>(random() % 9), static_cast<char>('a' + random() % 4));
        bytes += static_cast<char>(random());
    }
    return bytes;
}

Result<QByteArray, lzw::Error> decode(const QByteArray &packed, qint64 inPiece, qint64 outPiece)
{
    MemorySource source(packed, inPiece);
    auto reader = lzw::Reader::open(source);
    if (!reader) {
        return reader.fault();
    }
    QByteArray out;
    QByteArray piece(outPiece, '\0');
    while (true) {
        auto got = (*reader)->read(piece.data(), outPiece);
        if (!got) {
            return got.fault();
        }
        if (*got == 0) {
            return out;
        }
        out += piece.first(*got);
    }
}

} // namespace

TEST(Lzw, DecodesEveryWidthAndModeInPiecesOfAnySize)
{
    for (const int width : {9, 10, 12, 16}) {
        for (const bool blockMode : {false, true}) {
            const QByteArray bytes = sample(200'000, static_cast<unsigned>(width));
            const QByteArray packed = Encoder(width, blockMode).encode(bytes);
            for (const auto &[in, out] :
                 {std::pair<qint64, qint64>{-1, 1 << 20}, {1, 4096}, {7, 3}}) {
                auto decoded = decode(packed, in, out);
                ASSERT_TRUE(decoded) << width << blockMode << decoded.fault().detail.toStdString();
                ASSERT_EQ(*decoded, bytes) << width << blockMode;
            }
        }
    }
}

TEST(Lzw, RejectsUnknownVariantsAndInvalidCodes)
{
    struct Case
    {
        QByteArray bytes;
        lzw::Error error;
        const char *detail;
    };
    const Case cases[] = {
        {"", lzw::Error::BadHeader, "it does not start like a .Z file"},
        {"\x1F\x9D", lzw::Error::BadHeader, "it does not start like a .Z file"},
        {"\x1F\x8B\x90", lzw::Error::BadHeader, "it does not start like a .Z file"},
        {"\x1F\x9D\xB0", lzw::Error::BadHeader, "its .Z variant is not known"}, // bit 5
        {"\x1F\x9D\xD0", lzw::Error::BadHeader, "its .Z variant is not known"}, // bit 6
        {"\x1F\x9D\x88", lzw::Error::BadHeader, "its .Z variant is not known"}, // width 8
        {"\x1F\x9D\x91", lzw::Error::BadHeader, "its .Z variant is not known"}, // width 17
        // 511 as the first code
        {"\x1F\x9D\x90\xFF\xFF", lzw::Error::BadCode, "a code in it is not valid"},
        // 'a', then 259 while 257 is next
        {"\x1F\x9D\x90\x61\x06\x02", lzw::Error::BadCode, "a code in it is not valid"},
        {"\x1F\x9D\x90\x61", lzw::Error::EndsInCode, "it ends in the middle of a code"},
    };
    for (const Case &c : cases) {
        auto decoded = decode(c.bytes, -1, 100);
        ASSERT_FALSE(decoded) << c.bytes.toHex().toStdString();
        EXPECT_EQ(decoded.fault().code, c.error) << c.bytes.toHex().toStdString();
        EXPECT_EQ(decoded.fault().detail, QLatin1String(c.detail));
    }
    auto empty = decode("\x1F\x9D\x90", -1, 100);
    EXPECT_TRUE(empty && empty->isEmpty());
}
