#include "actions/shared/level_run.h"

#include "actions/shared/params/type_letters.h"
#include "corvanta/failure_reason.h"
#include "io/input/run_input.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Makes cells in the batch of the output pin. The batch is looked up at the first cell of a row:
/// waiting for input rows may send the batch before.
class PinArena final : public markup::CellArena
{
public:
    explicit PinArena(ActionItem &action)
        : m_action(action)
    {
    }
    uchar *alloc(int n) override
    {
        m_buffer = m_buffer == nullptr ? m_action.bufferForOutputPin(0) : m_buffer;
        return m_buffer->alloc(n);
    }
    void shrinkLast(int n) override { m_buffer->shrinkLast(n); }

private:
    ActionItem &m_action;
    RowBuffer *m_buffer = nullptr;
};

} // namespace

/// One file: one document.
class LevelRun::File final : public SeriesFile
{
public:
    File(LevelRun &run, const QString &name)
        : m_run(run)
        , m_input(run.m_action.globalParameters(), run.m_action.control(), name, true,
                  run.m_series.isRetrying() ? InputFile::Report::Nothing
                                            : InputFile::Report::Failure)
    {
    }
    ~File() override
    {
        if (m_run.m_file == &m_input.file) {
            m_run.m_file = nullptr;
        }
    }
    RunInput &input() { return m_input; }
    bool next(OneRow &row, Found *found) override { return m_run.next(row, found); }
    float fractionDone() const override { return std::max(m_input.file.getProgress(), 0.0F); }

private:
    LevelRun &m_run;
    RunInput m_input;
};

bool hasItems(const std::vector<ReadLevel> &levels)
{
    return std::any_of(levels.begin(), levels.end(),
                       [](const ReadLevel &level) { return !level.items.empty(); });
}

LevelRun::LevelRun(ActionBase &action, FileSeries &series, Format &format, Input input,
                   const std::vector<ReadLevel> &levels, const markup::ExtractOptions &options)
    : m_action(action)
    , m_series(series)
    , m_format(format)
    , m_input(std::move(input))
    , m_extractor(levels, options)
{
    m_extractor.setPlaceText(
        [this](qint64 line, qint64 column) { return placeText(line, column); });
}

bool LevelRun::step()
{
    if (!std::exchange(m_isPrepared, true) && !prepare()) {
        return false;
    }
    return m_input.isFromPin ? stepTexts() : m_series.step();
}

// ---- Before the first row.

bool LevelRun::prepare()
{
    if (m_input.isFromPin) {
        return prepareTexts();
    }
    // The levels determine the columns: the series needs no file to describe them.
    FileSeries::Options options;
    options.retries = m_input.retries;
    options.columns = columns(nullptr);
    if (m_input.namesFiles) {
        options.fileNameColumn = u"_FileNames"_s;
    }
    m_series.start(*this, namesOfPattern(m_action, m_input.fileName), std::move(options));
    m_columnCount = m_series.columnCount();
    return m_series.openNext();
}

bool LevelRun::prepareTexts()
{
    // The columns of a pin are known after its first row, or its end.
    const bool isLinked = m_action.pinInCount() > 0;
    const OneRow *const first = isLinked ? m_action.getNextRowFromInPin(0) : nullptr;
    const OneRow *const input = isLinked ? m_action.getInputColumns(0) : nullptr;
    const int column = input == nullptr ? -1 : input->getIndexOfColumn(m_input.column);
    if (column < 0) {
        return m_action.runIsGood() && m_format.columnIsMissing(m_input.column);
    }
    const TableSchema schema = columns(input);
    m_columnCount = static_cast<int>(schema.names.size());
    m_firstColumn = m_columnCount - m_extractor.columnCount(); // after the copied columns
    OneRow *const row = m_action.getOutputRowForOutputPin(0);
    row->setColName(schema.names);
    row->setMetaData(schema.types);
    m_texts = std::make_unique<PinText>(m_action, column, m_input.mode, first,
                                        [this] { return m_format.isInsideValue(); });
    return true;
}

TableSchema LevelRun::columns(const OneRow *input) const
{
    TableSchema columns;
    if (input != nullptr && m_input.copiesInput) {
        columns.names = input->getColNamesDeep();
        columns.types = input->getMetaDataDeep();
    }
    columns.names << m_extractor.columnNames();
    for (const char letter : m_extractor.columnTypes()) {
        const char cells = letter == kJsonLetter ? 'U' : letter;
        columns.types << MetaInfo(static_cast<MetaInfo::MetaTypeColumn>(cells), -1);
    }
    columns.types.resize(columns.names.size(), MetaInfo(MetaInfo::Unknown, -1));
    return columns;
}

// ---- Documents.

bool LevelRun::begin(ByteSource &source)
{
    // The format has reported why there is no tokenizer.
    markup::MarkupTokenizer *const tokenizer = m_format.beginDocument(source, documentName());
    if (tokenizer != nullptr) {
        m_extractor.beginDocument(*tokenizer);
    }
    return tokenizer != nullptr;
}

/// Put the cells of the document's next row into `row`. Returns false when the run has ended.
bool LevelRun::next(OneRow &row, Found *found)
{
    PinArena arena(m_action);
    const auto hasRow = m_extractor.next(arena);
    *found = hasRow && *hasRow ? Found::Row : Found::End;
    if (!hasRow) {
        return documentFails(hasRow.fault().code, found);
    }
    if (!*hasRow) {
        return documentEnds();
    }
    putCells(row);
    return true;
}

