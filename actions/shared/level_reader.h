// Base of readJSON and readXML: reads documents from files or from input pin 0, level by level.
//
// The base finds levels in the input before a run, starts and ends the run, and reports missing
// files, columns and paths. LevelRun does the run. The action makes tokenizers and words the
// messages that name its format.
#pragma once
#include "actions/shared/level_run.h"
#include "actions/shared/params/level_reader_params.h"
#include "actions/shared/params/type_letters.h"
#include "codecs/markup/sample/sample_levels.h"
#include "corvanta/action_base.h"

#include <memory>
#include <optional>

namespace corvanta {

/// Threads: the one that runs the action; computeCompletion() from any.
class LevelReader : public ActionBase, protected LevelRun::Format
{
public:
    /// Fraction of all files that is read, 0 to 1; 0 with texts of the input pin.
    float computeCompletion() override { return m_series.fractionDone(); }
    QStringList inputs() const override
    {
        return isFromPin() ? QStringList() : ActionBase::inputs();
    }
    /// The kinds of all columns, from the texts of all files. Those that cannot be read to their
    /// end count up to there: the run reports them.
    std::optional<QVector<ColumnKind>> columnKinds(KindExtent extent) override;
    bool readColumnsAs(const QVector<ColumnKind> &columns) override;
    QVector<ParameterProblem> problems() const override;
    /// The levels of each table that the beginning of the file has; none if it cannot be read. Not
    /// during a run.
    std::vector<std::vector<ReadLevel>> sampledLevels();

protected:
    using ActionBase::ActionBase;

    // What the action supplies. Functions that return a bool return false when the run has failed
    // or ended.

    virtual const LevelReaderParams &readerParams() const = 0;
    virtual LevelReaderParams &readerParams() = 0;
    /// Name of the format in messages, for example "JSON".
    virtual QString formatName() const = 0;
    /// The letters that the parameter `types` may have.
    virtual QStringView typeLetters() const { return kTypeLetters; }
    /// Check the parameters and call beginRun(). Called by the first step() of a run.
    virtual bool prepare() = 0;
    /// Set what levels should be found with. Called before sampleInput() when there are none.
    virtual void prepareFill() {}
    /// Read the beginning of the file. Returns nothing, after a message, when it cannot be read.
    virtual std::optional<markup::SampledDocument> sampleInput() = 0;
    /// Take levels, and the settings that they need, from a table of the sample.
    virtual void useTable(const markup::SampledTable &table) = 0;

    /// What to extract, with variables expanded; `fromInputPin` documents as files.
    virtual std::vector<ReadLevel> levelsToRead() const = 0;
    virtual markup::ExtractOptions extractOptions() const = 0;
    /// A tokenizer for a look at a document without a run. Null, after a message, when the document
    /// cannot be read.
    virtual std::unique_ptr<markup::MarkupTokenizer> openDocument(ByteSource &source,
                                                                  const QString &name) = 0;

    /// Forget an earlier run. An override calls this first.
    void start() override;
    bool step() final { return (m_run || prepare()) && m_run->step(); }
    /// Close the file. May be called twice. An override calls this first: the run refers to the
    /// tokenizer of the action.
    void finish() override;

    // What the action uses.

    /// Errors of a run that are reported one by one when the run continues after them.
    static constexpr int kMaxReportedErrors = 50;
    /// Smallest buffer of a tokenizer, in characters.
    static constexpr qint64 kTokenizerChars = 1'048'576;

    bool isFromPin() const { return readerParams().fromInputPin != DocumentSource::File; }
    /// The source that the common parameters describe. The action adds the column of the input pin.
    LevelRun::Input source() const;
    /// `levels` are expanded and have an item. The types of the columns are those of the
    /// parameters. Returns false, after a message, when they are invalid.
    bool beginRun(const LevelRun::Input &source, const std::vector<ReadLevel> &levels,
                  markup::ExtractOptions options);
    /// Only after beginRun().
    LevelRun &run() { return *m_run; }
    const LevelRun &run() const { return *m_run; }
    /// Set the encoding of texts of the input pin, which PinText delivers as UTF-8 whatever a text
    /// declares. The first token reports a failure.
    static void expectUtf8(markup::MarkupTokenizer &tokenizer);
    /// At most `wanted` bytes for a buffer for `source`, which need not be larger than the source.
    /// Buffers grow when they must.
    static qint64 bufferFor(ByteSource &source, qint64 wanted);

    bool fileIsMissing(const QString &name) override;

private:
    // Levels found in the file, for graphs without any and for lists of tables.
    bool fill(int table) final;
    QVector<InputTable> listTables() final;
    QVector<InputTable> listRelated() final;
    bool fillRelated(int table, const QVector<bool> &areKeys) final;

    bool columnIsMissing(const QString &name) final;
    void pathIsMissing(const QString &path, const QString &name) final;
    void reportUnread(const markup::UnreadParts &unread, const QString &name) final;
    // Its parts, each for a file `name`.
    void reportUnreadText(const markup::UnreadParts &unread, const QString &name);
    void reportBareRecords(const markup::UnreadParts &unread, const QString &name);
    void noteOtherParts(const markup::UnreadParts &unread, const QString &name);

    QStringList parameterValues() const;

    /// The tables that fill() has found, for the next listTables() with the same parameters: a
    /// sample may be a whole page.
    QVector<InputTable> m_filledTables;
    QStringList m_filledValues;

    std::unique_ptr<LevelRun> m_run; // null before the first step()
    FileSeries m_series{*this};      // its file refers to m_run
};

} // namespace corvanta
