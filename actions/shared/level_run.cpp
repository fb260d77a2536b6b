#include "actions/shared/level_run.h"

#include "corvanta/files.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta {

using markup::LevelExtractor;

namespace {

/// Cells straight into the batch of the output pin. Which batch that is, is asked at the first cell
/// of a row: waiting for input rows may send the batch before on its way.
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

/// Bytes of a file for the tokenizer; tells the progress and ends when the run does.
class LevelRun::FileBytes final : public ByteSource
{
public:
    FileBytes(LevelRun &run, float before, float share)
        : m_run(run)
        , m_before(before)
        , m_share(share)
    {
    }
    qint64 read(void *buffer, qint64 n) override
    {
        if (!m_run.m_control.isRunning()) {
            return 0;
        }
        const qint64 got = m_run.m_file->read(buffer, n);
        *m_run.m_progress = m_before + m_share * std::max(m_run.m_file->getProgress(), 0.0F);
        return got;
    }
    qint64 size() override { return m_run.m_file->size(); }
    bool seek(qint64 offset) override { return m_run.m_file->seek(offset); }

private:
    LevelRun &m_run;
    float m_before;
    float m_share;
};

bool hasItems(const std::vector<ReadLevel> &levels)
{
    return std::any_of(levels.begin(), levels.end(),
                       [](const ReadLevel &level) { return !level.items.empty(); });
}

LevelRun::LevelRun(ActionItem &action, const RunControl &control, Format &format, Input input,
                   const std::vector<ReadLevel> &levels, const markup::ExtractOptions &options,
                   std::atomic<float> *progress)
    : m_action(action)
    , m_control(control)
    , m_format(format)
    , m_input(std::move(input))
    , m_progress(progress)
    , m_extractor(levels, options)
{
}

LevelRun::~LevelRun() = default;

bool LevelRun::step()
{
    if (!m_isPrepared && !prepare()) {
        return false;
    }
    while (m_control.yieldRequest.load(std::memory_order_relaxed) == 0) {
        if (!m_isOpen && !openNext()) {
            return false;
        }
        PinArena arena(m_action);
        switch (m_extractor.next(arena)) {
        case LevelExtractor::Outcome::Row:
            putRow();
            break;
        case LevelExtractor::Outcome::End:
            if (!documentEnds()) {
                return false;
            }
            break;
        case LevelExtractor::Outcome::Fault:
            if (!documentFails()) {
                return false;
            }
            break;
        }
    }
    return true;
}

// ---- Before the first row. The functions answer false when the run has failed or is over.

bool LevelRun::prepare()
{
    m_isPrepared = true;
    if (!m_input.isFromPin) {
        listFiles(m_input.fileName, &m_files);
        describeColumns(nullptr);
        return true;
    }
    const bool isLinked = m_action.pinInCount() > 0;
    const OneRow *const first = isLinked ? m_action.getNextRowFromInPin(0) : nullptr;
    const OneRow *const input = isLinked ? m_action.getInputColumns(0) : nullptr;
    const int column = input == nullptr ? -1 : input->getIndexOfColumn(m_input.column);
    if (column < 0) {
        if (isGood()) {
            m_format.columnIsMissing(m_input.column);
        }
        return false;
    }
    describeColumns(input);
    m_texts = std::make_unique<PinText>(m_action, column, m_input.mode, first,
                                        [this] { return m_format.isInsideValue(); });
    return true;
}

void LevelRun::describeColumns(const OneRow *input)
{
    QVector<QString> names;
    QVector<MetaInfo> types;
    if (input != nullptr && m_input.copiesInput) {
        names = input->getColNamesDeep();
        types = input->getMetaDataDeep();
    }
    m_firstColumn = static_cast<int>(names.size());
    names << m_extractor.columnNames();
    if (!m_input.isFromPin && m_input.namesFiles) {
        names << u"_FileNames"_s;
    }
    types.resize(names.size(), MetaInfo(MetaInfo::Unknown, -1));
    m_columnCount = static_cast<int>(names.size());
    OneRow *const row = m_action.getOutputRowForOutputPin(0);
    row->setColName(names);
    row->setMetaData(types);
}

// ---- Documents.

bool LevelRun::begin(ByteSource &source)
{
    markup::MarkupTokenizer *const tokenizer = m_format.beginDocument(source, sourceName());
    if (tokenizer == nullptr) {
        return false;
    }
    m_extractor.beginDocument(*tokenizer);
    m_isOpen = m_anyDocument = true;
    return true;
}

bool LevelRun::openNext()
{
    return m_input.isFromPin ? openNextText() : openNextFile();
}

bool LevelRun::openNextFile()
{
    while (m_nextFile < m_files.size() && isGood()) {
        const QString name = m_files[m_nextFile];
        ++m_nextFile;
        if (openFile(name)) {
            return begin(*m_fileBytes);
        }
        if (!isGood() || !m_format.fileIsMissing(name)) {
            return false;
        }
    }
    return false;
}

bool LevelRun::openFile(const QString &name)
{
    const auto open = [&] {
        m_file = std::make_unique<InputFile>(m_action.globalParameters(), name, true);
        return m_file->isOpen();
    };
    if (!open() && !retryOpening(name, m_input.retries, m_control, open)) {
        return false;
    }
    const auto files = static_cast<float>(m_files.size());
    const auto before = static_cast<float>(m_nextFile - 1);
    m_fileBytes = std::make_unique<FileBytes>(*this, before / files, 1 / files);
    m_fileNameArena.reset();
    m_fileNameCell = markup::textCell(m_fileNameArena, name.toStdU16String());
    m_extractor.beginFile();
    return true;
}

bool LevelRun::openNextText()
{
    if (!m_texts->nextRow()) {
        // Not when it is the run that ended, and not when there was nothing to look at.
        if (isGood() && m_anyDocument) {
            warnMissingPaths(m_input.column);
        }
        return false;
    }
    return begin(*m_texts);
}

void LevelRun::putRow()
{
    OneRow *const row = m_action.getOutputRowForOutputPin(0);
    int column = 0;
    for (; column < m_firstColumn; ++column) {
        row->setCol(column, m_texts->row()->getAllColForWrite()[column]);
    }
    for (const uchar *cell : m_extractor.cells()) {
        row->setCol(column++, cell);
    }
    if (column < row->numberOfColumns()) {
        row->setCol(column, m_fileNameCell);
    }
    m_action.setRowReadyForOutput(0);
}

/// The name of what is read, for messages.
QString LevelRun::sourceName() const
{
    if (!m_input.isFromPin) {
        return m_files[m_nextFile - 1];
    }
    return u"%1 (row %2)"_s.arg(m_input.column, QString::number(m_texts->rowNumber()));
}

bool LevelRun::documentEnds()
{
    m_isOpen = false;
    if (!isGood()) {
        return false;
    }
    m_format.documentEnds(sourceName());
    if (!m_input.isFromPin) {
        warnMissingPaths(sourceName());
    }
    return true;
}

bool LevelRun::documentFails()
{
    m_isOpen = false;
    return isGood() && m_format.documentFails(m_extractor.result(), sourceName(),
                                              m_input.isFromPin ? QString() : m_file->failure());
}

void LevelRun::warnMissingPaths(const QString &name)
{
    for (const QString &path : m_extractor.missingPaths()) {
        m_format.pathIsMissing(path, name);
    }
}

} // namespace corvanta
