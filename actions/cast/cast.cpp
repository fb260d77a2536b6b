// Cells of other columns are passed on; those of a changed column are made in the arena of the
// output pin. Without a change of a type, rows are passed on as a whole.
#include "actions/cast/cast.h"

#include "actions/shared/params/list_problems.h"
#include "base/counted.h"
#include "base/number_cell.h"

#include <QCoreApplication>

#include <cmath>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// A column and its letter; the letter is after the last sign.
std::optional<shared::Assignment> assignedType(const QString &text)
{
    const qsizetype sign = text.lastIndexOf(u'=');
    const QString letter = text.mid(sign + 1);
    const bool isType = letter == "K"_L1 || letter == "F"_L1 || letter == "U"_L1;
    return sign >= 0 && isType ? std::optional(shared::Assignment{text.left(sign), letter})
                               : std::nullopt;
}

/// The letter is K, F or U: assignedType() has checked it.
cell::Type typeOfLetter(const QString &letter)
{
    return static_cast<cell::Type>(letter[0].toLatin1());
}

/// The fewest digits that give the same number again.
const uchar *textOfNumber(cell::Type from, const uchar *bytes, RowBuffer *buffer)
{
    std::array<char16_t, kNumberChars> text{};
    const int n = cell::putNumberText(from, bytes, text.data());
    return n == 0 ? cell::missingTextCell() : textCell(buffer, text.data(), n);
}

/// The number of a cell. Returns false if it is missing, and sets `*ok` to false for a text that is
/// not a number or too large for a double.
bool numberOf(cell::Type from, const uchar *bytes, double *value, bool *ok)
{
    switch (from) {
    case cell::Type::Key: {
        const auto key = loadNative<quint32>(bytes);
        *value = key;
        return !cell::isMissingKey(key);
    }
    case cell::Type::Double:
        *value = loadNative<double>(bytes);
        return !cell::isMissingDouble(*value);
    case cell::Type::Text:
        break;
    }
    const cell::Text text = cell::readText(bytes);
    if (text.isMissing()) {
        return false;
    }
    const auto hasDigits = [&] {
        return text.view().find_first_of(u"0123456789") != text.view().npos;
    };
    *ok = parseDouble(text.view(), value) && !(std::isinf(*value) && hasDigits());
    return true;
}

} // namespace

ActionCast::ActionCast(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kCastEntry, saved, parameters)
{
}

QVector<ParameterProblem> ActionCast::problems() const
{
    return listProblems(
        u"types"_s, m_params.types, assignedType,
        QCoreApplication::translate(
            "Problems", "'%1' is not a column and a type (K, F, U), for example price=F"));
}

void ActionCast::start()
{
    RowTransform::start();
    m_changes.clear();
    m_lost.reset();
}

/// The columns are known only here, because they may come from a
/// file that an earlier action writes.
bool ActionCast::begin(const OneRow &columns)
{
    OneRow *const out = getOutputRowForOutputPin(0);
    out->copySchemaFrom(&columns);
    shared::Assigned assigned;
    for (const QString &text : m_params.types) {
        if (!addChange(columns, text, &assigned)) {
            return false;
        }
    }
    // Not setMetaType(): a Qt list that is shared does not check the memory for its copy.
    QVector<MetaInfo> types;
    for (const MetaInfo &type : columns.schema().types) {
        types << type;
    }
    for (const Change &change : m_changes) {
        types[change.column] = MetaInfo(change.to);
    }
    out->setMetaData(types);
    return true;
}

/// A column that has the type already is left alone.
bool ActionCast::addChange(const OneRow &columns, const QString &text, shared::Assigned *assigned)
{
    const auto type = assignedType(text);
    if (!type) {
        return fail(
            u"Error: cast: '%1' is not a column and a type (K, F, U), for example price=F\n"_s.arg(
                text));
    }
    const int column = requireColumn(columns.schema(), type->column);
    if (column < 0 || !shared::assign(this, "types", *type, assigned)) {
        return false;
    }
    const cell::Type from = columns.getMetaType(column).cellType();
    const cell::Type to = typeOfLetter(type->value);
    if (from != to) {
        m_changes.push_back({column, from, to});
    }
    return true;
}

/// Without changes the row is passed on as it is.
bool ActionCast::takeRow(const OneRow &row)
{
    OneRow *const out = getOutputRowForOutputPin(0);
    if (m_changes.empty()) {
        out->copyFrom(&row);
        setRowReadyForOutput(0);
        return true;
    }
    const RowView view = row.view();
    for (int i = 0; i < view.columns; ++i) {
        out->setCol(i, view.cells[i]);
    }
    for (const Change &change : m_changes) {
        if (!putChanged(change, row, out)) {
            return false;
        }
    }
    setRowReadyForOutput(0);
    return true;
}

/// Sets the cell of a changed column. A missing cell stays missing in every type.
bool ActionCast::putChanged(const Change &change, const OneRow &row, OneRow *out)
{
    RowBuffer *const buffer = bufferForOutputPin(0);
    const uchar *const bytes = row.view().cells[change.column];
    if (change.to == cell::Type::Text) {
        out->setCol(change.column, textOfNumber(change.from, bytes, buffer));
        return true;
    }
    double value = 0;
    bool isNumber = true;
    out->setCol(change.column, nullptr);
    if (!numberOf(change.from, bytes, &value, &isNumber)) {
        return true;
    }
    if (!isNumber || (change.to == cell::Type::Key && !cell::isKey(value))) {
        return reportValue(change, row);
    }
    out->setCol(change.column, change.to == cell::Type::Key
                                   ? keyCell(buffer, static_cast<quint32>(value))
                                   : doubleCell(buffer, value));
    return true;
}

/// A value that does not fit: an error with its place, or one more for the warning at the end.
bool ActionCast::reportValue(const Change &change, const OneRow &row)
{
    const auto place = [&] {
        return u"row %1, column '%2': '%3'"_s.arg(
            QString::number(rowNumber()), row.colName(change.column), row.text(change.column));
    };
    if (m_params.onError == CastError::Missing) {
        m_lost.add(place);
        return true;
    }
    const QString type =
        change.to == cell::Type::Key ? u"a whole number from 0 to 4294967293"_s : u"a number"_s;
    return fail(
        u"Error: cast: %1 is not %2; onError='1' makes such values missing\n"_s.arg(place(), type));
}

/// One warning for the whole table: a file may have a bad value in every row.
bool ActionCast::endInput()
{
    if (m_lost.any()) {
        warn(
            u"Warning: cast: %1 became missing, because the types of their columns do not have them; the first is %2\n"_s
                .arg(counted(m_lost.count(), u"value"_s), m_lost.first()));
    }
    return true;
}

} // namespace corvanta
