// Which fields of a record decide about the kinds of their columns:
//
//   12;"";;NULL;31.12.2026
//   |  |  ||    +- converted first, where the column has a date format
//   |  |  |+- missing, if "NULL" is one of the null values
//   |  |  +- missing: empty without quotes
//   |  +- an empty text: a value
//   +- a value
#include "codecs/csv/record_scan.h"

#include <algorithm>

namespace corvanta::csv {

/// The same rule as in the run: what is null there must not decide a kind here.
inline bool RecordScan::isNull(const Field &field) const
{
    const QByteArrayView text(field.text, field.size);
    const auto isSame = [&](const QByteArray &null) { return null == text; };
    return !field.isQuoted && (text.isEmpty() || std::ranges::any_of(m_rules.nullValues, isSame));
}

inline std::string_view RecordScan::valueOf(size_t column, const Field &field) const
{
    const bool isConverted = column < m_rules.values.size() && m_rules.values[column];
    return isConverted ? m_rules.values[column](field.view()) : field.view();
}

bool RecordScan::add(const RecordReader &reader)
{
    const std::span<const Field> fields = reader.fields();
    if (fields.size() != m_scans.size()) {
        const bool isEmptyLine = fields.size() == 1 && fields[0].size == 0 && !fields[0].isQuoted;
        if (isEmptyLine || !m_rules.fillsRagged) {
            return isEmptyLine;
        }
    }
    ++m_rows;
    const auto place = [&] {
        return QStringLiteral("row %1 (line %2)")
            .arg(QString::number(m_rows), QString::number(reader.line()));
    };
    for (size_t i = 0; i < std::min(fields.size(), m_scans.size()); ++i) {
        if (!m_scans[i].isDecided() && !isNull(fields[i])) {
            m_scans[i].add(valueOf(i, fields[i]), place, m_rules.decimalPoint);
        }
    }
    return true;
}

/// A fault ends the scan without a message; the run that follows reports it.
bool RecordScan::addAll(RecordReader &reader, qint64 rows)
{
    while (m_rows < rows) {
        const auto found = reader.next();
        if (!found || !*found) {
            return static_cast<bool>(found);
        }
        if (!add(reader)) {
            return false;
        }
    }
    return false;
}

} // namespace corvanta::csv
