// Where the occurrences are, depending on the document:
//
//     XML, HTML              inside the element at the initial path
//     JSON, path or subtag   inside the member at the initial path
//     JSON array             its items
//     JSON object            its members, or the object itself: see classifyObject()
//     JSON scalar            the value itself
//     keepRoot off           in the tree of a whole top-level value
#include "codecs/markup/levels/occurrence_reader.h"

#include "codecs/markup/tokens/xml_tokenizer.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::markup {

namespace {

/// Bytes of a top-level object that are read before it is treated as a container: much more than a
/// record has, and few enough to hold in memory.
constexpr size_t kBytesToClassify = size_t(16) << 20;

const std::optional<quint32> kNoOccurrence;

/// True for an element that has rows of its table, other than "tbody", which is not a token.
bool groupsRows(const RawText &name)
{
    return nameMatches(name, u"thead") || nameMatches(name, u"tfoot");
}

} // namespace

OccurrenceReader::OccurrenceReader(LevelState &first, const ExtractOptions &options,
                                   UnreadParts &unread)
    : m_first(first)
    , m_filter(options)
    , m_keepRoot(options.keepRoot)
    , m_isHtml(options.text.html)
    , m_readsRowGroups(options.expandSpans && first.readsRows())
    , m_canReadAhead(options.canReadAhead)
    , m_countsUnread(options.countsUnread)
    , m_unread(unread)
    , m_path(first.initialPath)
{
    m_rootPath.add(first.initialPath);
    m_rootPath.countRepeats(true);
    for (const QString &path : first.level.leftOut) {
        leaveOut(path, {options.zeroBased, u'/'});
    }
}

/// Paths from the document begin with "/": "/a/b" is that part, "/a/" all that is around or in a.
void OccurrenceReader::leaveOut(const QString &path, const PathSyntax &syntax)
{
    if (!path.startsWith(u'/')) {
        return; // a part of the records
    }
    const bool isAll = path.endsWith(u'/') && !path.endsWith("\\/"_L1);
    const std::vector<PathStep> steps = parsePath(QStringView(path).chopped(isAll ? 1 : 0), syntax);
    const std::vector<PathStep> &own = m_first.initialPath;
    const auto differ = std::ranges::mismatch(steps, own);
    const auto common = static_cast<size_t>(differ.in1 - steps.begin());
    if (isAll) {
        m_leftOutBelow = std::max(m_leftOutBelow, common + 1);
    } else if (differ.in1 != steps.end()) {
        m_leftOut.push_back({common, differ.in1->name});
    }
}

/// Whether an element that begins now is left out on purpose.
bool OccurrenceReader::isLeftOut(const RawText &name) const
{
    const size_t open = m_path.openSteps();
    return open < m_leftOutBelow || std::ranges::any_of(m_leftOut, [&](const LeftOutside &part) {
               return part.openSteps == open && nameMatches(name, part.name);
           });
}

void OccurrenceReader::beginFile()
{
    m_documents = Documents::Undecided;
    m_skippedLines = 0;
    m_path.resetRepeats();
    m_rootPath.resetCounts();
}

void OccurrenceReader::beginDocument(MarkupTokenizer &tokenizer)
{
    m_tokenizer = &tokenizer;
    m_json = dynamic_cast<JSONTokenizer *>(&tokenizer);
    m_tokenizer->setBalanced(true);
    m_tokenizer->setDocumentMarks(true);
    if (m_json != nullptr) {
        m_json->setStrayTextHandler([this] {
            m_unread.strayTexts.add([this] { return placeText(m_tokenizer->tokenStart()); });
        });
    }
    m_record.beginDocument(tokenizer);
    m_record.builder().setReturnSingleChild(!m_keepRoot);
    m_ended = m_sawContent = m_isBuildingValue = false;
    m_nextInTree = MarkupTree::kNone;
    m_openRowGroups = 0;
    m_path.restart();
}

