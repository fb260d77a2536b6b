// The tail of a worksheet (ECMA-376 part 1, 18.3.1.99), a sequence:
//
//   </sheetData>
//   <sheetCalcPr/> ... <mergeCells/> <phoneticPr/> <conditionalFormatting/> <dataValidations/>
//   <hyperlinks>  <hyperlink ref="B2" r:id="rId1"/> ...
//   <printOptions/> <pageMargins/> ... </worksheet>
#include "codecs/xlsx/sheet_tail.h"

#include "codecs/opc/relationships.h"
#include "codecs/opc/splices.h"

#include <QByteArrayList>

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

namespace corvanta::xlsx {

namespace {

using opc::Attribute;
using opc::Element;
using opc::Error;
using opc::qualified;
using opc::Tag;

/// Walks over the tags of a tail and checks that they are the well-formed end of a worksheet.
class TailCursor
{
public:
    explicit TailCursor(QByteArrayView tail)
        : m_tags(tail)
    {
    }
    /// Move to the next tag after the end of sheetData. Returns false at the end of the tail and
    /// at a fault.
    bool next();
    const Tag &tag() const { return m_tags.tag(); }
    bool isClosing() const { return tag().kind == Tag::Kind::Close; }
    /// 1 for the children of worksheet, 0 for its closing tag.
    int depth() const { return m_depth; }
    /// After next() returned false: whether the tail is complete and well-formed.
    bool isComplete() const { return m_hasRootEnd && !m_isBad && !m_tags.isBroken(); }

private:
    bool skipSheetDataEnd();
    bool close();

    opc::TagCursor m_tags;
    std::vector<QByteArrayView> m_open;
    int m_depth = 0;
    bool m_hasSheetDataEnd = false;
    bool m_hasRootEnd = false;
    bool m_isBad = false;
};

bool TailCursor::next()
{
    if (!skipSheetDataEnd() || !m_tags.next()) {
        return false;
    }
    if (m_hasRootEnd || (isClosing() && !close())) {
        m_isBad = true;
        return false;
    }
    if (!isClosing()) {
        m_depth = static_cast<int>(m_open.size()) + 1;
        if (tag().kind == Tag::Kind::Open) {
            m_open.push_back(tag().name);
        }
    }
    return true;
}

bool TailCursor::skipSheetDataEnd()
{
    while (!m_hasSheetDataEnd && m_tags.next()) {
        m_hasSheetDataEnd = isClosing();
    }
    return m_hasSheetDataEnd;
}

/// Returns false for an end tag that does not match. The end of the root has no opened element.
bool TailCursor::close()
{
    m_depth = static_cast<int>(m_open.size());
    if (m_open.empty()) {
        m_hasRootEnd = tag().local() == QByteArrayView("worksheet");
        return m_hasRootEnd;
    }
    const bool isMatching = m_open.back() == tag().name;
    m_open.pop_back();
    return isMatching;
}

/// Whether an element is before the hyperlinks in the sequence of a worksheet's children.
bool precedesHyperlinks(QByteArrayView local)
{
    static const QByteArrayList kEarlier{
        "sheetCalcPr", "sheetProtection", "protectedRanges",       "scenarios",
        "autoFilter",  "sortState",       "dataConsolidate",       "customSheetViews",
        "mergeCells",  "phoneticPr",      "conditionalFormatting", "dataValidations"};
    return kEarlier.contains(local);
}

QByteArray cellName(const sheet::LinkUse &use)
{
    return sheet::columnLetters(use.column) + QByteArray::number(use.row);
}

/// Finds the list of hyperlinks of a tail, or the place for a new one, and the links to replace.
class HyperlinkFinder
{
public:
    HyperlinkFinder(QByteArrayView prefix, const std::vector<sheet::LinkUse> &uses)
        : m_prefix(prefix)
        , m_uses(uses)
    {
    }
    /// Returns false when the tail is not the well-formed end of a worksheet.
    bool find(QByteArrayView tail);

    std::optional<Element> list;
    qsizetype newList = -1;                                ///< offset for a new one
    std::vector<std::pair<qsizetype, qsizetype>> replaced; ///< elements of cells with new links
    qint64 known = 0;                                      ///< links in the list

private:
    bool isList(const Tag &tag) const
    {
        return tag.prefix() == m_prefix && tag.local() == QByteArrayView("hyperlinks");
    }
    void takeList(const Tag &tag);
    void takeLink(const Tag &tag);
    bool isUsed(QByteArrayView cell);

