#include "actions/read_xml/read_xml.h"

#include "actions/shared/input_sample.h"
#include "base/checked.h"
#include "base/counted.h"
#include "codecs/encoding/text_decoder.h"
#include "codecs/markup/sample/html_tables.h"
#include "codecs/markup/tokens/html_tokenizer.h"
#include "codecs/markup/tokens/page_charset.h"
#include "corvanta/failure_reason.h"
#include "corvanta/files.h"
#include "corvanta/system.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta {

using markup::MarkupError;
using markup::XMLTokenizer;

namespace {

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
{
    // Only a new action: saved graphs keep the defaults that they were saved with.
    const bool isHtml =
        m_params.fileName.endsWith(".html"_L1) || m_params.fileName.endsWith(".htm"_L1);
    if (isHtml && isNewFile(saved)) {
        applyHtmlDefaults(m_params);
        // Attributes that the action was created with override the defaults of HTML.
        paramTable().read(m_params, saved);
    }
}

void ActionReadXML::start()
{
    LevelReader::start();
    m_reportedErrors = 0;
    m_warnedAssumption = m_warnedContradiction = false;
}

void ActionReadXML::finish()
{
    LevelReader::finish();
    // After the run and its file, which use it.
    m_tokenizer.reset();
}

// ---- Parameters.

std::vector<ReadLevel> ActionReadXML::levelsToRead() const
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
    options.expandSpans = m_params.readHTML && m_params.expandSpans;
    options.countsUnread = m_params.warnUnread && !m_params.readHTML && !m_params.addOnlyText &&
                           !m_params.getTagPresenceFlag;
    return options;
}

// ---- Levels found in the file.

bool ActionReadXML::setParameterValue(int index, const QString &value)
{
    const QString name = parameters().value(index).name;
    m_choosesSoup = m_choosesSoup || name == QLatin1StringView(kXmlTagSoup) ||
                    name == QLatin1StringView(kXmlExpandSpans);
    m_choosesClearTags = m_choosesClearTags || name == QLatin1StringView(kXmlReadClearTags);
    return ParamAction::setParameterValue(index, value);
}

/// Levels that are found in a page read it as browsers do, and those of other documents include
/// elements with only a CDATA section, unless something else was chosen before.
void ActionReadXML::prepareFill()
{
    if (m_params.readHTML && !m_choosesSoup) {
        m_params.tagSoup = m_params.expandSpans = true;
    } else if (!m_params.readHTML && !m_choosesClearTags) {
        m_params.readClearTags = true;
    }
}

/// Read the beginning of the file: the tables of a page or, without any, the repeated elements.
/// Returns nothing, after a message, when the file cannot be read.
std::optional<markup::SampledDocument> ActionReadXML::sampleInput()
{
    std::optional<markup::SampledDocument> document;
    if (m_params.readHTML && !sampleWith([&](XMLTokenizer &tokenizer) {
            document = markup::sampleTables(tokenizer, m_params.zeroBased,
                                            m_params.expandSpans ? markup::Spans::Expanded
                                                                 : markup::Spans::Ignored);
        })) {
        return std::nullopt;
    }
    // The file is opened again: a page without tables is read like any other document.
    if (!document || document->tables.empty()) {
        const markup::SampleOptions options{m_params.autoFillNRows, extractOptions().text,
                                            m_params.zeroBased};
        if (!sampleWith([&](XMLTokenizer &tokenizer) {
                document = markup::sampleDocument(tokenizer, options);
            })) {
            return std::nullopt;
        }
    }
    return document;
}

/// Opens the first file of the pattern and passes its tokens to `look`, which may stop anywhere.
bool ActionReadXML::sampleWith(const std::function<void(XMLTokenizer &)> &look)
{
    InputSample sample(*this, m_params.fileName);
    if (!sample.isOpen()) {
        fileIsMissing(sample.name());
        logReason(sample.reason());
        return false;
    }
    const auto tokenizer = makeTokenizer(sample);
    if (!chooseEncoding(*tokenizer, sample.name())) {
        return false;
    }
    look(*tokenizer);
    // What was not read may have levels of its own.
    const bool isRead = sample.failure().isEmpty() || m_params.skipCorruptedFiles;
    return isRead || fail(sample.failure(), sample.reason());
}

