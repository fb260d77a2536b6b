#include "codecs/values/column_scan.h"

namespace corvanta::values {

std::optional<Kind> ColumnScan::joinedDifferent(Kind a, Kind b)
{
    const auto isPair = [&](Kind one, Kind other) {
        return (a == one && b == other) || (a == other && b == one);
    };
    if (isPair(Kind::Integer, Kind::Decimal)) {
        return Kind::Decimal;
    }
    return isPair(Kind::Date, Kind::DateTime) ? std::optional(Kind::DateTime) : std::nullopt;
}

void ColumnScan::except(std::string_view text, const QString &place)
{
    constexpr qsizetype kShownBytes = 240;
    constexpr qsizetype kShownUnits = 60;
    m_before = m_kind;
    const QString shown =
        QString::fromUtf8(text.data(), std::min(static_cast<qsizetype>(text.size()), kShownBytes));
    m_exception =
        shown.size() > kShownUnits ? shown.left(kShownUnits) + QStringLiteral("...") : shown;
    m_exceptionPlace = place;
}

/// Numbers that a double does not hold stay texts, so that no digit is lost.
ColumnResult ColumnScan::result() const
{
    if (m_isText) {
        return {Kind::Text, 'U', m_exception, m_exceptionPlace, m_before};
    }
    const bool isNumber = m_kind == Kind::Integer || m_kind == Kind::Decimal;
    if (!isNumber || !m_isExact) {
        return {m_kind, 'U', m_exception, m_exceptionPlace, m_before};
    }
    return {m_kind, m_kind == Kind::Integer && m_isKey ? 'K' : 'F', {}, {}, Kind::Text};
}

} // namespace corvanta::values
