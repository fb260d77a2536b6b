// Any bytes as a table and its memo file: both ways to read them give the same rows.
//
// Byte 0: options (1: UTF-8, 2: level 7, 4 to 16: another encoding, 32: a FoxPro memo file, 64: all
// types, 128: ISO values). Bytes 1 and 2: length of the memo file, which comes first; the table
// follows.
#include "base/bytes.h"
#include "codecs/dbf/table_reader.h"

#include <cstdlib>
#include <deque>

using namespace corvanta;
using namespace corvanta::dbf;

namespace {

struct Arena
{
    uchar *alloc(int n)
    {
        blocks.emplace_back(static_cast<size_t>(n) + 1);
        return blocks.back().data() + (n & 1);
    }
    std::deque<std::vector<uchar>> blocks;
};

/// Bit 0: UTF-8; otherwise bits 2 to 4 choose an encoding.
TextDecoder decoderOf(uint8_t options)
{
    if ((options & 1) != 0) {
        return TextDecoder::utf8();
    }
    switch (options / 4 % 8) {
    case 0:
        return TextDecoder::windows1252();
    case 1:
        return TextDecoder::unconverted();
    case 2:
        return TextDecoder::named(QStringLiteral("CP866"));
    case 3:
        return TextDecoder::named(QStringLiteral("GBK"));
    case 4:
        return TextDecoder::named(QStringLiteral("CP850"));
    case 5:
        return TextDecoder::named(QStringLiteral("SHIFT_JIS"));
    case 6:
        return TextDecoder::named(QStringLiteral("EBCDIC-US"));
    default:
        return TextDecoder::named(QStringLiteral("no encoding"));
    }
}

QByteArray read(QByteArrayView table, QByteArrayView memoBytes, uint8_t options,
                MemoFile::Access access, qint64 piece)
{
    constexpr int kMaxRows = 2000;
    const TextDecoder decoder = decoderOf(options);
    MemorySource source(table, piece);
    MemorySource memoSource(memoBytes);
    QByteArray all;
    auto reader = TableReader::open(
        source, decoder, {(options & 2) != 0, (options & 64) != 0, (options & 128) != 0}, piece);
    if (!reader) {
        return all;
    }
    const MemoFormat format =
        (options & 32) != 0 ? MemoFormat::FoxPro : memoFormatOf((*reader)->header());
    MemoFile memo(memoSource, format, access, 1);
    (*reader)->setMemoFile(&memo);
    const auto &columns = (*reader)->columns();
    for (size_t i = 0; i < columns.size(); ++i) {
        all += (*reader)->columnName(i).toUtf8();
    }
    for (int row = 0; row < kMaxRows; ++row) {
        const auto found = (*reader)->next();
        if (!found || *found == TableReader::Item::End) {
            all += found ? "end" : "fault";
            break;
        }
        if (*found == TableReader::Item::DeletedRecord) {
            all += "deleted";
            continue;
        }
        Arena arena;
        for (size_t i = 0; i < columns.size(); ++i) {
            const uchar *const cell = (*reader)->cell(i, arena);
            if (cell != nullptr) {
                all.append(reinterpret_cast<const char *>(cell),
                           cell::bytesOf(columns[i].cell, cell));
            }
        }
    }
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 3) {
        return 0;
    }
    const QByteArrayView rest(data + 3, static_cast<qsizetype>(size) - 3);
    const qsizetype memoBytes = std::min<qsizetype>(loadLE<quint16>(data + 1), rest.size());
    const QByteArrayView memo = rest.first(memoBytes);
    const QByteArrayView table = rest.sliced(memoBytes);
    if (read(table, memo, data[0], MemoFile::Access::Buffered, 3) !=
        read(table, memo, data[0], MemoFile::Access::InMemory, 1 << 20)) {
        std::abort();
    }
    return 0;
}
