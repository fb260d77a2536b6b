// How kinds join; everything else becomes Text, and so do date-times with and without a zone:
//
//   Integer -> Decimal        Date -> DateTime        Boolean        Time
//
// A column that is not Text has cells of numbers only if each number is exact: K for integers that
// fit, else F.
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

bool ColumnScan::append(const ColumnScan &later)
{
    if (m_isText || !later.m_hasValues) {
        return true;
    }
    const std::optional<Kind> kind = m_hasValues ? joined(m_kind, later.m_kind) : later.m_kind;
    const bool isOtherZone = m_hasValues && m_isUtc != later.m_isUtc;
    if (later.m_isText || (m_isExact && !later.m_isExact) || !kind || isOtherZone) {
        return false;
    }
    m_kind = *kind;
    m_hasValues = true;
    m_isUtc = later.m_isUtc;
    m_isKey = m_isKey && later.m_isKey;
    return true;
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
        return {Kind::Text, 'U', m_exception, m_exceptionPlace, m_before, m_isUtc};
    }
    const bool isNumber = m_kind == Kind::Integer || m_kind == Kind::Decimal;
    if (!isNumber || !m_isExact) {
        return {m_kind, 'U', m_exception, m_exceptionPlace, m_before, m_isUtc};
    }
    return {m_kind, m_kind == Kind::Integer && m_isKey ? 'K' : 'F', {}, {}, Kind::Text};
}

} // namespace corvanta::values
