// The packed form of a row: see table_writer.h.
#include "codecs/sas/row_packer.h"

#include <QStringView>

#include <algorithm>
#include <cmath>

namespace corvanta::sas {

RowPacker::RowPacker(const TextEncoder &encoder, std::vector<PackedColumn> columns)
    : m_encoder(encoder)
    , m_columns(std::move(columns))
    , m_reports(m_columns.size())
    , m_block(kBlockBytes + kBlockBytes / 8) // so that ordinary rows never make it grow
{
}

void RowPacker::grow(size_t bytes)
{
    m_block.resize(std::max(m_block.size() * 2, m_used + bytes));
}

inline void RowPacker::addNumber(double value)
{
    storeNative(value, room(sizeof value));
    m_used += sizeof value;
}

/// Any other NaN would be a special missing value, such as .A, for some readers.
inline void RowPacker::addDouble(size_t column, double value, qint64 row)
{
    const bool isNumber = !std::isnan(value);
    if (!isNumber && !cell::isMissingDouble(value)) [[unlikely]] {
        m_reports[column].notNumbers.add(row);
    }
    addNumber(isNumber ? value : cell::missingDouble());
}

inline void RowPacker::addText(size_t column, const uchar *cell, qint64 row)
{
    const cell::Text text = cell::readText(cell);
    // Encoded in place and cut afterwards: its size is not known before.
    char *const out = room(sizeof(quint32) + TextEncoder::maxBytes(text.size()) + 1);
    char *const bytes = out + sizeof(quint32);
    qint64 replaced = 0;
    const qsizetype whole = m_encoder.encode(text.data(), text.size(), bytes, &replaced);
    ColumnReport &report = m_reports[column];
    report.longest = std::max(report.longest, whole);
    const qsizetype size = m_encoder.fit(bytes, whole, m_columns[column].maxBytes);
    if (size != whole) [[unlikely]] {
        report.cut.add(row);
        m_cut.push_back({column, whole});
    }
    if (replaced != 0) [[unlikely]] {
        report.replaced.add(row, replaced);
    }
    bytes[size] = '\0';
    storeNative(static_cast<quint32>(size), out);
    m_used += sizeof(quint32) + static_cast<size_t>(size) + 1;
}

/// An empty text is a missing date, too.
void RowPacker::addDate(size_t column, const uchar *cell, qint64 row)
{
    const std::u16string_view text = cell::readText(cell).view();
    const auto value = dateValue(text, m_columns[column].date);
    if (!value && !text.empty()) {
        m_reports[column].notDates.add(row);
    } else if (text.ends_with(u'Z')) {
        m_reports[column].zones.add(row);
    }
    addNumber(value.value_or(cell::missingDouble()));
}

/// SAS has no booleans: its own functions return 1 and 0.
void RowPacker::addBoolean(size_t column, const uchar *cell, qint64 row)
{
    const cell::Text text = cell::readText(cell);
    const QStringView word(text.data(), text.size());
    const bool isTrue = word.compare(u"true", Qt::CaseInsensitive) == 0;
    const bool isBoolean = isTrue || word.compare(u"false", Qt::CaseInsensitive) == 0;
    if (!isBoolean && !word.isEmpty()) {
        m_reports[column].notBooleans.add(row);
    }
    addNumber(isBoolean ? double(isTrue) : cell::missingDouble());
}

void RowPacker::add(const uchar *const *cells, qint64 row)
{
    m_cut.clear();
    for (size_t i = 0; i < m_columns.size(); ++i) {
        const uchar *const cell = cells[m_columns[i].input];
        switch (m_columns[i].type) {
        case cell::Type::Key: {
            const auto key = loadNative<quint32>(cell);
            addNumber(cell::isMissingKey(key) ? cell::missingDouble() : key);
            break;
        }
        case cell::Type::Double:
            addDouble(i, loadNative<double>(cell), row);
            break;
        case cell::Type::Text:
            if (m_columns[i].isText()) {
                addText(i, cell, row);
            } else if (m_columns[i].isBoolean) {
                addBoolean(i, cell, row);
            } else {
                addDate(i, cell, row);
            }
            break;
        }
    }
}

} // namespace corvanta::sas
