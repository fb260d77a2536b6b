// writeCSV: writes rows to a text file with separators; --tap writes the same form.
//
// A missing cell is an empty field and an empty text is "", so that readCSV restores both.
#pragma once
#include "codecs/csv/record_writer.h"
#include "corvanta/action_base.h"
#include "corvanta/target_file.h"

#include <optional>

namespace corvanta {

extern const ActionEntry kWriteCsvEntry;

/// Parameters as saved; see ActionWriteCsv::paramTable() for their meaning.
struct WriteCsvParams
{
    QString fileName;
    QString separator = QStringLiteral(",");
    bool header = true;
};

/// Writes one file, which appears under its name when the run has succeeded, and copies its rows to
/// output pin 0. A table without rows gives a file with the header. A failed run leaves an existing
/// file unchanged.
class ActionWriteCsv final : public ParamAction<ActionWriteCsv, WriteCsvParams>
{
public:
    ActionWriteCsv(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteCsvParams> &paramTable();
    QVector<ParameterProblem> problems() const override;

private:
    void start() override;
    bool step() override;
    void finish() override;

    // Order of calls: begin() before the first row, flush() whenever the writer is full, and once
    // more in finish(). All return false after a failure.
    bool begin(const OneRow *columns);
    bool flush();
    void complete();
    /// Log that the file cannot be written. Returns false.
    bool failWriting();

    // State of a run; finish() resets it.
    QString m_name; // of the file, expanded
    TargetFile m_target;
    std::optional<csv::RecordWriter> m_writer; // set once the target is open
    bool m_complete = false;                   // the input has ended and all rows are formatted
};

} // namespace corvanta
