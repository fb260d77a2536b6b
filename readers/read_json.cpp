#include "readers/read_json.h"

#include "base/checked.h"
#include "base/limits.h"
#include "corvanta/files.h"
#include "plugin/catalogue.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

using markup::JSONTokenizer;
using markup::LevelExtractor;
using markup::MarkupError;

namespace {

constexpr int kReportedErrors = 50;
constexpr qint64 kTokenizerChars = 1'048'576;
constexpr qint64 kMostFromColumns = 0x6000000;

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

class ActionReadJSON::FileBytes final : public ByteSource
{
public:
    FileBytes(InputFile &file, ActionReadJSON &action, float before, float share)
        : m_file(file)
        , m_action(action)
        , m_before(before)
        , m_share(share)
    {
    }
    qint64 read(void *buffer, qint64 n) override
    {
        if (!m_action.m_control->isRunning()) {
            return 0;
        }
        const qint64 got = m_file.read(buffer, n);
        m_action.m_progress = m_before + m_share * std::max(m_file.getProgress(), 0.0F);
        return got;
    }
    qint64 size() override { return m_file.size(); }
    bool seek(qint64 offset) override { return m_file.seek(offset); }

private:
    InputFile &m_file;
    ActionReadJSON &m_action;
    float m_before;
    float m_share;
};

struct ActionReadJSON::RunState
{
    bool isPrepared = false;
    bool isOpen = false; // a document is being read
    std::unique_ptr<LevelExtractor> extractor;
    std::unique_ptr<JSONTokenizer> tokenizer;
    qint64 bufferBytes = 0;
    int errors = 0;      // reported
    int firstColumn = 0; // of the extractor's cells
    // files
    QStringList files;
    qsizetype nextFile = 0;
    std::unique_ptr<InputFile> file;
    std::unique_ptr<FileBytes> fileBytes;
    const uchar *fileNameCell = nullptr;
    markup::BlockArena fileNameArena;
    // texts of the input pin
    std::unique_ptr<PinText> texts;
};

ActionReadJSON::ActionReadJSON(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(catalogueRow("readJSON"), saved, parameters)
{
}

void ActionReadJSON::start()
{
    m_run = std::make_unique<RunState>();
    m_progress = 0;
}

void ActionReadJSON::finish()
{
    m_run.reset();
}

bool ActionReadJSON::step()
{
    if (!m_run->isPrepared && !prepare()) {
        return true;
    }
    while (!yieldRequested()) {
        if (!m_run->isOpen && !openNext()) {
            return true;
        }
        PinArena arena(*this);
        switch (m_run->extractor->next(arena)) {
        case LevelExtractor::Outcome::Row:
            putRow();
            break;
        case LevelExtractor::Outcome::End:
            if (!documentEnds()) {
                return true;
            }
            break;
        case LevelExtractor::Outcome::Fault:
            if (!documentFails()) {
                return true;
            }
            break;
        }
    }
    return false;
}

// ---- Before the first row. The functions answer false when the run has failed or is over.

bool ActionReadJSON::prepare()
{
    m_run->isPrepared = true;
    std::vector<ReadLevel> levels = m_params.levels;
    if (m_params.readTagsFromInPin && !readTags(&levels)) {
        return false;
    }
    const bool hasItems = std::any_of(levels.begin(), levels.end(),
                                      [](const ReadLevel &level) { return !level.items.empty(); });
    if (!hasItems) {
        return !fail(u"ReadJson error: nothing to extract"_s);
    }
    markup::ExtractOptions options;
    options.outputSubTags = m_params.outputSubTags;
    options.keepRoot = m_params.newMode;
    m_run->extractor = std::make_unique<LevelExtractor>(expandedLevels(levels, *this), options);
    return prepareInput();
}

/// Rows of pin 1 become the items of the level that they name, or of the last one.
bool ActionReadJSON::readTags(std::vector<ReadLevel> *levels)
{
    levels->resize(std::max<size_t>(levels->size(), 1));
    for (ReadLevel &level : *levels) {
        level.items.clear();
    }
    while (const OneRow *row = getNextRowFromInPin(1)) {
        const auto textAt = [&](int column) {
            return column >= 0 && column < row->numberOfColumns()
                       ? row->col(column, static_cast<unsigned short *>(nullptr))
                       : QString();
        };
        const int pathColumn = row->getIndexOfColumn(u"path"_s);
        const bool isNamed = pathColumn >= 0;
        const QString path = textAt(isNamed ? pathColumn : 0);
        const QString name = textAt(isNamed ? row->getIndexOfColumn(u"name"_s) : 1);
        const QString tagName = isNamed ? textAt(row->getIndexOfColumn(u"tagName"_s)) : QString();
        const auto level = isNamed ? textAt(row->getIndexOfColumn(u"level"_s)).toULongLong() : 0;
        ReadLevel &target =
            level >= 1 && level <= levels->size() ? (*levels)[level - 1] : levels->back();
        target.items.push_back(
            {path, name, xmltob(reinterpret_cast<const char16_t *>(tagName.utf16()), 0) != 0});
    }
    return runIsGood();
}

bool ActionReadJSON::prepareInput()
{
    if (!isFromPin()) {
        listFiles(expandFile(m_params.fileName), &m_run->files);
        describeColumns(nullptr);
        return true;
    }
    const QString name = expandString(m_params.colJSON).trimmed();
    const bool isLinked = pinInCount() > 0;
    const OneRow *const first = isLinked ? getNextRowFromInPin(0) : nullptr;
    const OneRow *const input = isLinked ? getInputColumns(0) : nullptr;
    const int column = input == nullptr ? -1 : input->getIndexOfColumn(name);
    if (column < 0) {
        return runIsGood() &&
               !fail(u"ERROR: JSON parsing Error: Cannot find column '"_s + name + u"'\n"_s);
    }
    describeColumns(input);
    const PinText::Mode mode =
        m_params.oneJSONPerRow ? PinText::Mode::RowByRow : PinText::Mode::Stream;
    m_run->texts = std::make_unique<PinText>(*this, column, mode, first,
                                             [this] { return m_run->tokenizer->isInsideValue(); });
    return true;
}

void ActionReadJSON::describeColumns(const OneRow *input)
{
    QVector<QString> names;
    QVector<MetaInfo> types;
    if (input != nullptr && m_params.appendToRow) {
        names = input->getColNamesDeep();
        types = input->getMetaDataDeep();
    }
    m_run->firstColumn = static_cast<int>(names.size());
    names << m_run->extractor->columnNames();
    if (!isFromPin() && m_params.outputFilenames) {
        names << u"_FileNames"_s;
    }
    types.resize(names.size(), MetaInfo(MetaInfo::Unknown, -1));
    OneRow *const row = getOutputRowForOutputPin(0);
    row->setColName(names);
    row->setMetaData(types);
    const qint64 fromColumns = std::min<qint64>(10 * names.size(), kMostFromColumns);
    m_run->bufferBytes = std::max(fromColumns, clampedMiBToBytes(m_params.bufferSize));
    m_run->extractor->setBlockSize(std::min(m_run->bufferBytes, limits::kTreeArenaBytes));
}

// ---- Documents.

/// Begin a document of `source`, with the tokenizer that is there or a new one.
void ActionReadJSON::makeTokenizer(ByteSource &source)
{
    constexpr int kCharsPerByte = 3;
    if (m_run->tokenizer) {
        m_run->tokenizer->restart(source);
    } else {
        m_run->tokenizer = std::make_unique<JSONTokenizer>(source, kTokenizerChars, u"");
        m_run->tokenizer->setPermissiveNumbers(m_params.permissiveNumbers);
        m_run->tokenizer->setBufferSize(kCharsPerByte * m_run->bufferBytes);
    }
    if (isFromPin()) {
        m_run->tokenizer->setEncoding(markup::CharMode::Utf8, QByteArray(),
                                      markup::InvalidBytes::Fail);
    }
    m_run->extractor->beginDocument(*m_run->tokenizer);
    m_run->isOpen = true;
}

bool ActionReadJSON::openNext()
{
    return isFromPin() ? openNextText() : openNextFile();
}

bool ActionReadJSON::openNextFile()
{
    while (m_run->nextFile < m_run->files.size() && runIsGood()) {
        const QString name = m_run->files[m_run->nextFile];
        ++m_run->nextFile;
        if (openFile(name)) {
            return true;
        }
        if (!runIsGood()) {
            return false;
        }
        if (m_params.abortIfMissing) {
            return !fail(u"Error: The json file '%1' does not exists"_s.arg(name));
        }
        warn(u"Warning: The json file '%1' does not exists"_s.arg(name));
    }
    return false;
}

bool ActionReadJSON::openFile(const QString &name)
{
    const auto open = [&] {
        m_run->file = std::make_unique<InputFile>(globalParameters(), name, true);
        return m_run->file->isOpen();
    };
    if (!open() && !retryOpening(name, m_params.timeOut, *m_control, open)) {
        return false;
    }
    const auto files = static_cast<float>(m_run->files.size());
    const auto before = static_cast<float>(m_run->nextFile - 1);
    m_run->fileBytes = std::make_unique<FileBytes>(*m_run->file, *this, before / files, 1 / files);
    m_run->fileNameArena.reset();
    m_run->fileNameCell = markup::textCell(m_run->fileNameArena, name.toStdU16String());
    m_run->extractor->beginFile();
    makeTokenizer(*m_run->fileBytes);
    return true;
}

bool ActionReadJSON::openNextText()
{
    if (!m_run->texts->nextRow()) {
        warnMissingPaths();
        return false;
    }
    makeTokenizer(*m_run->texts);
    return true;
}

void ActionReadJSON::putRow()
{
    OneRow *const row = getOutputRowForOutputPin(0);
    int column = 0;
    for (; column < m_run->firstColumn; ++column) {
        row->setCol(column, m_run->texts->row()->getAllColForWrite()[column]);
    }
    for (const uchar *cell : m_run->extractor->cells()) {
        row->setCol(column++, cell);
    }
    if (column < row->numberOfColumns()) {
        row->setCol(column, m_run->fileNameCell);
    }
    setRowReadyForOutput(0);
}

/// The name of what is read, for messages.
QString ActionReadJSON::sourceName() const
{
    if (!isFromPin()) {
        return m_run->files[m_run->nextFile - 1];
    }
    return u"%1 (row %2)"_s.arg(expandString(m_params.colJSON).trimmed(),
                                QString::number(m_run->texts->rowNumber()));
}

bool ActionReadJSON::documentEnds()
{
    m_run->isOpen = false;
    if (!isFromPin()) {
        warnMissingPaths();
    }
    return runIsGood();
}

bool ActionReadJSON::documentFails()
{
    m_run->isOpen = false;
    const markup::MarkupResult &result = m_run->extractor->result();
    if (!runIsGood() || (isFromPin() && result.error == MarkupError::NoTagFound)) {
        return runIsGood();
    }
    const auto text = QString::fromUtf16(markup::errorText(result.error));
    const QString why = !isFromPin() ? m_run->file->failure() : QString();
    if (!why.isEmpty()) {
        MainUI::addLog(m_params.ignoreErrors ? MainUI::Warning : MainUI::Error, why);
    }
    if (!m_params.ignoreErrors) {
        return !fail(u"ERROR: JSON structure error '%1' in file '%3' at line %2\n"_s.arg(
            text, QString::number(result.line), sourceName()));
    }
    if (m_run->errors < kReportedErrors) {
        warn(u"Warning: JSON structure error '%1' in file '%3' at line %2\n"_s.arg(
            text, QString::number(result.line), sourceName()));
        if (++m_run->errors == kReportedErrors) {
            warn(u"More JSON Errors won't be reported"_s);
        }
    }
    return true;
}

void ActionReadJSON::warnMissingPaths()
{
    const QString name = isFromPin() ? expandString(m_params.colJSON).trimmed() : sourceName();
    for (const QString &path : m_run->extractor->missingPaths()) {
        warn(u"Warning: can't find path '"_s + path + u"' inside file '"_s + name + u"'\n"_s);
    }
}

} // namespace corvanta
