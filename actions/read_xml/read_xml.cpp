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

constexpr int kReportedWarnings = 50;
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
    , m_corrupted(MainUI::Warning, kReportedWarnings,
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
    m_corrupted.reset();
    m_progress = 0;
}

void ActionReadXML::finish()
{
    m_run.reset();
    m_tokenizer.reset();
}

bool ActionReadXML::step()
{
    return (m_run || prepare()) && m_run->step();
}

/// The levels with their variables expanded; in HTML mode without the "tbody" of browsers' paths.
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

/// What the file holds: the tables of a page, or, where there are none, what repeats. Nothing, with
/// a message, when it cannot be read.
std::optional<markup::SampledDocument> ActionReadXML::sampled()
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
    InputSample sample(globalParameters(), expandFile(m_params.fileName));
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
    const auto document = sampled();
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
    const auto document = isFromPin() ? std::nullopt : sampled();
    return document ? listedTables(*document, m_params.levels) : QVector<InputTable>();
}

/// Make the run; false when it has failed.
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
    input.fileName = expandFile(m_params.fileName);
    input.isFromPin = isFromPin();
    input.column = expandString(m_params.colXML).trimmed();
    input.copiesInput = m_params.addColBefore;
    input.namesFiles = m_params.outputFilenames;
    input.retries = m_params.timeOut;
    m_run = std::make_unique<LevelRun>(*this, *m_control, static_cast<LevelRun::Format &>(*this),
                                       std::move(input), expanded, extractOptions(), &m_progress);
    return true;
}

/// Say how the document's bytes are encoded; false when that cannot be.
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
    // A page without any element is no reason to stop.
    const bool goesOn = m_params.skipCorruptedFiles || (isEmpty && m_params.readHTML);
    if (!why.isEmpty()) {
        MainUI::addLog(goesOn ? MainUI::Warning : MainUI::Error, why);
    }
    const auto text = QString::fromUtf16(markup::errorText(result.error));
    const QString line = QString::number(result.line);
    const QString column = QString::number(result.column);
    if (!goesOn) {
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

void ActionReadXML::columnIsMissing(const QString &name)
{
    fail(u"ERROR: XML parsing Error: Cannot find column '"_s + name + u"'\n"_s);
}

void ActionReadXML::pathIsMissing(const QString &path, const QString &name)
{
    warn(u"Warning: can't find path '"_s + path + u"' inside file '"_s + name + u"'\n"_s);
}

} // namespace corvanta
