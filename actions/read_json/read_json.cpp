#include "actions/read_json/read_json.h"

#include "actions/shared/input_sample.h"
#include "base/checked.h"
#include "base/limits.h"
#include "corvanta/failure_reason.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

using markup::JSONTokenizer;
using markup::MarkupError;

namespace {

/// 96 MiB; see bufferBytes().
constexpr qint64 kMaxBytesFromColumns = 0x6000000;

/// A row of pin 1: a path to read.
struct TagRow
{
    ReadItem item;
    qulonglong level = 0; ///< from 1; others mean the last level
};

/// The columns have the names of the attributes or, without a column "path", are path and name in
/// this order.
TagRow readTagRow(const OneRow &row)
{
    const auto textAt = [&](int column) {
        return column >= 0 && column < row.numberOfColumns() ? row.text(column) : QString();
    };
    const auto textOf = [&](const QString &name) { return textAt(row.getIndexOfColumn(name)); };
    if (row.getIndexOfColumn(u"path"_s) < 0) {
        return {{textAt(0), textAt(1), false}};
    }
    const QString tagName = textOf(u"tagName"_s);
    const bool isTagName = xmltob(reinterpret_cast<const char16_t *>(tagName.utf16()), 0) != 0;
    return {{textOf(u"path"_s), textOf(u"name"_s), isTagName}, textOf(u"level"_s).toULongLong()};
}

} // namespace

ActionReadJSON::ActionReadJSON(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kReadJsonEntry, saved, parameters)
{
}

void ActionReadJSON::start()
{
    LevelReader::start();
    m_reportedErrors = 0;
}

void ActionReadJSON::finish()
{
    LevelReader::finish();
    // After the run and its file, which use it.
    m_tokenizer.reset();
}

/// Read the beginning of the file. Returns nothing, after a message, when the file is missing.
std::optional<markup::SampledDocument> ActionReadJSON::sampleInput()
{
    InputSample sample(*this, m_params.fileName);
    if (!sample.isOpen()) {
        fileIsMissing(sample.name());
        logReason(sample.reason());
        return std::nullopt;
    }
    const auto tokenizer = makeTokenizer(sample);
    auto document = markup::sampleDocument(*tokenizer, {m_params.autoFillNRows, {}, true});
    // What was not read may have levels of its own.
    if (!sample.failure().isEmpty() && !m_params.ignoreErrors) {
        fail(sample.failure(), sample.reason());
        return std::nullopt;
    }
    return document;
}

void ActionReadJSON::useTable(const markup::SampledTable &table)
{
    m_params.levels = table.levels;
    m_params.outputSubTags = m_params.outputSubTags || table.namesAreData;
    m_params.newMode = true; // the paths begin at the document
    m_params.warnUnread = true;
}

std::unique_ptr<JSONTokenizer> ActionReadJSON::makeTokenizer(ByteSource &source) const
{
    auto tokenizer = std::make_unique<JSONTokenizer>(source, kTokenizerChars, u"");
    tokenizer->setPermissiveNumbers(m_params.permissiveNumbers);
    return tokenizer;
}

markup::ExtractOptions ActionReadJSON::extractOptions() const
{
    markup::ExtractOptions options;
    options.outputSubTags = m_params.outputSubTags;
    // Kept for saved graphs: without newMode, paths begin at the document's only element.
    options.keepRoot = m_params.newMode;
    options.nullIsMissing = m_params.nullIsMissing;
    // Reading ahead would take the next row of the pin, while rows of this one are still made.
    options.canReadAhead = !isFromPin();
    options.countsUnread = m_params.warnUnread;
    return options;
}

// ---- Before the first document.

