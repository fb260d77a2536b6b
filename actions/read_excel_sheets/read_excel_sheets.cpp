// The sheets of one file are listed at a time: the rows of a file are complete before the next file
// is opened.
#include "actions/read_excel_sheets/read_excel_sheets.h"

#include "actions/read_excel_sheets/sheet_names.h"
#include "actions/shared/file_series.h"
#include "base/counted.h"

using namespace Qt::StringLiterals;

namespace corvanta {

ActionReadExcelSheets::ActionReadExcelSheets(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kReadExcelSheetsEntry, saved, parameters)
{
}

QStringList ActionReadExcelSheets::inputs() const
{
    return m_params.fileNameFromPin ? QStringList() : ParamAction::inputs();
}

void ActionReadExcelSheets::start()
{
    m_run = {};
    m_fraction.store(0, std::memory_order_relaxed);
}

/// Describe the columns and find the files. Returns false when there are none.
bool ActionReadExcelSheets::begin()
{
    OneRow *const out = getOutputRowForOutputPin(0);
    out->setNumberOfColumns(2);
    out->setColName(0, u"FileNames"_s);
    out->setColName(1, u"SheetNames"_s);
    out->setMetaType(0, MetaInfo(MetaInfo::Unknown, -1));
    out->setMetaType(1, MetaInfo(MetaInfo::Unknown, -1));
    if (!m_params.fileNameFromPin) {
        m_run.files = namesOfPattern(*this, m_params.fileName);
    } else if (const OneRow *const row = getNextRowFromInPin(0)) {
        m_run.files = {expandFile(row->text(0))};
    }
    return !m_run.files.isEmpty();
}

/// List the sheets of the next file. Returns false after the last one, and when the action must
/// end.
bool ActionReadExcelSheets::openNext()
{
    updateFraction();
    if (++m_run.file >= m_run.files.size() || !runIsGood()) {
        return false;
    }
    auto names = sheetNamesOf(*this, m_run.files[m_run.file]);
    if (!names) {
        warnSkipped();
        return false;
    }
    m_run.names = *std::move(names);
    m_run.name = 0;
    return true;
}

/// A package that cannot be opened ends the action, also before further files.
void ActionReadExcelSheets::warnSkipped()
{
    const qsizetype left = m_run.files.size() - m_run.file - 1;
    if (left > 0 && runIsGood()) {
        warn(u"Warning: %1 after it %2 not listed; the first is '%3'.\n"_s.arg(
            counted(left, u"file"_s), isOrAre(left), m_run.files[m_run.file + 1]));
    }
}

/// One row: the file and the next of its sheets.
void ActionReadExcelSheets::putRow()
{
    RowBuffer *const buffer = bufferForOutputPin(0);
    OneRow *const row = getOutputRowForOutputPin(0);
    row->setCol(0, bytesFromQString(buffer, m_run.files[m_run.file]));
    row->setCol(1, bytesFromQString(buffer, m_run.names[m_run.name++]));
    setRowReadyForOutput(0);
}

/// Advances by whole files.
void ActionReadExcelSheets::updateFraction()
{
    m_fraction.store(static_cast<float>(m_run.file + 1) / static_cast<float>(m_run.files.size()),
                     std::memory_order_relaxed);
}

bool ActionReadExcelSheets::step()
{
    if (!m_run.hasBegun) {
        m_run.hasBegun = true;
        if (!begin()) {
            return false;
        }
    }
    while (!yieldRequested()) {
        if (m_run.name < m_run.names.size()) {
            putRow();
        } else if (!openNext()) {
            return false;
        }
    }
    return true;
}

} // namespace corvanta
