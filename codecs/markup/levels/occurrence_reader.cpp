// Where the occurrences are, depending on the document:
//
//     XML, HTML              inside the element at the initial path
//     JSON, path or subtag   inside the member at the initial path
//     JSON array             its items
//     JSON object            its members, or the object itself: see classifyObject()
//     JSON scalar            the value itself
//     keepRoot off           in the tree of a whole top-level value
#include "codecs/markup/levels/occurrence_reader.h"

#include <algorithm>

namespace corvanta::markup {

namespace {

/// Members of a top-level object that are classified before the object is treated as a container.
constexpr int kMembersToClassify = 64;

const std::optional<quint32> kNoOccurrence;

} // namespace

OccurrenceReader::OccurrenceReader(LevelState &first, const ExtractOptions &options)
    : m_first(first)
    , m_filter(options)
    , m_keepRoot(options.keepRoot)
    , m_isHtml(options.text.html)
    , m_path(first.initialPath)
{
    m_rootPath.add(first.initialPath);
}

void OccurrenceReader::beginDocument(MarkupTokenizer &tokenizer)
{
    m_tokenizer = &tokenizer;
    m_json = dynamic_cast<JSONTokenizer *>(&tokenizer);
    m_tokenizer->setBalanced(true);
    m_tokenizer->setDocumentMarks(true);
    m_record.beginDocument(tokenizer);
    m_record.builder().setReturnSingleChild(!m_keepRoot);
    m_ended = m_sawContent = false;
    m_nextInTree = MarkupTree::kNone;
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
        m_path.restartCounts();
        return startValue();
    case Token::Start:
        m_sawContent = true;
        return startElement();
    case Token::End:
        m_path.leave();
        return kNoOccurrence;
    case Token::EndOfData:
        return endOfData();
    case Token::Error:
        return faultHere(m_tokenizer->errorCode());
    default:
        return kNoOccurrence;
    }
}

OccurrenceReader::Found OccurrenceReader::endOfData()
{
    m_ended = true;
    if (!m_sawContent) {
        return faultHere(MarkupError::NoTagFound);
    }
    return kNoOccurrence;
}

/// An element begins inside the open part of the path.
OccurrenceReader::Found OccurrenceReader::startElement()
{
    const RawText name = m_tokenizer->rawText();
    const bool isInContainer = m_path.isAtEnd();
    if (isInContainer && m_first.isOccurrence(name)) {
        return buildElement();
    }
    if (!isInContainer && m_json == nullptr && !m_isHtml) {
        m_path.beginRoot(); // an XML file may hold several documents; an HTML file is one page
    }
    if (!isInContainer && m_path.enter(name)) {
        m_first.containerFound = m_first.containerFound || m_path.isAtEnd();
        return kNoOccurrence;
    }
    if (const auto skipped = m_record.skipElement(); !skipped) {
        return skipped.fault();
    }
    return kNoOccurrence;
}

OccurrenceReader::Found OccurrenceReader::buildElement()
{
    if (const auto built = m_record.buildElement(); !built) {
        return built.fault();
    }
    m_tree = &m_record.tree();
    if (m_filter.isIgnored(*m_tree, 1)) {
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

/// Find out what a top-level object is that no path leads into. It is a record (JSON Lines) when
/// one of its first members is what an item selects; otherwise its members are the occurrences.
OccurrenceReader::Found OccurrenceReader::classifyObject()
{
    for (int members = 0; members < kMembersToClassify; ++members) {
        const Token token = m_tokenizer->nextToken();
        if (token == Token::Error) {
            return faultHere(m_tokenizer->errorCode());
        }
        if (token == Token::DocumentEnd) {
            break;
        }
        if (const auto added = m_record.addElement(); !added) {
            return added.fault();
        }
        m_documents = classifyMember();
        if (m_documents == Documents::Records) {
            return buildValue();
        }
        if (m_documents == Documents::Containers) {
            break;
        }
    }
    m_tree = &m_record.tree();
    m_treeContainer = 0;
    m_nextInTree = 1;
    return nextInTree();
}

/// Decide by the member that was added last.
OccurrenceReader::Documents OccurrenceReader::classifyMember()
{
    m_tree = &m_record.tree();
    auto member = static_cast<quint32>(m_tree->items().size() - 1);
    while (m_tree->item(member).parent != 0) {
        member = m_tree->item(member).parent;
    }
    if (m_first.paths.isFirstStep(m_tree->raw(member))) {
        return Documents::Records;
    }
    const std::span<const quint32> found = m_first.paths.resolve(*m_tree, member);
    const bool hasItem = std::any_of(found.begin(), found.end(), [&](quint32 item) {
        return item != MarkupTree::kNone && item != member;
    });
    return hasItem ? Documents::Containers : Documents::Undecided;
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
    if (m_treeContainer == MarkupTree::kNone) {
        return kNoOccurrence;
    }
    m_first.containerFound = true;
    m_nextInTree = m_treeContainer + 1;
    return nextInTree();
}

} // namespace corvanta::markup