std::unique_ptr<markup::MarkupTokenizer> ActionReadXML::openDocument(ByteSource &source,
                                                                     const QString &name)
{
    auto tokenizer = makeTokenizer(source);
    return chooseEncoding(*tokenizer, name) ? std::move(tokenizer) : nullptr;
}

void ActionReadXML::useTable(const markup::SampledTable &table)
{
    m_params.levels = table.levels;
    m_params.addOnlyText = m_params.addOnlyText || table.isPageTable;
    m_params.skipRows = std::max(m_params.skipRows, table.headRows);
    m_params.warnUnread = !m_params.readHTML;
}

// ---- Documents.

bool ActionReadXML::prepare()
{
    // Variables may make a path empty or give it an index: checked after their expansion.
    const std::vector<ReadLevel> expanded = levelsToRead();
    if (!hasItems(expanded)) {
        return fail(u"ReadXML error: nothing to extract"_s, kNoItems.toString());
    }
    if (!m_params.zeroBased && std::any_of(expanded.begin(), expanded.end(), usesIndexZero)) {
        return fail(u"ReadXML error: [0] indexes are forbidden when using 1-based-indexes"_s);
    }
    LevelRun::Input texts = source();
    texts.column = expandString(m_params.colXML).trimmed();
    texts.copiesInput = m_params.addColBefore;
    return beginRun(texts, expanded, extractOptions());
}

/// A run would report it for the first document whose bytes have no mark.
QVector<ParameterProblem> ActionReadXML::problems() const
{
    QVector<ParameterProblem> problems = LevelReader::problems();
    const QString encoding = expandString(m_params.encoding).trimmed();
    // As for chooseEncoding(), an empty name is "auto".
    const bool isRule = encoding.isEmpty() || encoding.compare(u"auto", Qt::CaseInsensitive) == 0 ||
                        encoding.compare(u"system", Qt::CaseInsensitive) == 0;
    if (isRule || markup::encodingCode(encoding.toUtf8()) != markup::CharMode::CodePage ||
        encoding::TextDecoder::open(encoding)) {
        return problems;
    }
    problems.append(
        {QString::fromLatin1(kXmlEncoding),
         QCoreApplication::translate("Problems", "the encoding '%1' is unknown").arg(encoding)});
    return problems;
}