OccurrenceReader::Found OccurrenceReader::next()
{
    if (const auto found = nextInTree()) {
        return found;
    }
    m_tokenizer->unpin();
    while (!m_ended) {
        Found found = m_keepRoot ? readToken() : readWholeValue();
        if (!found || *found) {
            return found;
        }
    }
    return kNoOccurrence;
}

bool OccurrenceReader::resume()
{
    const auto rewind = m_isBuildingValue || !m_keepRoot ? JSONTokenizer::Rewind::ToNextLine
                                                         : JSONTokenizer::Rewind::Never;
    if (m_json == nullptr) {
        return false;
    }
    const LineCounter position = m_tokenizer->position();
    if (!m_json->resume(rewind)) {
        addAfterNul(m_json->lostAfterNul(), position);
        return false;
    }
    m_isBuildingValue = false;
    m_nextInTree = MarkupTree::kNone;
    m_path.restart();
    return true;
}

void OccurrenceReader::endDocument()
{
    if (!m_tokenizer->isEndedByNul()) {
        return;
    }
    const LineCounter position = m_tokenizer->position();
    m_tokenizer->unpin(); // after an error, a record is still held
    addAfterNul(m_tokenizer->discardRest(), position);
}

void OccurrenceReader::addAfterNul(qint64 bytes, const LineCounter &position)
{
    if (bytes > 0 && m_unread.bytesAfterNul == 0) {
        m_unread.nulPlace = placeText(position);
    }
    m_unread.bytesAfterNul += bytes;
}

PathSet::Repeats OccurrenceReader::repeats() const
{
    const PathSet::Repeats inTrees = m_rootPath.repeatsOf(0);
    const Occurrences &inStream = m_path.repeats();
    return {inTrees.count + inStream.count(), inStream.any() ? inStream.first() : inTrees.first};
}

QString OccurrenceReader::placeOf(TextSpan text) const
{
    const bool isInBuffer = m_tokenizer->isPinned() && !text.isExternal();
    return placeText(isInBuffer ? m_tokenizer->positionInPinned(text.offset())
                                : m_tokenizer->position());
}

/// The next occurrence in a tree that may hold more than one.
std::optional<quint32> OccurrenceReader::nextInTree()
{
    if (m_nextInTree == MarkupTree::kNone) {
        return std::nullopt;
    }
    const quint32 found = m_filter.firstOccurrence(*m_tree, m_first, m_nextInTree, m_treeContainer);
    m_nextInTree = found == MarkupTree::kNone ? found : m_tree->item(found).next;
    return found == MarkupTree::kNone ? std::nullopt : std::optional(found);
}

/// Read one token, and the occurrence that it begins, if any.
OccurrenceReader::Found OccurrenceReader::readToken()
{
    switch (m_tokenizer->nextToken()) {
    case Token::DocumentStart:
        m_sawContent = true;
        m_isBuildingValue = false;
        m_path.restartCounts();
        return startValue();
    case Token::Start:
        m_sawContent = true;
        return startElement();
    case Token::End:
        leaveElement();
        return kNoOccurrence;
    case Token::EndOfData:
        return endOfData();
    case Token::Error:
        return faultHere(m_tokenizer->errorCode());
    case Token::Text:
        // XML outside of the document element, or a JSON value that no path leads into.
        if (!m_isHtml && m_tokenizer->depth() == 0) {
            m_unread.strayTexts.add([this] { return placeText(m_tokenizer->tokenStart()); });
        } else if (m_countsUnread && !isLeftOut({})) {
            addOutside(u"text"_s);
        }
        return kNoOccurrence;
    default:
        return kNoOccurrence;
    }
}

OccurrenceReader::Found OccurrenceReader::endOfData()
{
    m_ended = true;
    const bool hasStrayText = m_json != nullptr && m_unread.strayTexts.any();
    return m_sawContent || hasStrayText ? Found(kNoOccurrence) : faultHere(MarkupError::NoTagFound);
}

