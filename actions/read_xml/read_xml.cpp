#include "actions/read_xml/read_xml.h"

#include "base/checked.h"
#include "codecs/markup/html_tables.h"
#include "corvanta/files.h"
#include "corvanta/system_encoding.h"
#include "plugin/catalogue.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

using markup::MarkupError;
using markup::XMLTokenizer;

namespace {

constexpr int kMaxReportedErrors = 50;
constexpr qint64 kTokenizerChars = 1'048'576;

/// The encoding that a byte-order mark at the start tells; empty without one. The mark of UTF-32 is
/// looked for first: in UTF-16 it would be a mark and a NUL.
QByteArray markedEncoding(QByteArrayView first)
{
    if (first.startsWith(QByteArrayView("\xFF\xFE\0\0", 4))) {
        return "UTF-32LE";
    }
    if (first.startsWith("\xEF\xBB\xBF")) {
        return "UTF-8";
    }
    if (first.startsWith("\xFE\xFF")) {
        return "UTF-16BE";
    }
    return first.startsWith("\xFF\xFE") ? "UTF-16LE" : "";
}

/// The name of a document's encoding; `asked` is what the user chose.
QByteArray encodingOf(QByteArrayView first, const QString &asked)
{
    QByteArray name = markedEncoding(first);
    if (!name.isEmpty()) {
        return name;
    }
    const bool isAuto = asked.isEmpty() || asked.compare("auto"_L1, Qt::CaseInsensitive) == 0;
    name = isAuto ? markup::guessEncoding(first) : asked.toUtf8();
    return name.compare("system", Qt::CaseInsensitive) == 0 ? currentACPName().toUtf8() : name;
}

} // namespace

ActionReadXML::ActionReadXML(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(catalogueRow("readXML"), saved, parameters)
    , m_corrupted(MainUI::Warning, kMaxReportedErrors,
                  u"WARNING: XML structure error: some more warnings are not reported\n"_s)
{
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
    const auto hasZero = [](const QString &path) { return path.contains("[0]"_L1); };
    const bool anyZero = std::any_of(expanded.begin(), expanded.end(), [&](const ReadLevel &level) {
        return hasZero(level.initialPath) ||
               std::any_of(level.items.begin(), level.items.end(),
                           [&](const ReadItem &item) { return hasZero(item.path); });
    });
    if (!m_params.zeroBased && anyZero) {
        return fail(u"ReadXML error: [0] indexes are forbidden when using 1-based-indexes"_s);
    }
    LevelRun::Input input;
    input.fileName = m_params.fileName;
    input.isFromPin = isFromPin();
    input.column = expandString(m_params.colXML).trimmed();
    input.copiesInput = m_params.addColBefore;
    input.namesFiles = m_params.outputFilenames;
    input.retries = m_params.timeOut;
    m_run = std::make_unique<LevelRun>(*this, m_series, static_cast<LevelRun::Format &>(*this),
                                       std::move(input), expanded, extractOptions());
    return true;
}

/// Set the encoding of the document's bytes. Returns false when the encoding is unknown.
bool ActionReadXML::chooseEncoding(XMLTokenizer &tokenizer, const QString &name)
{
    using markup::InvalidBytes;
    if (isFromPin()) {
        tokenizer.setEncoding(markup::CharMode::Utf8, QByteArray(), InvalidBytes::Fail);
        return true;
    }
    QByteArrayView first;
    tokenizer.peek(&first);
    const QByteArray encoding = encodingOf(first, expandString(m_params.encoding).trimmed());
    const MarkupError error = tokenizer.setEncoding(
        markup::encodingCode(encoding), encoding,
        m_params.iconvDiscardUnconvertible ? InvalidBytes::Discard : InvalidBytes::Fail);
    if (error == MarkupError::CannotConvert) {
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

bool ActionReadXML::documentFails(const markup::MarkupResult &result, const QString &name,
                                  const QString &why)
{
    warnDroppedBytes(name);
    const bool isEmpty = result.error == MarkupError::NoTagFound;
    if (isFromPin() && isEmpty) {
        return true;
    }
    if (result.error == MarkupError::CannotConvert) {
        return fail(u"invalid character found in file '%1': aborting"_s.arg(name));
    }
    // An empty page does not fail the run.
    const bool isSkipped = m_params.skipCorruptedFiles || (isEmpty && m_params.readHTML);
    if (!why.isEmpty()) {
        MainUI::addLog(isSkipped ? MainUI::Warning : MainUI::Error, why);
    }
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
