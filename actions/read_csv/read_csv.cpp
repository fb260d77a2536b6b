// Parameters, files and the declared order; csv_file.h reads one file.
#include "actions/read_csv/read_csv.h"

#include "actions/read_csv/csv_file.h"

using namespace Qt::StringLiterals;

namespace corvanta {

ActionReadCsv::ActionReadCsv(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kReadCsvEntry, saved, parameters)
{
}

bool ActionReadCsv::step()
{
    return (m_series.hasBegun() || prepare()) && m_series.step();
}

bool ActionReadCsv::prepare()
{
    const QVector<ParameterProblem> found = problems();
    if (!found.isEmpty()) {
        return fail(u"Error: readCSV: %1\n"_s.arg(found.first().text));
    }
    m_form = csvFormOf(m_params);
    const QStringList files = m_params.fileNameFromPin ? namesFromPin(*this, 0)
                                                       : namesOfPattern(*this, m_params.fileName);
    if (files.isEmpty()) {
        return runIsGood() && fail(u"Error: readCSV: input pin 0 has no row with a file name\n"_s);
    }
    FileSeries::Options options;
    if (m_params.outputFilenames) {
        options.fileNameColumn = u"_FileNames"_s;
    }
    m_series.start(*this, files, options);
    return m_series.openNext() && declareSortOrder(files.first());
}

/// The order is declared by the user and not checked; actions after this one rely on it.
bool ActionReadCsv::declareSortOrder(const QString &file)
{
    OneRow *const row = getOutputRowForOutputPin(0);
    QVector<SortInfos> sortedOn;
    for (const QString &name : m_params.sortedOn.split(u',', Qt::SkipEmptyParts)) {
        if (row->getIndexOfColumn(name) < 0) {
            return fail(u"Error: readCSV: file '%1' has no column '%2' to be sorted on\n"_s.arg(
                file, name));
        }
        sortedOn << SortInfos{name, true};
    }
    row->setSortInfos(sortedOn);
    return true;
}

FileSeries::Opened ActionReadCsv::openFile(const QString &name)
{
    return CsvFile::open(*this, name, m_form);
}

bool ActionReadCsv::reportMissing(const QString &name)
{
    return fail(u"Error: readCSV: cannot open file '%1' for read\n"_s.arg(name));
}

bool ActionReadCsv::reportMismatch(const ColumnMismatch &mismatch)
{
    return fail(textOf(mismatch, u"CSV"_s, u"readCSV"_s));
}

} // namespace corvanta