bool ActionReadJSON::prepare()
{
    std::vector<ReadLevel> levels = m_params.levels;
    // Pin 1 is read to its end before the first document, so that the columns are known.
    if (m_params.readTagsFromInPin && !readTags(&levels)) {
        return false;
    }
    if (!hasItems(levels)) {
        return fail(u"ReadJson error: nothing to extract"_s, kNoItems.toString());
    }
    LevelRun::Input texts = source();
    texts.column = expandString(m_params.colJSON).trimmed();
    texts.mode = m_params.oneJSONPerRow ? PinText::Mode::RowByRow : PinText::Mode::Stream;
    texts.copiesInput = m_params.appendToRow;
    return beginRun(texts, expandedLevels(levels, *this), extractOptions());
}

bool ActionReadJSON::readTags(std::vector<ReadLevel> *levels)
{
    // A graph without levels gets one: every row of the pin then names it or falls back to it.
    levels->resize(std::max<size_t>(levels->size(), 1));
    for (ReadLevel &level : *levels) {
        level.items.clear();
    }
    while (const OneRow *row = getNextRowFromInPin(1)) {
        const TagRow tag = readTagRow(*row);
        const bool isKnown = tag.level >= 1 && tag.level <= levels->size();
        (isKnown ? (*levels)[tag.level - 1] : levels->back()).items.push_back(tag.item);
    }
    return runIsGood();
}

/// Wide tables get larger buffers: ten bytes per column, up to a limit.
qint64 ActionReadJSON::bufferBytes() const
{
    const qint64 fromColumns =
        std::min<qint64>(10 * qint64(run().columnCount()), kMaxBytesFromColumns);
    return std::max(fromColumns, clampedMiBToBytes(m_params.bufferSize));
}

// ---- Documents.

markup::MarkupTokenizer *ActionReadJSON::beginDocument(ByteSource &source, const QString &)
{
    // One tokenizer for all documents keeps its buffers.
    constexpr int kCharsPerByte = 3;
    if (m_tokenizer) {
        m_tokenizer->restart(source);
    } else {
        m_tokenizer = makeTokenizer(source);
        m_tokenizer->setBufferSize(bufferFor(source, kCharsPerByte * bufferBytes()));
        run().setBlockSize(bufferFor(source, std::min(bufferBytes(), limits::kTreeArenaBytes)));
    }
    if (isFromPin()) {
        expectUtf8(*m_tokenizer);
    }
    return m_tokenizer.get();
}

/// The text of a structure error is fixed and has no column, which a file of one line needs.
void ActionReadJSON::logPlace(const markup::MarkupResult &result, const QString &name)
{
    MainUI::addLog(MainUI::Info,
                   u"The JSON structure error in file '%1' is at line %2, column %3.\n"_s.arg(
                       name, QString::number(result.line), QString::number(result.column + 1)));
    if (result.error == MarkupError::CannotConvert) {
        MainUI::addLog(
            MainUI::Info,
            u"The byte there is not UTF-8, the encoding of JSON: convert the file to UTF-8 first.\n"_s);
    }
}

/// Structure errors beyond the 50th are not reported, however many files have one.
bool ActionReadJSON::documentFails(const markup::MarkupResult &result, const QString &name,
                                   const InputFailure &failure)
{
    if (isFromPin() && result.error == MarkupError::NoTagFound) {
        return true; // a row may be blank; a file may not
    }
    failure.log(m_params.ignoreErrors ? MainUI::Warning : MainUI::Error);
    const auto text = QString::fromUtf16(markup::errorText(result.error));
    if (!m_params.ignoreErrors) {
        fail(u"ERROR: JSON structure error '%1' in file '%3' at line %2\n"_s.arg(
            text, QString::number(result.line), name));
        logPlace(result, name);
        return false;
    }
    if (m_reportedErrors < kMaxReportedErrors) {
        warn(u"Warning: JSON structure error '%1' in file '%3' at line %2\n"_s.arg(
            text, QString::number(result.line), name));
        logPlace(result, name);
        if (++m_reportedErrors == kMaxReportedErrors) {
            warn(u"More JSON Errors won't be reported"_s);
        }
    }
    return true;
}

} // namespace corvanta