/// An element begins inside the open part of the path.
OccurrenceReader::Found OccurrenceReader::startElement()
{
    const RawText name = m_tokenizer->rawText();
    const bool isInContainer = m_path.isAtEnd();
    if (isInContainer && m_first.isOccurrence(name)) {
        return buildElement();
    }
    if (isInContainer && m_readsRowGroups && groupsRows(name)) {
        ++m_openRowGroups;
        ++m_rowGroupTags;
        return kNoOccurrence;
    }
    if (!isInContainer && m_json == nullptr && !m_isHtml) {
        m_path.beginRoot(); // an XML file may hold several documents; an HTML file is one page
    }
    const auto place = [this] { return placeText(m_tokenizer->tokenStart()); };
    const qint64 repeats = m_path.repeats().count();
    if (!isInContainer && m_path.enter(name, place)) {
        m_first.containerFound = m_first.containerFound || m_path.isAtEnd();
        return kNoOccurrence;
    }
    if (m_countsUnread && m_path.repeats().count() == repeats && !isLeftOut(name)) {
        addOutside(u"'%1'"_s.arg(QStringView(decoded(name)).toString()));
    }
    if (const auto skipped = m_record.skipElement(); !skipped) {
        return skipped.fault();
    }
    return kNoOccurrence;
}

/// An element ends that is not skipped.
void OccurrenceReader::leaveElement()
{
    if (m_openRowGroups > 0) {
        --m_openRowGroups;
        ++m_rowGroupTags;
    } else {
        m_path.leave();
    }
}

/// Count a part between the records; the current token begins it.
void OccurrenceReader::addOutside(const QString &what)
{
    m_unread.outside.add(
        [&] { return u"%1 at %2"_s.arg(what, placeText(m_tokenizer->tokenStart())); });
}

OccurrenceReader::Found OccurrenceReader::buildElement()
{
    const XMLTokenizer *const xml = m_tokenizer->asXml();
    m_rowGroup = m_rowGroupTags + (xml != nullptr ? xml->rowGroup() : 0);
    if (const auto built = m_record.buildElement(); !built) {
        return built.fault();
    }
    m_tree = &m_record.tree();
    // An empty row is left to the caller: cells of other rows may span it.
    if (!m_readsRowGroups && m_filter.isIgnored(*m_tree, 1)) {
        m_tokenizer->unpin();
        return kNoOccurrence;
    }
    return std::optional<quint32>(1);
}

/// A top-level JSON value begins.
OccurrenceReader::Found OccurrenceReader::startValue()
{
    const auto kind = m_json->documentKind();
    const bool isContainer =
        m_documents == Documents::Containers && kind == JSONTokenizer::DocumentKind::Object;
    if (!m_first.initialPath.empty() || !m_first.subtag.empty() || isContainer ||
        kind == JSONTokenizer::DocumentKind::Array) {
        return kNoOccurrence;
    }
    m_record.begin();
    m_isBuildingValue = true;
    const bool isRecord =
        m_documents == Documents::Records || kind == JSONTokenizer::DocumentKind::Scalar;
    return isRecord ? buildValue() : classifyObject();
}

/// Add the rest of the value to the tree; its root is the occurrence.
OccurrenceReader::Found OccurrenceReader::buildValue()
{
    if (const auto built = m_record.addRestOfValue(); !built) {
        return built.fault();
    }
    m_tree = &m_record.tree();
    return std::optional<quint32>(0);
}

