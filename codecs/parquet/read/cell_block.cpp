// Converts PLAIN values (parquet-format, Encodings.md, section "Plain") to cells (base/cell.h):
//
//   stored                  bytes  order
//   BOOLEAN                     1  already unpacked from bits, 0 or 1
//   INT32, FLOAT                4  little-endian
//   INT64, DOUBLE               8  little-endian
//   INT96                      12  little-endian
//   BYTE_ARRAY                     the bytes; their length has been removed
//   FIXED_LEN_BYTE_ARRAY           column.valueBytes bytes
//
// The loops run once per value and have no branch that depends on the column inside.
#include "codecs/parquet/read/cell_block.h"

#include "base/bytes.h"
#include "base/utf.h"
#include "codecs/parquet/read/logical_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

namespace corvanta::parquet {

namespace {

/// Room before the units of a text cell: the longest length code.
constexpr size_t kLengthRoom = 4;
/// Texts of fewer units have a length code of one byte.
constexpr qsizetype kShortText = 126;

/// Writes adjacent text cells, with their units at even addresses.
class TextCells
{
public:
    /// Reserves memory for `values` cells with a total of at most `units` units.
    TextCells(CellBlock &block, size_t values, size_t units)
        : m_at(block.arena.room(values * kLengthRoom + units * 2))
    {
        block.texts.resize(values);
    }

