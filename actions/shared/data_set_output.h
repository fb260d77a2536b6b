// Base of the writers of SAS data sets and transport files: all that does not depend on the format.
//
// Both formats state the number of rows and the widths of the texts before the rows. The rows are
// therefore packed and spooled while they arrive, and the file is written at the end:
//
//     first row   -> find columns, name the variables, find widths, open the target
//     each row    -> pack, spool
//     end         -> measure widths (autoWidth), write the header and the spooled rows, commit
//
// A derived action has the names of its variables, its messages and the writer of its format.
#pragma once
#include "actions/shared/params/data_set_params.h"
#include "actions/shared/row_writer.h"
#include "base/occurrences.h"
#include "codecs/sas/row_packer.h"
#include "codecs/sas/table_writer.h"
#include "io/spool/block_spool.h"

#include <memory>
#include <unordered_map>
#include <vector>

namespace corvanta {

/// Threads: as ActionBase.
class DataSetOutput : public RowWriter
{
protected:
    using RowWriter::RowWriter;

    // What the action supplies.

    virtual const DataSetParams &dataSetParams() const = 0;
    const RowWriterParams &rowParams() const override { return dataSetParams(); }
    const QString &fileParameter() const override { return dataSetParams().fileName; }
    /// What the file is called in messages: "SAS file".
    virtual QString fileKind() const = 0;
    /// The most columns of the format.
    virtual int maxVariables() const = 0;
    /// The longest text and label of the format, in bytes.
    virtual int maxTextBytes() const = 0;
    virtual int maxLabelBytes() const = 0;
    /// The width of a text column whose longest text has this many bytes.
    virtual int measuredWidth(qsizetype longest) const = 0;
    /// Choose the encoding of texts and names. Returns false after a failure.
    virtual bool chooseEncoding() { return true; }
    /// Set name, label and format of the variables, one for each column of `names`. Returns false
    /// after a failure.
    virtual bool describe(const QStringList &names, std::vector<sas::Variable> &variables) = 0;
    /// The error for a text column without a declared width.
    virtual bool failUnknownWidth(const QString &column) = 0;
    /// Report a text that exceeds its width. Returns false after a failure.
    virtual bool reportCutText(const QString & /*column*/, qsizetype /*bytes*/, int /*width*/,
                               const QString & /*text*/)
    {
        return true;
    }
    /// The writer of the format.
    virtual std::unique_ptr<sas::TableWriter> makeWriter(ByteSink &sink,
                                                         std::vector<sas::Variable> variables) = 0;
    /// The error for a failed write: `text` says why, in the words of the library or our own.
    virtual bool failWrite(const QString &text, const QString &reason = {}) = 0;
    /// Further warnings about the rows, when the file is written by `writer`.
    virtual void reportRows(const sas::TableWriter & /*writer*/) {}

    void start() override;
    bool begin(const OneRow &columns) override;
    bool beginWithoutRows(const OneRow &columns) override { return begin(columns); }
    bool writeRow(const OneRow &row) override;
    void complete() override;
    void release(bool wasComplete) override;

    // What the action uses. Only between begin() and release().

    /// Encodes texts and names; UTF-8 by default. chooseEncoding() replaces it.
    sas::TextEncoder &encoder() { return m_run->encoder; }
    const sas::TextEncoder &encoder() const { return m_run->encoder; }
    /// Give the columns with dates and times such formats, so that their texts become dates, and
    /// let booleans become numbers.
    static void addKinds(const QVector<ColumnKind> &columns, DataSetParams *params);
    /// Give the columns the labels of the input, and the formats of its numbers where SAS has the
    /// same. Those that the parameters have stay. A line of the log counts the value labels.
    void addNotes(const QVector<ColumnNotes> &notes, DataSetParams *params) const;
    /// The definition of a column in the parameters; null without one.
    const VariableDefinition *definitionOf(const QString &column) const;
    /// A name or label of a column in the encoding of the file. What is lost is counted, and
    /// reported after describe().
    QByteArray encoded(const QString &text, const QString &column);
    /// The same, cut to maxLabelBytes().
    QByteArray encodedLabel(const QString &label, const QString &column);
    /// Warn about the columns whose variables have other names, which are valid ones.
    void warnChangedNames(const QStringList &columns, const std::vector<sas::Variable> &variables);
    /// Name of a written column in the input.
    const QString &columnName(size_t column) const { return m_run->names[int(column)]; }
    /// "row 7, column 'x'": a place in the input.
    QString placeOf(qint64 row, size_t column) const;

private:
    struct RunState
    {
        /// By the names of columns; tables may have thousands of definitions.
        std::unordered_map<QString, const VariableDefinition *> definitions;
        sas::TextEncoder encoder = sas::TextEncoder::utf8();
        QStringList names; // of the written columns
        std::vector<sas::Variable> variables;
        Occurrences cutLabels;
        Occurrences replacedInNames;  // and in labels
        std::vector<bool> isMeasured; // text columns whose width follows from their texts
        std::unique_ptr<sas::RowPacker> packer;
        std::unique_ptr<BlockSpool> spool;
        TargetFile target;
        std::unique_ptr<sas::TableWriter> writer; // of the target
        qint64 rows = 0;                          // spooled
    };

    // Functions that return bool return true for success; otherwise they have failed the run.
    /// Report the names and labels that are not stored as they are.
    void warnNames();
    /// Report names in the parameters that the input does not have.
    void warnDefinitions(const OneRow &columns);
    /// Choose the widths of all columns and make the packer of the rows.
    bool findWidths(const OneRow &columns, const QVector<int> &inputs);
    bool chooseWidth(size_t column, sas::PackedColumn *packed);
    sas::DateUnit dateUnitOf(const QString &column) const;
    int declaredWidth(const QString &name) const;
    bool openTarget();
    bool spoolBlock();
    bool failSpool();
    void measureWidths();
    /// Write the rows from the spool.
    bool writeRows();
    /// Write the whole file after the last row, and rename it to its target.
    bool writeFile();
    /// Make the writer and write what comes before the rows.
    bool beginFile();
    /// Write what comes after the rows, and commit the target.
    bool finishFile();
    bool commitTarget();
    bool failWriter(const Fault<sas::Error> &fault);
    bool reportCuts(const OneRow &row);
    template <class TextOf> void warnRows(sas::RowCount sas::ColumnReport::*cause, TextOf textOf);
    void warnCutTexts();
    void warnReplaced();
    void warnNotNumbers();
    void warnNotDates();
    void warnZones();
    void warnNotBooleans();

    std::unique_ptr<RunState> m_run;
};

} // namespace corvanta