/// Each document has its own choice, from the parameter and from its first bytes.
bool ActionReadXML::chooseEncoding(XMLTokenizer &tokenizer, const QString &name)
{
    using markup::InvalidBytes;
    if (isFromPin()) {
        expectUtf8(tokenizer);
        return true;
    }
    // The first token reports a source that cannot be read.
    const auto first = tokenizer.peek();
    const QByteArrayView bytes = first ? *first : QByteArrayView();
    markup::EncodingChoice choice =
        markup::chooseEncoding(bytes, expandString(m_params.encoding).trimmed().toUtf8(),
                               readsSoup() ? markup::pageCharset(bytes) : QByteArray());
    if (readsSoup() && choice.name == "ERROR") {
        choice.name = "UTF-8"; // as it declares; invalid bytes are reported
    }
    const bool isSystem = choice.name.compare("system", Qt::CaseInsensitive) == 0;
    const QByteArray encoding = isSystem ? currentACPName().toUtf8() : choice.name;
    if (runIsGood()) { // not for a sample before the run
        warnAssumedEncoding(choice, encoding, name);
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

/// Once per run: further files are likely to be like the first.
void ActionReadXML::warnAssumedEncoding(const markup::EncodingChoice &choice,
                                        const QByteArray &encoding, const QString &name)
{
    const QString used = QString::fromUtf8(encoding);
    if (!choice.contradicted.isEmpty() && !std::exchange(m_warnedContradiction, true)) {
        warn(u"Warning: file '%1' declares the encoding '%2', but its characters are single bytes: "
             "it is read as %3, and so are other files of this kind\n"_s.arg(
                 name, QString::fromUtf8(choice.contradicted), used));
    } else if (!choice.unknown.isEmpty() && !std::exchange(m_warnedContradiction, true)) {
        warn(u"Warning: page '%1' declares the encoding '%2', which is unknown: it is read as %3, "
             "and so are other files of this kind\n"_s.arg(name, QString::fromUtf8(choice.unknown),
                                                           used));
    } else if (choice.isAssumed && !std::exchange(m_warnedAssumption, true)) {
        warn(u"Warning: file '%1' declares no encoding and is not UTF-8: it is read as %2, and so "
             "are other files of this kind. Set 'encoding' if this is wrong\n"_s.arg(name, used));
    }
}

std::unique_ptr<XMLTokenizer> ActionReadXML::makeTokenizer(ByteSource &source) const
{
    // bufferSize counts bytes, the tokenizer characters: the buffer is at least as large as asked
    // for.
    const qint64 buffer =
        std::max(kTokenizerChars, bufferFor(source, clampedMiBToBytes(m_params.bufferSize)));
    std::unique_ptr<XMLTokenizer> tokenizer =
        readsSoup() ? std::make_unique<markup::HtmlTokenizer>(source, buffer)
                    : std::make_unique<XMLTokenizer>(source, buffer);
    tokenizer->setOptions({m_params.readHTML, m_params.ignoreUnknownEntities,
                           m_params.discardNameSpaces, m_params.ignoreInvalidCharInTagName});
    return tokenizer;
}

markup::MarkupTokenizer *ActionReadXML::beginDocument(ByteSource &source, const QString &name)
{
    // One tokenizer for all documents keeps its buffers; each document may have another encoding.
    if (m_tokenizer) {
        m_tokenizer->restart(source);
    } else {
        m_tokenizer = makeTokenizer(source);
    }
    return chooseEncoding(*m_tokenizer, name) ? m_tokenizer.get() : nullptr;
}

void ActionReadXML::documentEnds(const QString &name)
{
    warnDroppedBytes(name);
    if (const Occurrences &entities = m_tokenizer->unknownEntities(); entities.any()) {
        MainUI::addLog(
            MainUI::Info,
            u"File '%1' has %2 to unknown entities, which stay as they are (the declarations of a DTD are not read); the first is %3\n"_s
                .arg(name, counted(entities.count(), u"reference"_s), entities.first()));
    }
    if (const auto &begin = m_tokenizer->unfinished()) {
        warn(u"Warning: page '%1' ends in a comment, a script or a tag that begins at line %2, "
             "column %3: what follows is not read\n"_s.arg(name, QString::number(begin->line()),
                                                           QString::number(begin->column())));
    }
}

/// Once per document, however many bytes were dropped.
void ActionReadXML::warnDroppedBytes(const QString &name)
{
    if (m_tokenizer->hasDiscarded()) {
        warn(u"invalid character found in file '%1'"_s.arg(name));
    }
}

/// Report why a document cannot be read further. Returns true to continue with the next one.
bool ActionReadXML::documentFails(const markup::MarkupResult &result, const QString &name,
                                  const InputFailure &failure)
{
    // The bytes that were dropped before the error may explain it.
    warnDroppedBytes(name);
    const bool isEmpty = result.error == MarkupError::NoTagFound;
    if (isFromPin() && isEmpty) {
        return true; // a row may be blank; a file may not
    }
    // Without iconvDiscardUnconvertible. Not skipped: every further file may have the same
    // encoding.
    if (result.error == MarkupError::CannotConvert) {
        return fail(u"invalid character found in file '%1': aborting"_s.arg(name));
    }
    // An empty page does not fail the run.
    const bool isSkipped = m_params.skipCorruptedFiles || (isEmpty && m_params.readHTML);
    failure.log(isSkipped ? MainUI::Warning : MainUI::Error);
    return reportStructureError(result, name, isSkipped);
}

/// The line and the column count from 1. Skipped errors share one cap, over all files of the run.
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
    if (m_reportedErrors < kMaxReportedErrors) {
        warn(u"WARNING: XML structure error '%1' in file '%4' at line %2, column %3\n"_s.arg(
            text, line, column, name));
    } else if (m_reportedErrors == kMaxReportedErrors) {
        warn(u"WARNING: XML structure error: some more warnings are not reported\n"_s);
    }
    ++m_reportedErrors;
    return true;
}

} // namespace corvanta
