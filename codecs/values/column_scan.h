// Finds the kind that all values of a column have, and the value that makes it a text column.
//
// Memory does not grow with the number of values. Threads: one at a time per object.
#pragma once
#include "codecs/values/value_form.h"

#include <QString>

#include <optional>

namespace corvanta::values {

/// What the values of a column are together. Integers and decimals together are Decimal, dates and
/// date-times without a zone DateTime; all other mixtures are Text, as is a column without values.
struct ColumnResult
{
    Kind kind = Kind::Text;
    /// Of cells that hold all values without loss: K, F or U.
    char letter = 'U';
    /// Of a Text that has values: the first one that is not of the kind of those before it, cut if
    /// it is long, and its place. Of a number in cells of texts, whose format has no types: the
    /// first value that a double does not hold; in files such a column is a text.
    QString exception;
    QString exceptionPlace;
    Kind before = Kind::Text; ///< the kind of the values before it; Text: it is the first value
    bool isUtc = false;       ///< the values, or those before the exception, are times in UTC
};

/// The values of one column, in any order of rows. Missing values are not passed.
class ColumnScan
{
public:
    /// Whether no further value can change the result, so that add() need not be called.
    bool isDecided() const { return m_isText; }

    /// A value of a format without types. `place` returns where it is, for people; it is called at
    /// most twice in the life of the object.
    template <class Place> void add(std::string_view text, Place &&place, char decimalPoint = '.')
    {
        if (!m_isText) {
            const Form form = formOf(text, decimalPoint);
            if (!form.isExact && m_isExact) {
                except(text, place());
            }
            join(form, text, place);
        }
    }

    /// A number of a format that distinguishes numbers from texts: it stays a number, whatever its
    /// digits, but in cells of texts if a double does not hold them.
    template <class Place> void addNumber(std::string_view text, Place &&place)
    {
        if (!m_isText) {
            const Form form = formOf(text);
            const bool isNumber = form.kind == Kind::Integer || form.kind == Kind::Decimal;
            join(isNumber ? form : Form(), text, place);
        }
    }
    /// A boolean of such a format.
    template <class Place> void addBoolean(std::string_view text, Place &&place)
    {
        if (!m_isText) {
            join({Kind::Boolean}, text, place);
        }
    }
    /// A text of such a format: it may be a date or a time, but "12" is not a number.
    template <class Place> void addText(std::string_view text, Place &&place)
    {
        if (!m_isText) {
            const Form form = formOf(text);
            const bool isMoment =
                form.kind == Kind::Date || form.kind == Kind::DateTime || form.kind == Kind::Time;
            join(isMoment ? form : Form(), text, place);
        }
    }

    /// Add the values of another scan of the column, which come after those of this one. Returns
    /// false, and changes nothing, if one of them is an exception to those before it: its place is
    /// not known here, and the values must be added one by one. Values that are there already
    /// change nothing.
    bool append(const ColumnScan &later);

    ColumnResult result() const;

private:
    template <class Place> void join(Form form, std::string_view text, Place &&place)
    {
        if (m_hasValues && form.kind == m_kind && form.isUtc == m_isUtc && m_kind != Kind::Text) {
            m_isKey = m_isKey && form.isKey;
            m_isExact = m_isExact && form.isExact;
            return; // nearly every value
        }
        const std::optional<Kind> kind = m_hasValues ? joined(m_kind, form.kind) : form.kind;
        m_isUtc = m_hasValues ? m_isUtc : form.isUtc;
        m_isKey = m_isKey && form.isKey;
        m_isExact = m_isExact && form.isExact;
        if (!kind || *kind == Kind::Text || form.isUtc != m_isUtc) {
            m_isText = true;
            except(text, place());
        } else {
            m_kind = *kind;
        }
        m_hasValues = true;
    }
    /// The kind of both together; nothing if they have none but Text.
    static std::optional<Kind> joined(Kind a, Kind b)
    {
        return a == b ? std::optional(a) : joinedDifferent(a, b);
    }
    static std::optional<Kind> joinedDifferent(Kind a, Kind b);
    /// The value decides: m_kind is what the values before it are.
    void except(std::string_view text, const QString &place);

    Kind m_kind = Kind::Text;
    bool m_hasValues = false;
    bool m_isText = false;
    bool m_isKey = true;
    bool m_isUtc = false;
    bool m_isExact = true;
    QString m_exception;
    QString m_exceptionPlace;
    Kind m_before = Kind::Text; // the values before the exception
};

} // namespace corvanta::values
