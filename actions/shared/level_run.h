// readers/level_run.h
// What the JSON and the XML reader have in common: the documents of files, or of the rows of input
// pin 0, become the rows of output pin 0, level by level.
#pragma once
#include "actions/shared/pin_text.h"
#include "actions/shared/read_levels.h"
#include "codecs/markup/level_extractor.h"
#include "corvanta/action_item.h"
#include "io/input/input_file.h"

#include <atomic>
#include <memory>

namespace corvanta {

/// One run of a reader. Threads: one at a time.
class LevelRun
{
public:
    /// Where the documents come from, and what stands beside the cells of the levels.
    struct Input
    {
        QString fileName; ///< expanded; may be a pattern
        bool isFromPin = false;
        QString column; ///< of pin 0, that holds the documents
        PinText::Mode mode = PinText::Mode::RowByRow;
        bool copiesInput = false; ///< the columns of the input row come first
        bool namesFiles = false;  ///< a last column with the name of the file
        int retries = 0;          ///< of a file that cannot be opened; negative: for ever
    };

    /// What differs between the formats: how tokens are made, and the messages. Functions that
    /// answer a bool answer false when they failed the run.
    class Format
    {
    public:
        /// A tokenizer for the document that `source` holds; the one before is not needed any more.
        /// Null when the run was failed.
        virtual markup::MarkupTokenizer *beginDocument(ByteSource &source, const QString &name) = 0;
        /// The document was read to its end.
        virtual void documentEnds(const QString &name) = 0;
        /// It could not be. `why` is the message of the input file, if it is the input that failed.
        virtual bool documentFails(const markup::MarkupResult &result, const QString &name,
                                   const QString &why) = 0;
        virtual bool fileIsMissing(const QString &name) = 0;
        virtual void columnIsMissing(const QString &name) = 0;
        virtual void pathIsMissing(const QString &path, const QString &name) = 0;
        /// With PinText::Mode::Stream: a value is not complete where the text of a row ends.
        virtual bool isInsideValue() const = 0;

    protected:
        ~Format() = default;
    };

    /// `levels` is not empty. `progress` is kept up to date; all references must outlive the run.
    LevelRun(ActionItem &action, const RunControl &control, Format &format, Input input,
             const std::vector<ReadLevel> &levels, const markup::ExtractOptions &options,
             std::atomic<float> *progress);
    ~LevelRun();

    /// One call of the run function: see ActionBase::step().
    bool step();

    /// Columns of the output pin; 0 before the first document.
    int columnCount() const { return m_columnCount; }
    /// Bytes of the first block of a record's tree.
    void setBlockSize(qint64 bytes) { m_extractor.setBlockSize(bytes); }

private:
    class FileBytes;

    bool isGood() const { return m_control.isRunning() && m_action.errorFlag() == 0; }
    bool prepare();
    void describeColumns(const OneRow *input);
    bool openNext();
    bool openNextFile();
    bool openFile(const QString &name);
    bool openNextText();
    bool begin(ByteSource &source);
    void putRow();
    bool documentEnds();
    bool documentFails();
    void warnMissingPaths(const QString &name);
    QString sourceName() const;

    ActionItem &m_action;
    const RunControl &m_control;
    Format &m_format;
    Input m_input;
    std::atomic<float> *m_progress;
    markup::LevelExtractor m_extractor;
    bool m_isPrepared = false;
    bool m_isOpen = false; ///< a document is being read
    bool m_anyDocument = false;
    int m_firstColumn = 0; ///< of the extractor's cells
    int m_columnCount = 0;
    // files
    QStringList m_files;
    qsizetype m_nextFile = 0;
    std::unique_ptr<InputFile> m_file;
    std::unique_ptr<FileBytes> m_fileBytes;
    const uchar *m_fileNameCell = nullptr;
    markup::BlockArena m_fileNameArena;
    // texts of the input pin
    std::unique_ptr<PinText> m_texts;
};

/// True when one of the levels says what to take from its occurrences.
bool hasItems(const std::vector<ReadLevel> &levels);

} // namespace corvanta
