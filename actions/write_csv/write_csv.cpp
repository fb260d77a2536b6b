// writeCSV: formats rows with codecs/csv and writes them to the target.
#include "actions/write_csv/write_csv.h"

#include "actions/shared/params/csv_separator.h"

using namespace Qt::StringLiterals;

namespace corvanta {

ActionWriteCsv::ActionWriteCsv(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kWriteCsvEntry, saved, parameters)
{
}

/// Rows and columns are not selected, so that only problems of the file occur.
QString ActionWriteCsv::message(WriteProblem problem, const QString &name) const
{
    return problem == WriteProblem::CannotOpen
               ? u"Error: writeCSV: cannot create file '%1'\n"_s.arg(name)
               : u"Error: writeCSV: cannot write file '%1'\n"_s.arg(name);
}

bool ActionWriteCsv::failWriting()
{
    return failWith(WriteProblem::CannotWrite, fileName(), reasonOf(m_target));
}

/// Opens the target and writes the header.
bool ActionWriteCsv::begin(const OneRow &columns)
{
    const QVector<ParameterProblem> found = problems();
    if (!found.isEmpty()) {
        return fail(u"Error: writeCSV: %1\n"_s.arg(found.first().text));
    }
    if (!openTarget()) {
        return false;
    }
    m_writer.emplace(*csvSeparator(m_params.separator),
                     hasCrLf(m_params) ? csv::LineEnd::CrLf : csv::LineEnd::Lf);
    if (m_params.header) {
        m_writer->addNames(columns.view());
    }
    return true;
}

/// The rows are formatted as UTF-8, which needs no encoder.
bool ActionWriteCsv::openTarget()
{
    TargetFile::Options options = targetOptions(fileName());
    options.packing = TargetFile::Packing::ByName;
    if (!m_target.open(fileName(), std::move(options))) {
        return failWith(WriteProblem::CannotOpen, fileName(), reasonOf(m_target));
    }
    if (m_params.encoding.compare("UTF-8"_L1, Qt::CaseInsensitive) != 0) {
        m_encoder = encoding::Utf8Encoder::open(m_params.encoding.toLatin1());
    }
    return true;
}

/// Rows are collected, because a write per row would be slow.
bool ActionWriteCsv::writeRow(const OneRow &row)
{
    m_writer->addRow(row.view());
    return !m_writer->isFull() || flush() || failWriting();
}

bool ActionWriteCsv::flush()
{
    const QByteArrayView bytes = m_writer->bytes();
    const bool isWritten = write(m_encoder ? m_encoder->encode(bytes) : bytes);
    m_writer->clear();
    return isWritten;
}

/// Replaced characters are reported only for a file that has been written.
void ActionWriteCsv::complete()
{
    const bool isWritten = flush() && (!m_encoder || write(m_encoder->finish()));
    if (!isWritten || !m_target.commit()) {
        failWriting();
        return;
    }
    reportReplaced();
}

void ActionWriteCsv::reportReplaced()
{
    if (m_writer->replaced().count > 0) {
        warn(replacedMessage(m_writer->replaced(), fileName(),
                             getInputColumns(0)->colName(m_writer->firstReplacedColumn())));
    }
    if (m_encoder) {
        warnOf(
            m_encoder->replaced(), fileName(), u"character"_s,
            u"Warning: writeCSV: a ? replaces %2 of the file '%1' that its encoding does not have; "
            "the first is in %3\n"_s);
    }
}

void ActionWriteCsv::release(bool)
{
    m_target.discard();
    m_writer.reset();
    m_encoder.reset();
}

} // namespace corvanta
