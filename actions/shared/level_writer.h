// Base of writeJSON and writeXML: composes rows into text by levels and writes it to files.
#pragma once
#include "actions/shared/params/level_writer_params.h"
#include "actions/shared/row_writer.h"
#include "codecs/compose/level_compiler.h"
#include "codecs/compose/text_block.h"

#include <memory>

namespace corvanta {

/// What a file holds around its elements.
struct FileFrame
{
    compose::Encoding encoding = compose::Encoding::Utf8;
    /// See TextBlock::replaceUnknown().
    bool replacesUnknown = false;
    /// Before the prefix, encoded. Not written to a file that is appended to.
    std::string head;
    /// At the start of the file. Expanded before it is written, like the suffix.
    QString prefix;
    /// Between the last element and the suffix. Not written without rows.
    QString lastLine;
    QString suffix;
};

/// What the messages of the two actions differ in.
struct LevelWriterTexts
{
    QString lineStart; ///< before every message
    QString format;    ///< name of the format in messages
    QString noColumns; ///< the problem NoColumns, after the name of the file
};

/// The action supplies its messages, its levels and the frame of its files. A file is opened when
/// the first text for it is complete, or at the end when `alwaysWrite` is on.
class LevelWriter : public RowWriter
{
public:
    /// A floatToString that is not a format of a number.
    QVector<ParameterProblem> problems() const override;
    QVector<TargetUse> targets() const override;

    /// What a file would begin with, or why it cannot be written.
    struct Preview
    {
        QString text;
        QString problem; ///< a message; empty: none
    };
    /// Compose the text for these rows, whose null strings are missing cells, in a file of its own.
    /// All rows are written, whatever testCol says. Writes no file and logs nothing. Not during a
    /// run.
    Preview preview(const TableSchema &columns, const QVector<QStringList> &rows);

protected:
    using RowWriter::RowWriter;

    const LevelWriterParams &rowParams() const override = 0;
    const QString &fileParameter() const override { return rowParams().fileName; }
    virtual LevelWriterTexts texts() const = 0;
    virtual std::vector<WriteLevel> declaredLevels() const = 0;
    virtual compose::LevelCompiler::Levels compileLevels(const std::vector<WriteLevel> &levels,
                                                         const RowView &columns) const = 0;
    virtual compose::ValueRules valueRules() const = 0;
    virtual FileFrame frame() const = 0;
    /// Called once per run, before the levels are compiled. Returns false after a failure.
    virtual bool prepareColumns(const OneRow &) { return true; }
    /// Called before each selected row. Returns false after a failure.
    virtual bool prepareRow(const OneRow &) { return true; }
    /// The name of the next file.
    virtual QString targetName() const { return fileName(); }

    QString message(WriteProblem problem, const QString &name) const override;
    void start() override;
    bool begin(const OneRow &columns) override;
    bool writeRow(const OneRow &row) override;
    void complete() override;
    void release(bool wasComplete) override;

    /// The rules for values that both actions have parameters for. Null values are written as
    /// `nullForm`, empty texts in place of missing ones as `emptyForm`.
    compose::ValueRules commonRules(std::u16string_view nullForm,
                                    std::u16string_view emptyForm) const;
    /// Complete the current file, if it is open or `alwaysWrite` is on. Returns false after a
    /// failure.
    bool endFile();

private:
    /// State of one run, recreated by start().
    struct RunState
    {
        FileFrame frame;
        FloatFormat floatFormat;
        // Open from the first drained text to the end of the file.
        TargetFile target;
        // Drains into the target.
        std::unique_ptr<compose::TextBlock> block;
        bool hasFile = false; // some file was opened
        bool hasRow = false;  // some row was selected
        // What is written before the values of columns, and the names of these, for messages.
        std::vector<std::pair<std::u16string, QString>> keys;
        // Null until the columns are known.
        std::unique_ptr<compose::LevelComposer> composer;
        // Of the first one of the composer's counts.
        QString lackingPlace;
        QString lostNumberPlace;
    };

    QString messageAbout(const QString &problem) const;
    QString levelMessage(compose::LevelProblem problem, const QString &name,
                         const QString &level) const;
    /// Of a fault of compileLevels().
    QString messageFor(const Fault<compose::LevelProblem> &fault,
                       const std::vector<WriteLevel> &declared) const;
    /// The reason of such a fault that names what the user most likely meant; empty if nothing is
    /// close.
    static QString reasonFor(const Fault<compose::LevelProblem> &fault,
                             const std::vector<WriteLevel> &declared, const OneRow &columns);
    /// Compile the levels for the columns of the table and check the names of those written.
    bool makeComposer(const OneRow &columns);
    /// Keep the keys of columns, and warn about columns that one item writes with the same key.
    void keepKeys(const std::vector<compose::ComposeLevel> &levels, const OneRow &columns);
    /// Warn about columns whose names are not valid in the format.
    void reportNewNames(const std::vector<compose::ComposeLevel> &levels, const OneRow &columns);
    /// Warn about characters that the file cannot hold.
    void reportReplaced();
    /// Remember the places of the first values that the composer has counted.
    void notePlaces();
    void notePlace(const compose::CountedValues &values, QString *place);
    void reportLackingValues();
    /// About NaN and infinite numbers, which few formats have.
    void reportLostNumbers();
    // Functions that return bool return true for success; otherwise the run has failed or ended.
    /// Open targetName() and write what comes before the elements.
    bool openFile();
    bool failOpen(const Fault<TargetError> &fault);
    bool write(const void *bytes, qint64 n);
    bool writeText(const QString &text);
    /// Write all composed text; opens the file for alwaysWrite.
    bool flush();
    /// A run that writes no file leaves an existing one as it is, which is easily overlooked.
    void warnNoFile();
    /// Whether the block took all that was composed so far.
    bool checkBlock();

    std::unique_ptr<RunState> m_run;
};

} // namespace corvanta