    /// Append a cell. `convert` writes at most `maxUnits` units to the given address and returns
    /// their number.
    template <class Convert> const uchar *add(qsizetype maxUnits, Convert &&convert)
    {
        // The length of the code is known only after the conversion. It ends where the units begin.
        uchar *const units = m_at + (maxUnits < kShortText ? 2 : kLengthRoom);
        const qsizetype count = convert(reinterpret_cast<char16_t *>(units));
        const quint32 code = cell::codeOfText(count);
        const int lengthBytes = cell::lengthBytes(code);
        cell::putLength(units - lengthBytes, code, lengthBytes);
        m_at = units + count * 2;
        return units - lengthBytes;
    }

private:
    uchar *m_at;
};

/// Number of bytes before the trailing zeros.
qsizetype withoutZeros(std::string_view value)
{
    // Kept for saved graphs: "abc" followed by zero bytes reads as "abc", because saved graphs rely
    // on padded texts being equal to unpadded ones
    // (CellBlock.TextsLoseTrailingZerosAndInvalidBytesAreLatin1).
    const size_t last = value.find_last_not_of('\0');
    return last == std::string_view::npos ? 0 : static_cast<qsizetype>(last) + 1;
}

void convertTexts(std::span<const std::string_view> values, CellBlock &block)
{
    size_t bytes = 0;
    for (const std::string_view value : values) {
        bytes += value.size();
    }
    TextCells cells(block, values.size(), bytes);
    for (size_t i = 0; i < values.size(); ++i) {
        const qsizetype n = withoutZeros(values[i]);
        qsizetype changed = static_cast<qsizetype>(values[i].size()) - n;
        block.texts[i] = cells.add(n, [&](char16_t *out) {
            return utf8OrLatin1ToUtf16(values[i].data(), n, out, &changed);
        });
        if (changed != 0) [[unlikely]] {
            block.changed.resize(values.size());
            block.changed[i] = 1;
        }
    }
}

/// A decimal with more bytes is not a real number. Its bytes are converted as text.
constexpr size_t kMaxDecimalBytes = 256;

void convertLogical(const Column &column, std::span<const std::string_view> values,
                    CellBlock &block)
{
    size_t units = 0;
    for (const std::string_view value : values) {
        const auto n = static_cast<qsizetype>(value.size());
        units += static_cast<size_t>(std::max(n, maxLogicalChars(column, n)));
    }
    TextCells cells(block, values.size(), units);
    std::vector<char> ascii;
    for (size_t i = 0; i < values.size(); ++i) {
        const auto n = static_cast<qsizetype>(values[i].size());
        if (values[i].size() > kMaxDecimalBytes) {
            block.texts[i] = cells.add(
                n, [&](char16_t *out) { return utf8OrLatin1ToUtf16(values[i].data(), n, out); });
            continue;
        }
        ascii.resize(static_cast<size_t>(maxLogicalChars(column, n)));
        const qsizetype chars = putLogical(column, values[i], ascii.data());
        block.texts[i] =
            cells.add(chars, [&](char16_t *out) { return utf8ToUtf16(ascii.data(), chars, out); });
    }
}

/// The double of a 12-byte value. Reads 13 bytes.
double fromInt96(const uchar *value)
{
    // Kept for saved graphs: the sign is that of the byte after the value, and in a negative value
    // only the low 32 bits of the high part are inverted. Saved graphs compute with these numbers
    // (CellBlock.Int96TakesItsSignFromTheNextByte).
    constexpr double kTwoTo32 = 4294967296.0;
    const auto low = loadLE<qint32>(value);
    const auto high = loadLE<qint64>(value + 4);
    if (value[12] < 0x80) {
        return static_cast<double>(high) * kTwoTo32 + low;
    }
    return -1.0 - static_cast<double>(~static_cast<quint32>(low)) -
           static_cast<double>(high ^ qint64(0xFFFFFFFF)) * kTwoTo32;
}

/// Converts `n` values that are `stride` bytes apart.
template <class From, class Convert>
void convertEach(const uchar *values, int stride, qsizetype n, uchar *out, Convert &&convert)
{
    using To = decltype(convert(From()));
    for (qsizetype i = 0; i < n; ++i) {
        storeNative<To>(convert(loadLE<From>(values + i * stride)),
                        out + i * qsizetype(sizeof(To)));
    }
}

/// 12 bytes per value, the type of old time stamps, become 8.
void convertInt96(const uchar *values, qsizetype n, uchar *out)
{
    for (qsizetype i = 0; i < n; ++i) {
        storeNative(fromInt96(values + i * 12), out + i * 8);
    }
}

/// Choose the loop of a form once per block, so that the loops have no branches.
void convertNumbers(Form form, const uchar *values, qsizetype n, uchar *out)
{
    const auto toKey = [](auto value) { return static_cast<quint32>(value); };
    const auto toDouble = [](auto value) { return static_cast<double>(value); };
    switch (form) {
    case Form::KeyFromBoolean:
        return convertEach<quint8>(values, 1, n, out, toKey);
    case Form::Key32:
        return convertEach<quint32>(values, 4, n, out, toKey);
    case Form::KeyLow32: // the low half of a little-endian number comes first
        return convertEach<quint32>(values, 8, n, out, toKey);
    case Form::DoubleFromInt64:
        return convertEach<qint64>(values, 8, n, out, toDouble);
    case Form::DoubleFromUint64:
        return convertEach<quint64>(values, 8, n, out, toDouble);
    case Form::DoubleFromInt32:
        return convertEach<qint32>(values, 4, n, out, toDouble);
    case Form::DoubleFromUint32:
        return convertEach<quint32>(values, 4, n, out, toDouble);
    case Form::DoubleFromHalf:
        return convertEach<quint16>(values, 2, n, out, fromHalf);
    case Form::DoubleFromFloat:
        return convertEach<float>(values, 4, n, out, toDouble);
    case Form::DoubleFromInt96:
        return convertInt96(values, n, out);
    default:
        return convertEach<double>(values, 8, n, out, toDouble);
    }
}

/// Whether a double holds the number: its bits from the first to the last that is set fit 53 bits.
bool isExact(quint64 number)
{
    constexpr int kSignificantBits = 53;
    return number == 0 || std::bit_width(number) - std::countr_zero(number) <= kSignificantBits;
}

/// Set block.changed to the values for which `isLost` is true. Most blocks have none, and their
/// loop only reads.
template <class From, class IsLost>
void markLost(const uchar *values, qsizetype n, CellBlock &block, IsLost &&isLost)
{
    const auto at = [values](qsizetype i) {
        return loadLE<From>(values + i * qsizetype(sizeof(From)));
    };
    bool isAny = false;
    for (qsizetype i = 0; i < n; ++i) {
        isAny |= isLost(at(i));
    }
    if (isAny) {
        block.changed.resize(static_cast<size_t>(n));
        for (qsizetype i = 0; i < n; ++i) {
            block.changed[static_cast<size_t>(i)] = isLost(at(i)) ? 1 : 0;
        }
    }
}

/// The rounding that every 96-bit number may suffer does not count.
void markInt96(const uchar *values, qsizetype n, CellBlock &block)
{
    constexpr double kRounding = 1e-15;
    for (qsizetype i = 0; i < n; ++i) {
        const uchar *const value = values + i * 12;
        const double stored = static_cast<double>(loadLE<qint64>(value + 4)) * 4294967296.0 +
                              static_cast<double>(loadLE<quint32>(value));
        if (std::abs(fromInt96(value) - stored) > std::abs(stored) * kRounding) {
            block.changed.resize(static_cast<size_t>(n));
            block.changed[static_cast<size_t>(i)] = 1;
        }
    }
}

/// Mark the values that their cells cannot hold, so that the caller can count them.
void markLost(Loss loss, const uchar *values, qsizetype n, CellBlock &block)
{
    switch (loss) {
    case Loss::None:
    case Loss::ChangedText: // convertTexts() marks them
        return;
    case Loss::OtherNumber:
        return markInt96(values, n, block);
    case Loss::NegativeKey:
        return markLost<qint32>(values, n, block, [](qint32 v) { return v < 0; });
    case Loss::MissingKey:
        return markLost<quint32>(values, n, block, cell::isMissingKey);
    case Loss::WideKey: // negative numbers are large ones here
        return markLost<quint64>(values, n, block,
                                 [](quint64 v) { return v >= cell::kMissingKeyOther; });
    case Loss::Rounded:
        return markLost<quint64>(values, n, block,
                                 [](quint64 v) { return !isExact(v >> 63 != 0 ? ~v + 1 : v); });
    case Loss::RoundedUnsigned:
        return markLost<quint64>(values, n, block, [](quint64 v) { return !isExact(v); });
    }
}

/// The cells of booleans that are read as texts. The byte before a length code puts the units at
/// an even address.
class BooleanCells
{
public:
    BooleanCells()
    {
        put(u"false", m_cells[0].data());
        put(u"true", m_cells[1].data());
    }
    const uchar *cell(bool value) const { return m_cells[value ? 1 : 0].data() + 1; }

private:
    static constexpr size_t kBytes = 16;
    static void put(std::u16string_view text, uchar *bytes)
    {
        const auto units = static_cast<qsizetype>(text.size());
        std::memcpy(cell::putLength(bytes + 1, cell::codeOfText(units), 1), text.data(),
                    text.size() * sizeof(char16_t));
    }
    alignas(kBytes) std::array<std::array<uchar, kBytes>, 2> m_cells{};
};

void convertBooleans(const uchar *values, qsizetype n, CellBlock &block)
{
    static const BooleanCells cells;
    block.texts.resize(static_cast<size_t>(n));
    std::transform(values, values + n, block.texts.begin(),
                   [](uchar value) { return cells.cell(value != 0); });
}

/// 0 for texts: their cells have a length of their own.
int cellBytesOf(Form form)
{
    switch (cellTypeOf(form)) {
    case CellType::Key:
        return cell::kKeyBytes;
    case CellType::Double:
        return cell::kDoubleBytes;
    case CellType::Text:
        break;
    }
    return 0;
}

} // namespace

void reserveRows(const Column &column, qsizetype rows, CellBlock &block)
{
    block.rows = 0;
    block.changed.clear();
    block.fixed.room(static_cast<size_t>(rows * cellBytesOf(column.form)));
}

void convertFixed(const Column &column, const uchar *values, qsizetype n, CellBlock &block)
{
    block.rows = n;
    block.cellBytes = cellBytesOf(column.form);
    block.dictionary.reset();
    if (block.cellBytes != 0) {
        const auto bytes = static_cast<size_t>(n * block.cellBytes);
        convertNumbers(column.form, values, n, block.fixed.room(bytes));
        markLost(column.loss, values, n, block);
        return;
    }
    if (column.form == Form::TextBoolean) {
        return convertBooleans(values, n, block);
    }
    std::vector<std::string_view> texts;
    texts.reserve(static_cast<size_t>(n));
    for (qsizetype i = 0; i < n; ++i) {
        texts.emplace_back(reinterpret_cast<const char *>(values) + i * column.valueBytes,
                           static_cast<size_t>(column.valueBytes));
    }
    convertBytes(column, texts, block);
}

void convertBytes(const Column &column, std::span<const std::string_view> values, CellBlock &block)
{
    block.rows = static_cast<qsizetype>(values.size());
    block.cellBytes = 0;
    block.dictionary.reset();
    if (column.form == Form::Text) {
        convertTexts(values, block);
    } else {
        convertLogical(column, values, block);
    }
}

namespace {

/// Copies cells of `Bytes` bytes. A constant size makes each copy one load and one store.
template <size_t Bytes>
void gatherFixed(const uchar *from, std::span<const quint32> indexes, uchar *to)
{
    for (size_t i = 0; i < indexes.size(); ++i) {
        std::memcpy(to + i * Bytes, from + size_t(indexes[i]) * Bytes, Bytes);
    }
}

} // namespace

void gather(const std::shared_ptr<const CellBlock> &dictionary, std::span<const quint32> indexes,
            CellBlock &block)
{
    const size_t n = indexes.size();
    block.rows = static_cast<qsizetype>(n);
    block.cellBytes = dictionary->cellBytes;
    block.dictionary = dictionary;
    if (!dictionary->changed.empty()) {
        block.changed.resize(n);
        gatherFixed<1>(dictionary->changed.data(), indexes, block.changed.data());
    }
    if (block.cellBytes == 0) {
        block.texts.resize(n);
        // Only addresses are copied; block.dictionary keeps the cells alive.
        for (size_t i = 0; i < n; ++i) {
            block.texts[i] = dictionary->texts[indexes[i]];
        }
        return;
    }
    const uchar *const from = dictionary->fixed.data();
    uchar *const to = block.fixed.room(n * static_cast<size_t>(block.cellBytes));
    block.cellBytes == cell::kKeyBytes ? gatherFixed<cell::kKeyBytes>(from, indexes, to)
                                       : gatherFixed<cell::kDoubleBytes>(from, indexes, to);
}

namespace {

/// Distribute the marks over the rows as spreadOverNulls() does with the cells.
void spreadChanged(std::span<const uchar> levels, std::vector<uchar> &changed)
{
    if (changed.empty()) {
        return;
    }
    size_t value = changed.size();
    changed.resize(levels.size());
    for (size_t i = levels.size(); i-- > 0;) {
        changed[i] = levels[i] != 0 ? changed[--value] : uchar(0);
    }
}

} // namespace

// Pages store no bytes for nulls, but a block has a cell in every row.
void spreadOverNulls(const Column &column, std::span<const uchar> levels, CellBlock &block)
{
    // The width is that of the column and not of the block: a block without values still has the
    // width of its last use.
    const auto width = static_cast<size_t>(cellBytesOf(column.form));
    size_t value = static_cast<size_t>(block.rows);
    const size_t rows = levels.size();
    block.cellBytes = static_cast<int>(width);
    block.rows = static_cast<qsizetype>(rows);
    // From the last row to the first, so that no value is overwritten before it has moved.
    if (width == 0) {
        block.texts.resize(rows);
        for (size_t i = rows; i-- > 0;) {
            block.texts[i] = levels[i] != 0 ? block.texts[--value] : cell::missingTextCell();
        }
        return;
    }
    uchar *const cells = block.fixed.data();
    const uchar *const missing =
        width == cell::kKeyBytes ? cell::missingKeyCell() : cell::missingDoubleCell();
    for (size_t i = rows; i-- > 0;) {
        std::memmove(cells + i * width, levels[i] != 0 ? cells + --value * width : missing, width);
    }
    spreadChanged(levels, block.changed);
}

} // namespace corvanta::parquet