void LevelRun::putCells(OneRow &row)
{
    int column = m_firstColumn;
    for (const uchar *cell : m_extractor.cells()) {
        row.setCol(column++, cell);
    }
}

// Reports are made only while the run is good: a run that has ended cuts its documents off.

bool LevelRun::documentEnds()
{
    if (!m_action.runIsGood()) {
        return false;
    }
    m_format.documentEnds(documentName());
    endDocument();
    // Texts are often parts of what the paths describe: their missing paths are reported once, at
    // the end of the pin.
    if (!m_input.isFromPin) {
        reportMissingPaths(documentName());
    }
    return true;
}

void LevelRun::Format::InputFailure::log(MainUI::LogLevel level) const
{
    if (!text.isEmpty()) {
        MainUI::addLog(level, text);
        logReason(reason);
    }
}

/// A failure that the action forgives ends the document, or only a line of it.
bool LevelRun::documentFails(markup::MarkupResult failure, Found *found)
{
    if (m_texts) {
        failure.column = PinText::columnInRow(failure.line, failure.column);
    }
    if (!m_action.runIsGood()) {
        return false;
    }
    if (m_extractor.badValue()) {
        return badValue(failure.line);
    }
    const Format::InputFailure why =
        m_file == nullptr ? Format::InputFailure()
                          : Format::InputFailure{m_file->failure(), m_file->reason()};
    if (!m_format.skipsFaults()) {
        readToEnd(); // a run that has failed cannot read
    }
    const bool continues = m_format.documentFails(failure, documentName(), why);
    if (!continues) {
        m_format.reportUnread(m_extractor.unread(), m_texts ? m_input.column : m_fileName);
        return false;
    }
    if (resumeDocument()) {
        *found = Found::Nothing;
    } else {
        endDocument();
    }
    return true;
}

/// The line is that of the record, where the user finds the value.
bool LevelRun::badValue(qint64 line)
{
    const markup::LevelExtractor::BadValue &bad = *m_extractor.badValue();
    return failOnValue(m_action, documentName(), u"line %1"_s.arg(line), bad.column, bad.value,
                       bad.letter);
}

/// Continue at the next line of JSON Lines; of a stream of texts, in the current one.
bool LevelRun::resumeDocument()
{
    if (m_texts) {
        m_texts->stayInRow(true);
    }
    const bool isResumed = m_extractor.resume();
    if (m_texts) {
        m_texts->stayInRow(false);
    }
    return isResumed;
}

/// Look for what the document has after its data. Of a stream of texts, only in the current one.
void LevelRun::readToEnd()
{
    if (m_texts) {
        m_texts->stayInRow(true);
    }
    m_extractor.endDocument();
    if (m_texts) {
        m_texts->stayInRow(false);
    }
}

void LevelRun::endDocument()
{
    readToEnd();
    if (!m_texts) {
        m_format.reportUnread(m_extractor.unread(), m_fileName);
    }
}

/// In a stream of texts, the row is the one that was read last.
QString LevelRun::documentName() const
{
    return m_input.isFromPin
               ? u"%1 (row %2)"_s.arg(m_input.column, QString::number(m_texts->rowNumber()))
               : m_fileName;
}

/// With texts of the input pin, positions are those in the row; a stream has no lines of its own.
QString LevelRun::placeText(qint64 line, qint64 column) const
{
    if (!m_texts) {
        return markup::placeText(line, column);
    }
    const QString row = u"row %1"_s.arg(m_texts->rowNumber());
    return m_input.mode == PinText::Mode::Stream
               ? row
               : row + u", "_s + markup::placeText(line, PinText::columnInRow(line, column));
}

/// Paths that the document does not have.
void LevelRun::reportMissingPaths(const QString &name)
{
    for (const QString &path : m_extractor.missingPaths()) {
        m_format.pathIsMissing(path, name);
    }
}

// ---- Files.

/// Open a file and begin its document. Paths that are missing are counted per file.
FileSeries::Opened LevelRun::openFile(const QString &name)
{
    auto file = std::make_unique<File>(*this, name);
    if (!file->input().file.isOpen()) {
        return Fault{FileSeries::OpenError::Missing, file->input().file.reason()};
    }
    m_fileName = name;
    m_file = &file->input().file;
    m_extractor.beginFile();
    if (!begin(file->input())) {
        return Fault{FileSeries::OpenError::Failed};
    }
    return FileSeries::Opened(std::move(file));
}

// ---- Texts of the input pin.

/// Like FileSeries::step(), with the texts of the pin for files.
bool LevelRun::stepTexts()
{
    OneRow &row = *m_action.getOutputRowForOutputPin(0);
    while (!m_action.yieldRequested()) {
        Found found = Found::Nothing;
        if ((!m_isOpen && !nextText()) || !next(row, &found)) {
            return false;
        }
        m_isOpen = found != Found::End;
        if (found == Found::Row) {
            // Of a stream: the row whose text was read last.
            for (int i = 0; i < m_firstColumn; ++i) {
                row.setCol(i, m_texts->row()->getAllColForWrite()[i]);
            }
            m_action.setRowReadyForOutput(0);
        }
    }
    return true;
}

/// Begin the document of the next row that has a text. Returns false at the end of the pin.
bool LevelRun::nextText()
{
    if (!m_texts->nextRow()) {
        // Not when the run has ended, and not when no row had a text.
        if (m_action.runIsGood() && m_anyText) {
            reportMissingPaths(m_input.column);
            m_format.reportUnread(m_extractor.unread(), m_input.column);
        }
        return false;
    }
    m_anyText = true;
    return begin(*m_texts);
}

} // namespace corvanta
