#include "actions/read_xml/read_xml.h"

#include "base/checked.h"
#include "codecs/markup/sample/html_tables.h"
#include "corvanta/files.h"
#include "corvanta/system.h"

#include <algorithm>
#include <tuple>

using namespace Qt::StringLiterals;

namespace corvanta {

using markup::MarkupError;
using markup::XMLTokenizer;

namespace {

constexpr int kMaxReportedErrors = 50;
constexpr qint64 kTokenizerChars = 1'048'576;

/// Such a path finds nothing with indexes that count from 1.
bool usesIndexZero(const ReadLevel &level)
{
    const auto hasZero = [](const QString &path) { return path.contains("[0]"_L1); };
    return hasZero(level.initialPath) ||
           std::any_of(level.items.begin(), level.items.end(),
                       [&](const ReadItem &item) { return hasZero(item.path); });
}

} // namespace

ActionReadXML::ActionReadXML(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kReadXmlEntry, saved, parameters)
    , m_corrupted(MainUI::Warning, kMaxReportedErrors,
                  u"WARNING: XML structure error: some more warnings are not reported\n"_s)
{
    // Only a new action: saved graphs keep the defaults that they were saved with.
    const bool isHtml =
        m_params.fileName.endsWith(".html"_L1) || m_params.fileName.endsWith(".htm"_L1);
    if (isHtml && isNewFile(saved)) {
        applyHtmlDefaults(m_params);
        paramTable().read(m_params, saved);
    }
}

void ActionReadXML::start()
{
    finish();
    m_series.reset();
    m_corrupted.reset();
}

void ActionReadXML::finish()
{
    m_series.finish();
    m_run.reset();
    m_tokenizer.reset();
}

bool ActionReadXML::step()
{
    return (m_run || prepare()) && m_run->step();
}

/// The levels with their variables expanded; in HTML mode without the "tbody" in paths copied from
/// a browser.
std::vector<ReadLevel> ActionReadXML::levels() const
{
    std::vector<ReadLevel> levels = expandedLevels(m_params.levels, *this);
    for (ReadLevel &level : levels) {
        if (!m_params.readHTML) {
            break;
        }
        level.initialPath = markup::withoutTbody(level.initialPath);
        for (ReadItem &item : level.items) {
            item.path = markup::withoutTbody(item.path);
        }
    }
    return levels;
}

markup::ExtractOptions ActionReadXML::extractOptions() const
{
    markup::ExtractOptions options;
    options.zeroBased = m_params.zeroBased;
    options.outputSubTags = m_params.outputSubTags;
    options.tagNames = m_params.tagNameSummary ? markup::TagNames::Summary : markup::TagNames::Runs;
    options.text = {m_params.readClearTags, m_params.readHTML};
    options.allText = m_params.addOnlyText;
    options.namesForText = m_params.outputTagNames;
    options.presence = m_params.getTagPresenceFlag;
    options.ignoreEmpty = m_params.ignoreEmptyTag;
    options.skip = m_params.skipRows;
    return options;
}

/// Read the beginning of the file: the tables of a page or, without any, the repeated elements.
/// Returns nothing, after a message, when the file cannot be read.
std::optional<markup::SampledDocument> ActionReadXML::sampleInput()
{
    std::optional<markup::SampledDocument> document;
    if (m_params.readHTML && !sampleWith([&](XMLTokenizer &tokenizer) {
            document = markup::sampleTables(tokenizer, m_params.zeroBased);
        })) {
        return std::nullopt;
    }
    if (!document || document->tables.empty()) {
        const markup::SampleOptions options{m_params.autoFillNRows, extractOptions().text,
                                            m_params.zeroBased};
        document.reset();
        sampleWith([&](XMLTokenizer &tokenizer) {
            document = markup::sampleDocument(tokenizer, options);
        });
    }
    return document;
}

/// Returns false, after a message, when the file cannot be read.
bool ActionReadXML::sampleWith(const std::function<void(XMLTokenizer &)> &look)
{
    InputSample sample(*this, m_params.fileName);
    if (!sample.isOpen()) {
        fileIsMissing(sample.name());
        return false;
    }
    const auto tokenizer = makeTokenizer(sample);
    if (!chooseEncoding(*tokenizer, sample.name())) {
        return false;
    }
    look(*tokenizer);
    return true;
}

/// Take the levels from the file if the graph has none.
bool ActionReadXML::fill(int table)
{
    if (hasItems(m_params.levels) || isFromPin()) {
        return true;
    }
    const auto document = sampleInput();
    const markup::SampledTable *const chosen = document ? chooseTable(*document, table) : nullptr;
    if (chosen != nullptr) {
        m_params.levels = chosen->levels;
        m_params.addOnlyText = m_params.addOnlyText || chosen->isPageTable;
        m_params.skipRows = std::max(m_params.skipRows, chosen->headRows);
    }
    return chosen != nullptr;
}

QVector<InputTable> ActionReadXML::listTables()
{
    const auto document = isFromPin() ? std::nullopt : sampleInput();
    return document ? listedTables(*document, m_params.levels) : QVector<InputTable>();
}

/// Create m_run. Returns false when the run has failed.
bool ActionReadXML::prepare()
{
    const std::vector<ReadLevel> expanded = levels();
    if (!hasItems(expanded)) {
        return fail(u"ReadXML error: nothing to extract"_s);
    }
    if (!m_params.zeroBased && std::any_of(expanded.begin(), expanded.end(), usesIndexZero)) {
        return fail(u"ReadXML error: [0] indexes are forbidden when using 1-based-indexes"_s);
    }
    m_run = std::make_unique<LevelRun>(*this, m_series, static_cast<LevelRun::Format &>(*this),
                                       input(), expanded, extractOptions());
    return true;
}

LevelRun::Input ActionReadXML::input() const
{
    LevelRun::Input input;
    input.fileName = m_params.fileName;
    input.isFromPin = isFromPin();
    input.column = expandString(m_params.colXML).trimmed();
    input.copiesInput = m_params.addColBefore;
    input.namesFiles = m_params.outputFilenames;
    input.retries = m_params.timeOut;
    return input;
}

/// Set the encoding of the document's bytes. Returns false when the encoding is unknown.
bool ActionReadXML::chooseEncoding(XMLTokenizer &tokenizer, const QString &name)
{
    using markup::InvalidBytes;
    if (isFromPin()) {
        // PinText delivers UTF-8, whatever encoding the text declares.
        std::ignore =
            tokenizer.setEncoding(markup::CharMode::Utf8, QByteArray(), InvalidBytes::Fail);
        return true;
    }
    // The first token reports a source that cannot be read.
    const auto first = tokenizer.peek();
    QByteArray encoding = markup::chooseEncoding(
        first ? *first : QByteArrayView(), expandString(m_params.encoding).trimmed().toUtf8());
    if (encoding.compare("system", Qt::CaseInsensitive) == 0) {
        encoding = currentACPName().toUtf8();
    }
    const auto set = tokenizer.setEncoding(
        markup::encodingCode(encoding), encoding,
        m_params.iconvDiscardUnconvertible ? InvalidBytes::Discard : InvalidBytes::Fail);
    if (!set && set.fault().code == MarkupError::CannotConvert) {
        return fail(u"Invalid character encoding (%1) for file '%2'."_s.arg(
            QString::fromUtf8(encoding), name));
    }
    return true;
}

std::unique_ptr<XMLTokenizer> ActionReadXML::makeTokenizer(ByteSource &source) const
{
    auto tokenizer = std::make_unique<XMLTokenizer>(
        source, std::max(kTokenizerChars, clampedMiBToBytes(m_params.bufferSize)));
    tokenizer->setOptions({m_params.readHTML, m_params.ignoreUnknownEntities,
                           m_params.discardNameSpaces, m_params.ignoreInvalidCharInTagName});
    return tokenizer;
}

markup::MarkupTokenizer *ActionReadXML::beginDocument(ByteSource &source, const QString &name)
{
    if (m_tokenizer) {
        m_tokenizer->restart(source);
    } else {
        m_tokenizer = makeTokenizer(source);
    }
    return chooseEncoding(*m_tokenizer, name) ? m_tokenizer.get() : nullptr;
}

void ActionReadXML::warnDroppedBytes(const QString &name)
{
    if (m_tokenizer->hasDiscarded()) {
        warn(u"invalid character found in file '%1'"_s.arg(name));
    }
}

/// Report why a document cannot be read further. Returns true to continue with the next one.
bool ActionReadXML::documentFails(const markup::MarkupResult &result, const QString &name,
                                  const QString &why)
{
    warnDroppedBytes(name);
    const bool isEmpty = result.error == MarkupError::NoTagFound;
    if (isFromPin() && isEmpty) {
        return true; // a row may be blank; a file may not
    }
    if (result.error == MarkupError::CannotConvert) {
        return fail(u"invalid character found in file '%1': aborting"_s.arg(name));
    }
    // An empty page does not fail the run.
    const bool isSkipped = m_params.skipCorruptedFiles || (isEmpty && m_params.readHTML);
    if (!why.isEmpty()) {
        MainUI::addLog(isSkipped ? MainUI::Warning : MainUI::Error, why);
    }
    return reportStructureError(result, name, isSkipped);
}

/// Report a structure error. Returns false when it fails the run.
bool ActionReadXML::reportStructureError(const markup::MarkupResult &result, const QString &name,
                                         bool isSkipped)
{
    const auto text = QString::fromUtf16(markup::errorText(result.error));
    const QString line = QString::number(result.line);
    const QString column = QString::number(result.column);
    if (!isSkipped) {
        return fail(u"ERROR: XML structure error '%1' in file '%4' at line %2, column %3\n"_s.arg(
            text, line, column, name));
    }
    m_warningFlag = 1;
    m_corrupted.add(u"WARNING: XML structure error '%1' in file '%4' at line %2, column %3\n"_s.arg(
        text, line, column, name));
    return true;
}

bool ActionReadXML::fileIsMissing(const QString &name)
{
    if (m_params.abortIfMissing) {
        return fail(u"Error: The xml file '%1' does not exists"_s.arg(name));
    }
    warn(u"Warning: The xml file '%1' does not exists"_s.arg(name));
    return true;
}

bool ActionReadXML::columnIsMissing(const QString &name)
{
    return fail(u"ERROR: XML parsing Error: Cannot find column '"_s + name + u"'\n"_s);
}

void ActionReadXML::pathIsMissing(const QString &path, const QString &name)
{
    warn(u"Warning: can't find path '"_s + path + u"' inside file '"_s + name + u"'\n"_s);
}

} // namespace corvanta