/// Find out what a top-level object is that no path leads into, from all of it. It is a record
/// (JSON Lines) when an item asks for one of its direct members, wherever that is. If none does,
/// see classifyValue().
OccurrenceReader::Found OccurrenceReader::classifyObject()
{
    while (m_isBuildingValue) {
        const Token token = m_tokenizer->nextToken();
        if (token == Token::Error) {
            return faultHere(m_tokenizer->errorCode());
        }
        const auto member = static_cast<quint32>(m_record.tree().items().size());
        if (token == Token::DocumentEnd) {
            return useValue(classifyValue());
        }
        if (const auto added = m_record.addElement(); !added) {
            return added.fault();
        }
        if (m_first.paths.isFirstStep(m_record.tree().raw(member))) {
            m_documents = Documents::Records;
            return buildValue();
        }
        m_isBuildingValue = m_tokenizer->pinnedOffset() <= kBytesToClassify;
    }
    m_documents = Documents::Containers;
    return useValue(m_documents);
}

/// A whole object was read, and no item asks for a direct member. It is a record when all its
/// members are scalars, or when a second object follows. In a text that arrives alone, where the
/// next one is not known yet, it is a container when an item is found inside a member; without
/// that, later texts are classified again.
OccurrenceReader::Documents OccurrenceReader::classifyValue()
{
    m_tree = &m_record.tree();
    const quint32 first = m_tree->first(0, ItemKind::Child);
    bool hasOnlyScalars = first != MarkupTree::kNone;
    bool isContainer = m_first.readsOwnText() || first == MarkupTree::kNone;
    for (quint32 member = first; member != MarkupTree::kNone; member = m_tree->sibling(member)) {
        hasOnlyScalars = hasOnlyScalars && m_tree->item(member).count(ItemKind::Text) > 0;
        isContainer = isContainer || (!m_canReadAhead && hasItemInside(member));
    }
    if (m_canReadAhead) {
        isContainer = m_first.readsOwnText() || (!hasOnlyScalars && !m_json->isObjectNext());
    }
    const Documents documents = isContainer ? Documents::Containers : Documents::Records;
    m_documents = m_canReadAhead ? documents : m_documents;
    return documents;
}

/// True when an item is found in the member `member` of the tree.
bool OccurrenceReader::hasItemInside(quint32 member)
{
    m_first.paths.countRepeats(false); // it is only a question
    m_first.paths.countUnread(false);
    const std::span<const quint32> found = m_first.paths.resolve(*m_tree, member);
    m_first.paths.countRepeats(true);
    m_first.paths.countUnread(m_countsUnread);
    return std::any_of(found.begin(), found.end(),
                       [&](quint32 item) { return item != MarkupTree::kNone && item != member; });
}

/// Take the occurrences of the tree of a top-level value: its root, or the members of the root.
OccurrenceReader::Found OccurrenceReader::useValue(Documents documents)
{
    m_tree = &m_record.tree();
    if (documents == Documents::Records) {
        return std::optional<quint32>(0);
    }
    m_isBuildingValue = false;
    m_treeContainer = 0;
    m_nextInTree = 1;
    return nextInTree();
}

// Kept for saved graphs: with keepRoot off, the path begins at the only element of the value, which
// is known at the end of the value (LevelExtractor.BeginsAtTheOnlyElementWithKeepRootOff).
OccurrenceReader::Found OccurrenceReader::readWholeValue()
{
    MarkupResult result;
    const MarkupNode root = m_record.builder().parseNext(*m_tokenizer, result, false);
    m_sawContent = m_sawContent || m_tokenizer->token() == Token::DocumentEnd;
    if (m_tokenizer->token() == Token::EndOfData) {
        return endOfData();
    }
    if (result.error != MarkupError::None && result.error != MarkupError::NoTagFound) {
        return Fault{result};
    }
    if (root.isEmpty()) {
        return kNoOccurrence;
    }
    m_tree = root.tree();
    m_treeContainer = m_rootPath.resolve(*m_tree, root.index()).front();
    m_rootPath.placeRepeats([this](TextSpan name) { return placeOf(name); });
    if (m_treeContainer == MarkupTree::kNone) {
        return kNoOccurrence;
    }
    m_first.containerFound = true;
    m_nextInTree = m_treeContainer + 1;
    return nextInTree();
}

} // namespace corvanta::markup