    QByteArrayView m_prefix;
    const std::vector<sheet::LinkUse> &m_uses;
    std::set<QByteArray> m_cells; // names of the cells of m_uses, once needed
    bool m_isInList = false;
    bool m_isInReplaced = false;
};

bool HyperlinkFinder::find(QByteArrayView tail)
{
    TailCursor cursor(tail);
    while (cursor.next()) {
        const Tag &tag = cursor.tag();
        const bool isChild = cursor.depth() == 1;
        const bool isOwnList = isChild && isList(tag);
        m_isInList = isChild ? isOwnList && tag.kind == Tag::Kind::Open : m_isInList;
        if (isOwnList) {
            takeList(tag);
        } else if (m_isInList && cursor.depth() == 2) {
            takeLink(tag);
        }
        const bool isLater = cursor.depth() == 0 ||
                             (isChild && !cursor.isClosing() && !precedesHyperlinks(tag.local()));
        if (isLater && newList < 0) {
            newList = tag.begin;
        }
    }
    return cursor.isComplete();
}

/// Take a tag of the list itself. A list of one empty tag has its end inside that tag.
void HyperlinkFinder::takeList(const Tag &tag)
{
    if (tag.kind == Tag::Kind::Close) {
        list->closeBegin = tag.begin;
        list->end = tag.end;
    } else if (!list) {
        list = Element{tag, tag.end - 2, tag.end};
    }
}

/// Take a tag of a link: one for a cell that gets a new link is replaced, up to its end tag.
void HyperlinkFinder::takeLink(const Tag &tag)
{
    if (tag.kind == Tag::Kind::Close) {
        if (m_isInReplaced) {
            replaced.back().second = tag.end;
        }
        return;
    }
    ++known;
    m_isInReplaced = isUsed(tag.attribute("ref").value_or(QByteArrayView()));
    if (m_isInReplaced) {
        replaced.emplace_back(tag.begin, tag.end);
    }
}

/// Most sheets have no older links: the set of names is built when the first one is met.
bool HyperlinkFinder::isUsed(QByteArrayView cell)
{
    if (m_cells.empty()) {
        for (const sheet::LinkUse &use : m_uses) {
            m_cells.insert(cellName(use));
        }
    }
    return m_cells.contains(cell.toByteArray());
}

/// How the elements and attributes of hyperlinks are spelled in a sheet.
struct LinkNames
{
    LinkNames(const Tag &root, const Family &family)
        : list(qualified(root.prefix(), "hyperlinks"))
        , link(qualified(root.prefix(), "hyperlink"))
    {
        const auto bound = root.prefixBoundTo(family.relationships);
        if (bound && !bound->isEmpty()) {
            idPrefix = bound->toByteArray();
        } else {
            declaration = " xmlns:r=\"" + family.relationships.toByteArray() + '"';
        }
    }
    /// The elements of all links; each has the attribute `declared`.
    QByteArray links(const std::vector<sheet::LinkUse> &uses, quint64 takenIds,
                     const QByteArray &declared) const
    {
        const QByteArray opening = '<' + link + declared + " ref=\"";
        const QByteArray middle = "\" " + idPrefix + ":id=\"rId";
        QByteArray text;
        for (const sheet::LinkUse &use : uses) {
            const quint64 id = takenIds + static_cast<quint64>(use.number);
            text += opening + cellName(use) + middle + QByteArray::number(id) + "\"/>";
        }
        return text;
    }

    QByteArray list;
    QByteArray link;
    QByteArray idPrefix = "r";
    QByteArray declaration; ///< of the prefix; empty if the root declares it
};

} // namespace

Result<LinkedTail, Error> withHyperlinks(const QByteArray &tail, const QByteArray &rootTag,
                                         const Family &family,
                                         const std::vector<sheet::LinkUse> &uses, quint64 takenIds)
{
    opc::TagCursor rootCursor(rootTag);
    rootCursor.next();
    const Tag &root = rootCursor.tag();
    HyperlinkFinder found(root.prefix(), uses);
    if (!found.find(tail)) {
        return Fault<Error>{Error::Malformed};
    }
    const LinkNames names(root, family);
    opc::Splices splices(tail);
    for (const auto &[begin, end] : found.replaced) {
        splices.replace(begin, end, {});
    }
    if (found.list) {
        // A list that exists may have no declaration, so each link has its own.
        splices.append(*found.list, names.links(uses, takenIds, names.declaration));
    } else {
        splices.insert(found.newList, '<' + names.list + names.declaration + '>' +
                                          names.links(uses, takenIds, {}) + "</" + names.list +
                                          '>');
    }
    const auto replaced = static_cast<qint64>(found.replaced.size());
    return LinkedTail{splices.apply(), found.known - replaced + static_cast<qint64>(uses.size())};
}

Result<TailFacts, Error> readTail(QByteArrayView tail)
{
    TailFacts facts;
    TailCursor cursor(tail);
    while (cursor.next()) {
        const auto attributes = cursor.tag().attributes();
        if (!attributes) {
            return Fault<Error>{Error::Malformed};
        }
        for (const Attribute &one : *attributes) {
            facts.highestUsedId =
                std::max(facts.highestUsedId, opc::idNumber(one.value).value_or(0));
        }
        if (cursor.tag().local() == QByteArrayView("mergeCell")) {
            const auto ref = cursor.tag().attribute("ref");
            if (const auto range = parseRange(ref.value_or(QByteArrayView()))) {
                facts.mergedRanges.push_back(*range);
            }
        }
    }
    if (!cursor.isComplete()) {
        return Fault<Error>{Error::Malformed};
    }
    return facts;
}

} // namespace corvanta::xlsx
