// ReadXBF: reads the records of dBase-family tables.
//
// The action chooses the text encoding and words the messages about whole files. FileSeries joins
// the tables; XbfFile delivers the records of one.
#pragma once
#include "actions/read_xbf/read_xbf_params.h"
#include "actions/shared/file_series.h"
#include "actions/shared/params/scanned_columns.h"
#include "actions/shared/params/type_letters.h"
#include "codecs/encoding/text_decoder.h"
#include "corvanta/action_base.h"

#include <optional>

namespace corvanta {

extern const ActionEntry kReadXbfEntry;

/// The first table is opened in init, so that a graph with a wrong name fails before any row moves.
/// Threads: the one that runs the action; computeCompletion() from any.
class ActionReadXBF final : public ParamAction<ActionReadXBF, ReadXbfParams>,
                            private FileSeries::Format
{
public:
    ActionReadXBF(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadXbfParams> &paramTable() { return readXbfParamTable(); }
    /// Fraction of all tables that is read, 0 to 1.
    float computeCompletion() override { return m_series.fractionDone(); }
    /// The kinds of all columns: of texts and of numbers in digits from their values, of others
    /// from the type that they have in the file.
    std::optional<QVector<ColumnKind>> columnKinds(KindExtent extent) override;
    bool readColumnsAs(const QVector<ColumnKind> &columns) override
    {
        m_params.types = lettersOf(columns);
        m_params.isoValues = true;
        return true;
    }
    QVector<ParameterProblem> problems() const override { return typeProblems(m_params.types); }

private:
    void start() override;
    bool step() override { return m_series.step(); }
    void finish() override { m_series.finish(); }

    /// For character and memo fields, and for the names of columns.
    encoding::TextDecoder makeDecoder() const;

    // Messages of FileSeries. They return true to continue with the next file.
    FileSeries::Opened openFile(const QString &name) override;
    bool reportMissing(const QString &name) override;
    /// Not called: XbfFile::open() fails the run for a file that exists but is not a table.
    bool reportUnreadable(const QString &name) override { return reportMissing(name); }
    bool reportMismatch(const ColumnMismatch &mismatch) override;

    /// Of the run; files refer to it.
    std::optional<encoding::TextDecoder> m_decoder;
    FileSeries m_series{*this};
};

} // namespace corvanta
