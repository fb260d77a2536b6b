// Decodes the records of a dBase-family table into cells.
//
// Converts bytes to cells; does not use pins or the log. Layout: docs/formats/dbf.md.
// Threads: one thread at a time per object; separate objects are independent.
#pragma once
#include "base/cell.h"
#include "base/occurrences.h"
#include "codecs/dbf/memo_file.h"
#include "codecs/dbf/table_header.h"
#include "codecs/encoding/text_decoder.h"

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

namespace corvanta::dbf {

using encoding::TextDecoder;

/// Facts about a table for warnings. Complete after next() has returned Item::End.
struct Findings
{
    /// Records read, with deleted ones.
    quint64 records = 0;
    /// Memo fields that refer to no valid text, or to a text although there is no memo file. Places
    /// name record and column.
    Occurrences unreadableMemos;
    Occurrences memosWithoutFile;
    /// Logical values and times that are missing because their bytes mean nothing.
    Occurrences badValues;
    /// Texts with bytes that are not valid in the encoding.
    Occurrences badTexts;
    /// The end mark comes before the number of records in the header is reached.
    bool endsBeforeCount = false;
    /// More records follow than the number of records in the header.
    bool hasRecordsAfterCount = false;
};

/// Call open(), setMemoFile() if there is one, then next() and cell() for each record.
class TableReader
{
public:
    /// Read the header of the table that starts at the source's start. `source` and `decoder` must
    /// outlive the reader. Reads records in pieces of about `bufferBytes` bytes. Errors: those of
    /// readTableHeader().
    static Result<std::unique_ptr<TableReader>, Error> open(ByteSource &source,
                                                            const TextDecoder &decoder,
                                                            const TableOptions &options,
                                                            qint64 bufferBytes);

    const TableHeader &header() const { return m_header; }
    /// The fields that become columns, in file order. Fixed after open(); column numbers in the
    /// other calls are indexes of this vector.
    const std::vector<Field> &columns() const { return m_header.fields; }
    /// The decoded name of a column (0-based). Names need not be unique.
    QString columnName(size_t column) const { return m_decoder->decode(columns()[column].name); }

    /// Decode names and texts with another decoder than that of open(). It must outlive the reader.
    void setDecoder(const TextDecoder &decoder) { m_decoder = &decoder; }

    /// Set the file with the texts of memo fields. It must outlive the reader. Without it, all memo
    /// fields are missing.
    void setMemoFile(MemoFile *memo) { m_memo = memo; }

    /// What next() found. A deleted record can be read like any other.
    enum class Item : quint8 { Record, DeletedRecord, End };
    /// Move to the next record, which may be a deleted one: the caller can stop after each.
    /// The cells of the previous record stay valid. Errors: ShortTable, Unreadable.
    Result<Item, Error> next();

    /// The cell of a column (0-based) of the current record. `Arena` has a function alloc(int) that
    /// returns memory with the alignment of a text cell (see base/cell.h). The cell is valid as
    /// long as that memory.
    ///
    /// Returns null if the memo file failed; fault() then has the reason. A pointer and not a
    /// Result because it runs once per cell. Errors: MemoUnreadable, MemoTooLarge.
    template <class Arena> const uchar *cell(size_t column, Arena &arena);
    /// The bytes of the text that cell() would decode, without a copy; nothing if the column is not
    /// a text, or is a memo. Empty: missing. Valid until next().
    std::optional<QByteArrayView> text(size_t column);
    /// Why cell() returned null. Call it only after that.
    const Fault<Error> &fault() const { return *m_fault; }

    /// Facts so far. May be read at any time; see Findings for when they are complete.
    const Findings &findings() const { return m_findings; }

private:
    TableReader(ByteSource &source, const TextDecoder &decoder, TableHeader header,
                qint64 bufferBytes);
    Result<qint64, Error> fill();
    void chooseNumberForm();
    void endOfCount();
    // The file ends before the next record is complete.
    Fault<Error> shortTable() const;
    const char *bytesOf(const Field &field) const { return m_record + field.offset; }

    bool hasNullBit(int bit) const;
    /// Whether the null flags of the record say that the value is missing.
    bool isNull(const Field &field) const
    {
        return field.nullBit >= 0 && hasNullBit(field.nullBit);
    }
    QByteArrayView varyingText(const Field &field) const;
    static QByteArrayView trimmedText(const char *bytes, int n);
    static QByteArrayView trimmedDigits(const char *bytes, int n);
    quint32 logicalKey(const Field &field);
    std::optional<quint32> integerOf(const Field &field) const;
    double doubleOf(const Field &field) const;
    double currencyOf(const Field &field) const;
    // A date and time as the file stores it. The Julian day is a count of days.
    struct Moment
    {
        quint32 julianDay;
        quint32 ms; // since midnight
    };
    Moment momentOf(const char *bytes) const;
    QByteArrayView putTimestamp(const Field &field);
    QByteArrayView numberText(const Field &field);
    QByteArrayView putIsoDate(const Field &field);
    QByteArrayView truthText(const Field &field);
    QString placeOf(const Field &field) const;
    quint32 memoBlock(const Field &field);
    QByteArrayView memoText(const Field &field);

