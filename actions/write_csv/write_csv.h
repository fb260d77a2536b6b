// writeCSV: writes rows to a text file with separators; --tap writes the same form.
//
// A missing cell is an empty field and an empty text is "", so that readCSV restores both.
#pragma once
#include "actions/write_csv/write_csv_params.h"
#include "codecs/csv/record_writer.h"
#include "codecs/encoding/utf8_encoder.h"

#include <optional>

namespace corvanta {

extern const ActionEntry kWriteCsvEntry;

/// Writes one file, which appears under its name when the run has succeeded, and copies its rows to
/// output pin 0. A table without rows gives a file with the header. A failed run leaves an existing
/// file unchanged.
class ActionWriteCsv final : public ParamAction<ActionWriteCsv, WriteCsvParams, RowWriter>
{
public:
    ActionWriteCsv(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteCsvParams> &paramTable() { return writeCsvParamTable(); }
    QVector<ParameterProblem> problems() const override { return writeCsvProblems(m_params); }

private:
    const RowWriterParams &rowParams() const override { return m_params; }
    const QString &fileParameter() const override { return m_params.fileName; }
    QString message(WriteProblem problem, const QString &name) const override;
    bool begin(const OneRow &columns) override;
    bool beginWithoutRows(const OneRow &columns) override { return begin(columns); }
    bool writeRow(const OneRow &row) override;
    void complete() override;
    void release(bool wasComplete) override;

    // All return false after a failure.
    bool openTarget();
    /// Write what the writer has formatted.
    bool flush();
    bool write(QByteArrayView bytes) { return m_target.write(bytes.data(), bytes.size()); }
    bool failWriting();
    /// Warn about characters that are replaced.
    void reportReplaced();

    // State of a run; release() resets it.
    TargetFile m_target;
    std::optional<csv::RecordWriter> m_writer;      // set once the target is open
    std::optional<encoding::Utf8Encoder> m_encoder; // for other encodings than UTF-8
};

} // namespace corvanta
