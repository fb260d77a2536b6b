// writeCSV: formats rows with codecs/csv, writes them to the target, and copies them to the output
// pin.
#include "actions/write_csv/write_csv.h"

#include "actions/shared/params/csv_separator.h"
#include "corvanta/failure_reason.h"

using namespace Qt::StringLiterals;

namespace corvanta {

ActionWriteCsv::ActionWriteCsv(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kWriteCsvEntry, saved, parameters)
{
}

QVector<ParameterProblem> ActionWriteCsv::problems() const
{
    return separatorProblems(m_params.separator);
}

void ActionWriteCsv::start()
{
    finish();
}

void ActionWriteCsv::finish()
{
    // Only a good run replaces the target; a failed or stopped one leaves it unchanged.
    if (m_complete && runIsGood()) {
        complete();
    }
    m_complete = false;
    m_target.discard();
    m_writer.reset();
}

void ActionWriteCsv::complete()
{
    if (!flush() || !m_target.commit()) {
        failWriting();
        return;
    }
    if (m_writer->replaced().count > 0) {
        warn(replacedMessage(m_writer->replaced(), m_name,
                             getInputColumns(0)->colName(m_writer->firstReplacedColumn())));
    }
}

bool ActionWriteCsv::failWriting()
{
    return fail(u"Error: writeCSV: cannot write file '%1'\n"_s.arg(m_name),
                failureReason(m_target));
}

/// Opens the target and writes the header. `columns` are those of the input.
bool ActionWriteCsv::begin(const OneRow *columns)
{
    m_name = expandOutputFile(m_params.fileName, QString());
    const auto separator = csvSeparator(m_params.separator);
    if (!separator) {
        return fail(u"Error: writeCSV: the separator '%1' is not one ASCII character\n"_s.arg(
            m_params.separator));
    }
    const auto opened = m_target.open(
        m_name, {getIdx(), TargetMode::Replace, [this] { return askRetryWrite(m_name); }});
    if (!opened) {
        return fail(u"Error: writeCSV: cannot create file '%1'\n"_s.arg(m_name),
                    failureReason(m_target));
    }
    m_writer.emplace(*separator);
    getOutputRowForOutputPin(0)->copySchemaFrom(columns);
    if (m_params.header) {
        m_writer->addNames(columns->view());
    }
    return true;
}

bool ActionWriteCsv::flush()
{
    // The bytes are discarded also after a failure, which ends the run.
    const QByteArrayView bytes = m_writer->bytes();
    const bool isWritten = m_target.write(bytes.data(), bytes.size());
    m_writer->clear();
    return isWritten;
}

bool ActionWriteCsv::step()
{
    while (!yieldRequested()) {
        const OneRow *const row = getNextRowFromInPin(0);
        // Null is the end of the table or of the run; after the end of the run nothing is created.
        if (row == nullptr && !runIsGood()) {
            return false;
        }
        if (!m_writer && !begin(row != nullptr ? row : getInputColumns(0))) {
            return false;
        }
        if (row == nullptr) {
            m_complete = true;
            return false;
        }
        // The row becomes a view of the input batch: passing it on copies no cells.
        getOutputRowForOutputPin(0)->copyFrom(row);
        setRowReadyForOutput(0);
        m_writer->addRow(row->view());
        if (m_writer->isFull() && !flush()) {
            return failWriting();
        }
    }
    return true;
}

} // namespace corvanta