    // Cells in memory of the arena.
    template <class Arena> const uchar *missingCell(CellType type, Arena &arena)
    {
        return type == CellType::Text     ? cell::missingTextCell()
               : type == CellType::Double ? cell::missingDoubleCell()
                                          : numberCell(cell::kMissingKey, arena);
    }
    template <class Arena>
    const uchar *textCell(const Field &field, QByteArrayView bytes, Arena &arena);
    template <class T, class Arena> static const uchar *numberCell(T value, Arena &arena)
    {
        uchar *const room = arena.alloc(sizeof value);
        storeNative(value, room);
        return room;
    }

    ByteSource &m_source;
    const TextDecoder *m_decoder;
    TableHeader m_header;
    MemoFile *m_memo = nullptr;
    std::optional<Fault<Error>> m_fault;
    Findings m_findings;
    bool m_hasSortingNumbers = false; // binary numbers have the big-endian form of dBase 7
    // Bytes of the table. The unread ones are those from m_at to m_end.
    std::vector<char> m_buffer;
    size_t m_at = 0;
    size_t m_end = 0;
    const char *m_record = nullptr; // in m_buffer
    std::array<char, 19> m_text{};  // scratch for the text of a date or time
    std::vector<char16_t> m_units;  // scratch for multi-byte encodings
};

template <class Arena>
const uchar *TableReader::textCell(const Field &field, QByteArrayView bytes, Arena &arena)
{
    if (bytes.isEmpty()) {
        return cell::missingTextCell();
    }
    qsizetype units = bytes.size();
    // In a single-byte encoding the length is known, and the text is decoded into its cell.
    if (!m_decoder->isByteForUnit()) {
        m_units.resize(static_cast<size_t>(bytes.size()) * 2);
        units = m_decoder->decode(bytes.data(), bytes.size(), m_units.data());
        const auto end = m_units.cbegin() + units;
        if (std::find(m_units.cbegin(), end, QChar::ReplacementCharacter) != end) {
            m_findings.badTexts.add([&] { return placeOf(field); });
        }
    }
    const quint32 code = cell::codeOfText(units);
    const int lengthBytes = cell::lengthBytes(code);
    uchar *const room = arena.alloc(static_cast<int>(lengthBytes + units * 2));
    auto *const out = reinterpret_cast<char16_t *>(cell::putLength(room, code, lengthBytes));
    if (m_decoder->isByteForUnit()) {
        m_decoder->decode(bytes.data(), bytes.size(), out);
    } else {
        std::memcpy(out, m_units.data(), static_cast<size_t>(units) * sizeof(char16_t));
    }
    return room;
}

template <class Arena> const uchar *TableReader::cell(size_t column, Arena &arena)
{
    const Field &field = m_header.fields[column];
    if (isNull(field)) {
        return missingCell(field.cell, arena);
    }
    switch (field.conversion) {
    case Conversion::Text:
        return textCell(field, trimmedText(bytesOf(field), field.length), arena);
    case Conversion::Varying:
        return textCell(field, varyingText(field), arena);
    case Conversion::Number:
        return textCell(field, numberText(field), arena);
    case Conversion::Digits:
        return textCell(field, trimmedDigits(bytesOf(field), field.length), arena);
    case Conversion::Memo: {
        const QByteArrayView text = memoText(field);
        return m_fault ? nullptr : textCell(field, text, arena);
    }
    case Conversion::Logical:
        return numberCell(logicalKey(field), arena);
    case Conversion::Integer: {
        const auto value = integerOf(field);
        return value ? numberCell(static_cast<double>(static_cast<qint32>(*value)), arena)
                     : cell::missingDoubleCell();
    }
    case Conversion::Key:
        return numberCell(integerOf(field).value_or(cell::kMissingKey), arena);
    case Conversion::Double:
        return numberCell(doubleOf(field), arena);
    case Conversion::Currency:
        return numberCell(currencyOf(field), arena);
    case Conversion::Timestamp:
    case Conversion::IsoTimestamp:
        return textCell(field, putTimestamp(field), arena);
    case Conversion::IsoDate:
        return textCell(field, putIsoDate(field), arena);
    case Conversion::Truth:
        return textCell(field, truthText(field), arena);
    }
    return nullptr;
}

} // namespace corvanta::dbf
