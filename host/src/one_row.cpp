// Access to the cells of a row.
//
// A row has one of two forms. A view (m_view) refers to a row of a batch, which it keeps alive;
// copying it copies no cells. Any other row has pointers of its own (m_own), null for missing
// cells. A change turns a view into the second form first.
#include "corvanta/one_row.h"

#include "base/number_cell.h"
#include "engine/row_batch.h"

#include <algorithm>
#include <limits>

using namespace corvanta;

namespace {

/// Sets the optional result of a conversion.
void setOk(bool *ok, bool value)
{
    if (ok != nullptr) {
        *ok = value;
    }
}

/// The schema of a row that is not described yet; shared, so that m_schema is never null.
const std::shared_ptr<const TableSchema> &noColumns()
{
    static const auto schema = std::make_shared<const TableSchema>();
    return schema;
}

/// Shrinks or grows a list. QList::resize() does not check for memory when it copies a shared list
/// that does not grow; append() does.
template <class T> void setSize(QVector<T> *list, qsizetype n)
{
    QVector<T> sized;
    for (qsizetype i = 0; i < std::min(n, list->size()); ++i) {
        sized.append(list->at(i));
    }
    sized.resize(n);
    list->swap(sized);
}

} // namespace

OneRow::OneRow()
    : m_schema(noColumns())
{
}

/// The text of a number, formatted into m_numberText.
int OneRow::numberText(int i, const unsigned short **out) const
{
    const int n = cell::putNumberText(getMetaType(i).cellType(), m_cells[i], m_numberText.data());
    *out = n == 0 ? nullptr : reinterpret_cast<const unsigned short *>(m_numberText.data());
    return n;
}

int OneRow::col(int i, const unsigned short **out) const
{
    if (m_schema->types[i].type() != MetaInfo::Unknown) {
        return numberText(i, out);
    }
    const cell::Text text = cell::readText(m_cells[i]);
    *out = text.isMissing() ? nullptr : reinterpret_cast<const unsigned short *>(text.data());
    return static_cast<int>(text.size());
}

QString OneRow::col(int i, unsigned short *) const
{
    return text(i);
}

QString OneRow::text(int i) const
{
    const unsigned short *units = nullptr;
    const int n = col(i, &units);
    // Not fromUtf16(), which takes a byte-order mark off the start of the text.
    return units == nullptr ? QString() : QString(reinterpret_cast<const QChar *>(units), n);
}

double OneRow::colAsDouble(int i, bool *ok) const
{
    double value = cell::missingDouble(); // the result for a missing cell or a text
    switch (m_schema->types[i].type()) {
    case MetaInfo::Float:
        value = loadNative<double>(m_cells[i]);
        setOk(ok, !cell::isMissingDouble(value));
        return value;
    case MetaInfo::Key: {
        const auto key = loadNative<quint32>(m_cells[i]);
        setOk(ok, !cell::isMissingKey(key));
        return cell::isMissingKey(key) ? value : key;
    }
    case MetaInfo::Unknown:
        setOk(ok, parseDouble(cell::readText(m_cells[i]).view(), &value));
        break;
    }
    return value;
}

unsigned int OneRow::colAsKey(int i, bool *ok) const
{
    quint32 key = cell::kMissingKey;
    switch (m_schema->types[i].type()) {
    case MetaInfo::Key:
        key = loadNative<quint32>(m_cells[i]);
        setOk(ok, !cell::isMissingKey(key));
        break;
    case MetaInfo::Float: {
        const auto value = loadNative<double>(m_cells[i]);
        // A double is a key if it is an integer in the range of keys.
        const bool whole = value >= 0 && value <= std::numeric_limits<quint32>::max() &&
                           value == static_cast<double>(static_cast<quint32>(value));
        key = whole ? static_cast<quint32>(value) : key;
        setOk(ok, whole);
        break;
    }
    case MetaInfo::Unknown: {
        quint64 value = key;
        setOk(ok, parseUInt(cell::readText(m_cells[i]).view(), std::numeric_limits<quint32>::max(),
                            &value));
        key = static_cast<quint32>(value);
        break;
    }
    }
    return key;
}

QString OneRow::colForHash(int i) const
{
    // 1 as a key, 1.0 as a double and "1.00" as a text are one number and need one text.
    bool isNumber = false;
    const double value = colAsDouble(i, &isNumber);
    return isNumber ? shortestText(value) : text(i);
}

int OneRow::getIndexOfColumn(const QString &name) const
{
    return static_cast<int>(m_schema->names.indexOf(name));
}

TableSchema &OneRow::changeSchema()
{
    ownCells();
    // Copy: batches that were sent share the old schema.
    const auto copy = std::make_shared<TableSchema>(*m_schema);
    m_schema = copy;
    return *copy;
}

/// New columns have missing cells.
void OneRow::setNumberOfColumns(int n)
{
    TableSchema &schema = changeSchema();
    setSize(&schema.names, n);
    setSize(&schema.types, n);
    m_own.resize(static_cast<size_t>(n), nullptr);
    m_cells = m_own.data(); // resize() may have moved them
}

void OneRow::setColName(int i, const QString &name)
{
    changeSchema().names[i] = name;
}

void OneRow::setColName(const QVector<QString> &names)
{
    if (names.size() != numberOfColumns()) {
        setNumberOfColumns(static_cast<int>(names.size()));
    }
    changeSchema().names = names;
}

void OneRow::setMetaType(int i, const MetaInfo &type)
{
    changeSchema().types[i] = type;
}

void OneRow::setMetaData(const QVector<MetaInfo> &types)
{
    if (types.size() != numberOfColumns()) {
        setNumberOfColumns(static_cast<int>(types.size()));
    }
    changeSchema().types = types;
}

void OneRow::setSortInfos(const QVector<SortInfos> &sortedOn)
{
    changeSchema().sortedOn = sortedOn;
}

void OneRow::copySchemaFrom(const OneRow *row)
{
    // Sharing the schema keeps batches together: a batch ends when the schema pointer changes.
    m_schema = row->m_schema;
    m_view = false;
    m_batch.reset();
    m_own.assign(static_cast<size_t>(row->numberOfColumns()), nullptr);
    m_cells = m_own.data();
}

void OneRow::copyFrom(const OneRow *row)
{
    // Views of the same batch share its schema, so only the position changes.
    if (row->m_view) {
        if (m_batch != row->m_batch || m_schema != row->m_schema) {
            copySchemaFrom(row);
            m_batch = row->m_batch;
        }
        m_view = true;
        m_cells = row->m_cells;
        m_rowInBatch = row->m_rowInBatch;
        return;
    }
    // The cells of a row without a batch are shared too; they must stay valid until this row is
    // sent.
    copySchemaFrom(row);
    std::copy_n(row->m_cells, row->numberOfColumns(), m_own.begin());
}

/// Turns a view into a row with its own pointers to the same cells.
void OneRow::ownCells()
{
    if (m_view) {
        m_own.assign(m_cells, m_cells + numberOfColumns());
        m_view = false;
        m_cells = m_own.data();
    }
}

/// Makes all cells missing.
void OneRow::clearCells()
{
    m_view = false;
    m_own.assign(static_cast<size_t>(numberOfColumns()), nullptr);
    m_cells = m_own.data();
}

const unsigned char *OneRow::missingCell(int i) const
{
    switch (m_schema->types[i].type()) {
    case MetaInfo::Key:
        return cell::missingKeyCell();
    case MetaInfo::Float:
        return cell::missingDoubleCell();
    case MetaInfo::Unknown:
        break;
    }
    return cell::missingTextCell();
}
