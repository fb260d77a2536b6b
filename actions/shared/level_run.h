// The run of readJSON and readXML: the documents of files, or of the rows of input pin 0, become
// the rows of output pin 0, level by level.
//
// Stages: prepare() names the columns; then each document is opened (begin), gives its rows (next)
// and ends (documentEnds or documentFails). A document is a file, one text, or a part of the stream
// that the texts form together.
#pragma once
#include "actions/shared/file_series.h"
#include "actions/shared/params/read_levels.h"
#include "actions/shared/pin_text.h"
#include "codecs/markup/levels/level_extractor.h"
#include "corvanta/action_base.h"
#include "io/input/input_file.h"

#include <memory>

namespace corvanta {

/// One run of a reader. In file mode FileSeries drives the run and calls openFile(); with texts of
/// the input pin, step() does. Each document goes through the same LevelExtractor, which keeps the
/// table's columns and finds the paths that a document does not have.
///
/// Threads: the one that runs the action.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): final, so nothing is derived from it
class LevelRun final : private FileSeries::Format
{
public:
    /// Where the documents come from, and the columns other than those of the levels.
    struct Input
    {
        QString fileName; ///< may be a pattern; expanded by the run
        bool isFromPin = false;
        QString column; ///< of pin 0, that holds the documents
        PinText::Mode mode = PinText::Mode::RowByRow;
        bool copiesInput = false; ///< the columns of the input row come first
        bool namesFiles = false;  ///< a last column with the name of the file
        int retries = 0;          ///< of a file that cannot be opened; negative: no limit
    };

    /// What differs between the formats: how tokens are made, and the messages. Functions that
    /// return a bool return false when they failed the run.
    class Format
    {
    public:
        /// A tokenizer for the document in `source`; the tokenizer of the document before is not
        /// used any more. Null when the run was failed.
        virtual markup::MarkupTokenizer *beginDocument(ByteSource &source, const QString &name) = 0;
        /// The document was read to its end.
        virtual void documentEnds(const QString &name) = 0;
        /// True when the format continues after a structure error.
        virtual bool skipsFaults() const = 0;
        /// What the input file says when it failed; empty when its data is invalid.
        struct InputFailure
        {
            QString text;
            QString reason;

            void log(MainUI::LogLevel level) const;
        };
        /// The document is invalid. The format logs `failure` first, at the level that it chooses.
        virtual bool documentFails(const markup::MarkupResult &result, const QString &name,
                                   const InputFailure &failure) = 0;
        /// Called after the last retry, also for a file that exists but cannot be opened.
        virtual bool fileIsMissing(const QString &name) = 0;
        /// The input pin lacks the column with the documents, or is not linked.
        virtual bool columnIsMissing(const QString &name) = 0;
        /// A path of the levels matched nothing in the document. Called once per path and file;
        /// with texts of the input pin, at the end of the pin.
        virtual void pathIsMissing(const QString &path, const QString &name) = 0;
        /// What a file has and the levels did not read; called as pathIsMissing(), once.
        virtual void reportUnread(const markup::UnreadParts &unread, const QString &name) = 0;
        /// With PinText::Mode::Stream: a value is not complete where the text of a row ends.
        virtual bool isInsideValue() const = 0;

    protected:
        ~Format() = default;
    };

    /// `levels` is not empty. `series` is a member of the action; all references must outlive the
    /// run.
    LevelRun(ActionBase &action, FileSeries &series, Format &format, Input input,
             const std::vector<ReadLevel> &levels, const markup::ExtractOptions &options);

    /// One call of the run function: see ActionBase::step().
    bool step();

    /// Columns of the output pin; 0 before the first call of step().
    int columnCount() const { return m_columnCount; }
    /// Bytes of the first block of a record's tree.
    void setBlockSize(qint64 bytes) { m_extractor.setBlockSize(bytes); }

private:
    class File;
    using Found = SeriesFile::Found;

    // Before the first row. Functions that return a bool return false when the run has ended.
    bool prepare();
    bool prepareTexts();
    /// The columns of `input` (may be null), if they are copied, and those of the levels.
    TableSchema columns(const OneRow *input) const;

    // Documents. Functions that return a bool return false when the run has failed or ended.
    bool begin(ByteSource &source);
    bool next(OneRow &row, Found *found);
    void putCells(OneRow &row);
    bool documentEnds();
    bool documentFails(markup::MarkupResult failure, Found *found);
    bool badValue(qint64 line);
    bool resumeDocument();
    void endDocument();
    void readToEnd();
    void reportMissingPaths(const QString &name);
    /// For messages: a position of the document, with the row of the pin.
    QString placeText(qint64 line, qint64 column) const;
    /// For messages: the file, or the column of the pin with the number of its row.
    QString documentName() const;

    // Files.
    FileSeries::Opened openFile(const QString &name) override;
    bool reportMissing(const QString &name) override { return m_format.fileIsMissing(name); }
    bool reportUnreadable(const QString &name) override { return reportMissing(name); }
    /// Not called: the columns of every file are those of the levels.
    bool reportMismatch(const ColumnMismatch &) override { return true; }

    // Texts of the input pin.
    bool stepTexts();
    bool nextText();

    ActionBase &m_action;
    FileSeries &m_series;
    Format &m_format;
    const Input m_input;
    markup::LevelExtractor m_extractor;
    bool m_isPrepared = false;
    int m_firstColumn = 0; ///< of the extractor's cells: after the copied ones
    int m_columnCount = 0;
    QString m_fileName;                ///< of the document; empty with texts of the input pin
    const InputFile *m_file = nullptr; ///< of the document; null with texts of the input pin
    std::unique_ptr<PinText> m_texts;
    bool m_isOpen = false;  ///< a text is being read
    bool m_anyText = false; ///< one has been
};

/// True when one of the levels has items.
bool hasItems(const std::vector<ReadLevel> &levels);
/// Why a run without items fails, and the remedy.
inline constexpr QStringView kNoItems =
    u"no level has an item; write one as <Level initialPath='orders'><e name='city' "
    "path='buyer/city'/></Level>";

} // namespace corvanta
