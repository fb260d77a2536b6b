#include "codecs/xlsx/sheet_splitter.h"

#include "base/limits.h"
#include "base/number.h"

#include <QByteArrayList>

#include <algorithm>
#include <cstring>
#include <limits>
#include <set>
#include <string_view>

namespace corvanta::xlsx {

namespace {

// One tag, comment or CDATA section.
constexpr qsizetype kMaxMarkupBytes = qsizetype(16) << 20;
// The declaration and a byte-order mark.
constexpr qsizetype kBeginningBytes = 256;

Fault<Error> fault(Error code, qsizetype offset = -1)
{
    return {code, {}, offset};
}

} // namespace

Result<void, Error> SheetSplitter::push(QByteArrayView piece)
{
    if (m_place == Place::Tail) {
        m_tail += piece;
        return m_tail.size() > limits::kMemberBytes ? fault(Error::TooLarge)
                                                    : Result<void, Error>();
    }
    m_text += piece;
    if (!m_isEncodingKnown && m_text.size() < kBeginningBytes) {
        return {}; // too little to tell the encoding
    }
    return scan();
}

Result<void, Error> SheetSplitter::finish()
{
    if (const auto scanned = scan(); !scanned) {
        return scanned.fault();
    }
    if (m_place != Place::Tail) {
        return fault(m_rootTag.isEmpty() || m_depth > 0 ? Error::Malformed : Error::Unexpected);
    }
    if (const auto used = highestUsedId(m_tail); !used) {
        return used.fault();
    }
    return {};
}

/// Go through the markup of m_text; what the text's end cuts in two waits for the next piece.
Result<void, Error> SheetSplitter::scan()
{
    if (!m_isEncodingKnown && !isUtf8Text(m_text)) {
        return fault(Error::Encoding);
    }
    m_isEncodingKnown = true;
    for (bool isMore = true; isMore && m_place != Place::Tail;) {
        const auto taken = takeNext();
        if (!taken) {
            return taken.fault();
        }
        isMore = *taken;
    }
    if (m_place == Place::Tail) {
        m_tail += QByteArrayView(m_text).sliced(m_at);
        m_text = {};
    } else {
        keepUpTo(m_at);
        m_text = m_text.sliced(m_at);
        m_kept = 0;
    }
    m_at = 0;
    return {};
}

/// Take the next markup behind m_at; false when the text ends in front of it or inside it, with
/// m_at where scanning goes on.
Result<bool, Error> SheetSplitter::takeNext()
{
    const bool isInRows = m_place != Place::Front;
    const qsizetype begin = isInRows ? findRowsMarkup() : m_text.indexOf('<', m_at);
    m_at = begin < 0 ? m_text.size() : begin;
    if (begin < 0 || (isInRows && m_text.size() - begin <= m_rowsEnd.size() + 1)) {
        return false;
    }
    Tag tag;
    qsizetype end = 0;
    const Scan found = scanMarkup(m_text, begin, &tag, &end);
    if (found == Scan::Broken) {
        return fault(Error::Malformed);
    }
    if (found == Scan::Incomplete) {
        const bool isTooLong = m_text.size() - begin > kMaxMarkupBytes;
        return isTooLong ? Result<bool, Error>(fault(Error::TooLarge)) : false;
    }
    m_at = end;
    if (found == Scan::Tag) {
        const auto taken = isInRows ? takeRowsTag(tag) : takeFrontTag(tag);
        if (!taken) {
            return taken.fault();
        }
    }
    return true;
}

/// Give out what was not yet given out of m_text up to `offset`, unless it is dropped.
void SheetSplitter::keepUpTo(qsizetype offset)
{
    if (m_place != Place::DroppedRows && !m_isInDimension) {
        m_head += QByteArrayView(m_text).sliced(m_kept, offset - m_kept);
    }
    m_kept = offset;
}

Result<void, Error> SheetSplitter::takeFrontTag(const Tag &tag)
{
    if (tag.kind == Tag::Kind::Close) {
        --m_depth;
        if (m_isInDimension && m_depth == 1) {
            m_isInDimension = false;
            m_kept = tag.end;
        }
        return m_depth > 0 ? Result<void, Error>() : fault(Error::Unexpected);
    }
    if (m_rootTag.isEmpty()) {
        return takeRoot(tag);
    }
    const bool isTopLevel = m_depth == 1 && tag.prefix() == m_prefix;
    if (isTopLevel && tag.local() == QByteArrayView("sheetData")) {
        openSheetData(tag);
        return {};
    }
    if (isTopLevel && tag.local() == QByteArrayView("dimension")) {
        keepUpTo(tag.begin);
        m_kept = tag.end;
        m_isInDimension = tag.kind == Tag::Kind::Open;
    }
    m_depth += tag.kind == Tag::Kind::Open ? 1 : 0;
    return {};
}

Result<void, Error> SheetSplitter::takeRoot(const Tag &tag)
{
    const auto bound = [&](const Family &family) {
        const auto attributes = tag.attributes();
        const QByteArray declaration =
            tag.prefix().isEmpty() ? QByteArray("xmlns") : "xmlns:" + tag.prefix().toByteArray();
        return attributes && tag.attribute(declaration) == family.main;
    };
    if (tag.local() != QByteArrayView("worksheet") || tag.kind != Tag::Kind::Open) {
        return fault(Error::Unexpected);
    }
    if (!bound(kTransitional) && !bound(kStrict)) {
        return fault(Error::Unexpected);
    }
    m_family = bound(kStrict) ? kStrict : kTransitional;
    m_rootTag = m_text.sliced(tag.begin, tag.end - tag.begin);
    m_prefix = tag.prefix().toByteArray();
    m_rowName = qualified(m_prefix, "row");
    m_formulaName = qualified(m_prefix, "f");
    m_rowsEnd = '/' + qualified(m_prefix, "sheetData");
    m_depth = 1;
    return {};
}

/// The new rows are written without a prefix: where the sheet uses one, its namespace becomes the
/// default inside sheetData.
void SheetSplitter::openSheetData(const Tag &tag)
{
    const bool isDeclared = tag.prefix().isEmpty() || tag.attribute("xmlns").has_value();
    const QByteArray declaration =
        isDeclared ? QByteArray() : " xmlns=\"" + m_family.main.toByteArray() + '"';
    const qsizetype behindName = tag.begin + 1 + tag.name.size();
    const QByteArray name = tag.name.toByteArray();
    const bool isEmpty = tag.kind == Tag::Kind::Empty;
    keepUpTo(behindName);
    m_head += declaration + tag.inside.toByteArray() + '>';
    m_kept = tag.end;
    m_place = Place::Rows;
    if (isEmpty) {
        // As if the closing tag stood there.
        m_text.insert(tag.end, "</" + name + '>');
    }
}

/// The next "<" of a tag that has to be looked at: a row, the end of the rows, a comment or the
/// like, and while rows are dropped a formula; also one so near the text's end that it cannot be
/// told. -1 when there is none. Nearly all of a sheet's bytes are passed over here, so each tag is
/// told by one or two of its characters before names are compared.
qsizetype SheetSplitter::findRowsMarkup() const
{
    const char *const begin = m_text.constData();
    const char *const end = begin + m_text.size();
    const char *at = begin + m_at;
    const auto is = [&at](const QByteArray &name) {
        return std::memcmp(at + 1, name.constData(), static_cast<size_t>(name.size())) == 0;
    };
    const char rowStart = m_rowName.front();
    const char endStart = m_rowsEnd[1];
    const bool wantsFormulas = m_place == Place::DroppedRows;
    while ((at = static_cast<const char *>(std::memchr(at, '<', static_cast<size_t>(end - at)))) !=
           nullptr) {
        const char first = at[1]; // a NUL stands behind the text
        const bool isFound = end - at <= m_rowsEnd.size() + 1 || first == '!' || first == '?' ||
                             (first == '/' && at[2] == endStart && is(m_rowsEnd)) ||
                             (first == rowStart && is(m_rowName)) ||
                             (wantsFormulas && is(m_formulaName));
        if (isFound) {
            return at - begin;
        }
        ++at;
    }
    return -1;
}

Result<void, Error> SheetSplitter::takeRowsTag(const Tag &tag)
{
    const bool isClosing = tag.kind == Tag::Kind::Close;
    if (isClosing && tag.name == QByteArrayView(m_rowsEnd).sliced(1)) {
        keepUpTo(tag.begin);
        m_place = Place::Tail;
        m_at = tag.begin;
        return {};
    }
    if (!isClosing && tag.name == QByteArrayView(m_rowName)) {
        return takeRow(tag);
    }
    if (!isClosing && tag.name == QByteArrayView(m_formulaName)) {
        m_hasDroppedFormula = m_hasDroppedFormula || m_place == Place::DroppedRows;
    }
    return {};
}

Result<void, Error> SheetSplitter::takeRow(const Tag &tag)
{
    const auto number = tag.attribute("r");
    quint64 row = m_lastRow + 1; // a row without a number follows the one before it
    if (number) {
        const std::string_view digits(number->data(), static_cast<size_t>(number->size()));
        if (!parseUInt(digits, std::numeric_limits<quint32>::max(), &row)) {
            return fault(Error::Unexpected);
        }
    }
    if (m_startRow != kAppend && m_place == Place::Rows && row >= m_startRow) {
        keepUpTo(tag.begin);
        m_place = Place::DroppedRows;
    }
    m_lastRow = std::max(m_lastRow, row);
    return {};
}

namespace {

/// Calls `take(tag, depth)` for every opening or empty tag of a tail; the depth of the worksheet's
/// children is 1. False when the tail is not the well-formed end of a worksheet.
template <class Take> bool forEachTailTag(QByteArrayView tail, Take take)
{
    std::vector<QByteArrayView> open;
    bool hasSheetDataEnd = false;
    bool hasRootEnd = false;
    bool isBroken = false;
    qsizetype at = 0;
    Tag tag;
    while (nextTag(tail, &at, &tag, &isBroken)) {
        const bool isClosing = tag.kind == Tag::Kind::Close;
        if (!hasSheetDataEnd) {
            hasSheetDataEnd = isClosing;
        } else if (hasRootEnd ||
                   (isClosing && open.empty() && tag.local() != QByteArrayView("worksheet"))) {
            return false;
        } else if (isClosing && open.empty()) {
            hasRootEnd = true;
            take(tag, 0);
        } else if (isClosing) {
            if (open.back() != tag.name) {
                return false;
            }
            take(tag, static_cast<int>(open.size()));
            open.pop_back();
        } else {
            take(tag, static_cast<int>(open.size()) + 1);
            if (tag.kind == Tag::Kind::Open) {
                open.push_back(tag.name);
            }
        }
    }
    return !isBroken && hasRootEnd;
}

/// The children of a worksheet that stand between sheetData and hyperlinks.
bool precedesHyperlinks(QByteArrayView local)
{
    static const QByteArrayList kEarlier{
        "sheetCalcPr", "sheetProtection", "protectedRanges",       "scenarios",
        "autoFilter",  "sortState",       "dataConsolidate",       "customSheetViews",
        "mergeCells",  "phoneticPr",      "conditionalFormatting", "dataValidations"};
    return kEarlier.contains(local);
}

struct HyperlinkPlace
{
    std::optional<Element> list;
    std::optional<qsizetype> newList;
    std::vector<std::pair<qsizetype, qsizetype>> replaced; ///< elements whose cells get new links
    bool isWhole = false;
};

HyperlinkPlace findHyperlinkPlace(const QByteArray &tail, QByteArrayView prefix,
                                  const std::set<QByteArray> &cells)
{
    HyperlinkPlace place;
    bool isInList = false;
    bool isReplaced = false;
    const auto takeLink = [&](const Tag &tag) {
        if (tag.kind == Tag::Kind::Close) {
            place.replaced.back().second = tag.end;
            return;
        }
        isReplaced = cells.contains(tag.attribute("ref").value_or(QByteArrayView()).toByteArray());
        if (isReplaced) {
            place.replaced.emplace_back(tag.begin, tag.end);
        }
    };
    place.isWhole = forEachTailTag(tail, [&](const Tag &tag, int depth) {
        const bool isList =
            depth == 1 && tag.prefix() == prefix && tag.local() == QByteArrayView("hyperlinks");
        isInList = depth == 1 ? isList && tag.kind == Tag::Kind::Open : isInList;
        if (isList && tag.kind == Tag::Kind::Close) {
            place.list->closeBegin = tag.begin;
            place.list->end = tag.end;
        } else if (isList && !place.list) {
            place.list = Element{tag, tag.end - 2, tag.end};
        } else if (isInList && depth == 2 && (isReplaced || tag.kind != Tag::Kind::Close)) {
            takeLink(tag);
        }
        const bool isLater = depth == 0 || (depth == 1 && tag.kind != Tag::Kind::Close &&
                                            !precedesHyperlinks(tag.local()));
        if (isLater && !place.newList) {
            place.newList = tag.begin;
        }
    });
    return place;
}

} // namespace

Result<QByteArray, Error> withHyperlinks(const QByteArray &tail, const QByteArray &rootTag,
                                         const Family &family,
                                         const std::vector<HyperlinkUse> &uses)
{
    Tag root;
    qsizetype at = 0;
    bool isBroken = false;
    nextTag(rootTag, &at, &root, &isBroken);
    std::set<QByteArray> cells;
    for (const HyperlinkUse &use : uses) {
        cells.insert(use.cell);
    }
    const HyperlinkPlace place = findHyperlinkPlace(tail, root.prefix(), cells);
    if (!place.isWhole || !place.newList) {
        return fault(Error::Malformed);
    }
    const auto bound = root.prefixBoundTo(family.relationships);
    const bool isKnown = bound && !bound->isEmpty();
    const QByteArray idName = (isKnown ? bound->toByteArray() : QByteArray("r")) + ":id=\"";
    const QByteArray declaration =
        isKnown ? QByteArray() : " xmlns:r=\"" + family.relationships.toByteArray() + '"';
    const QByteArray elementPrefix =
        root.prefix().isEmpty() ? QByteArray() : root.prefix().toByteArray() + ':';
    QByteArray links;
    for (const HyperlinkUse &use : uses) {
        links += '<' + qualified(root.prefix(), "hyperlink") +
                 (place.list ? declaration : QByteArray()) + " ref=\"" + use.cell + "\" " + idName +
                 use.relationshipId + "\"/>";
    }
    Splices splices(tail);
    for (const auto &[begin, end] : place.replaced) {
        splices.replace(begin, end, {});
    }
    if (place.list) {
        splices.append(*place.list, links);
    } else {
        const QByteArray name = qualified(root.prefix(), "hyperlinks");
        splices.insert(*place.newList, '<' + name + declaration + '>' + links + "</" + name + '>');
    }
    return splices.apply();
}

Result<quint64, Error> highestUsedId(QByteArrayView tail)
{
    quint64 highest = 0;
    bool areAttributesGood = true;
    const bool isWhole = forEachTailTag(tail, [&](const Tag &tag, int) {
        const auto attributes = tag.attributes();
        areAttributesGood = areAttributesGood && attributes;
        if (!attributes) {
            return;
        }
        for (const Attribute &one : *attributes) {
            quint64 number = 0;
            if (one.value.startsWith("rId") &&
                parseUInt(std::string_view(one.value.data() + 3,
                                           static_cast<size_t>(one.value.size() - 3)),
                          std::numeric_limits<quint32>::max(), &number)) {
                highest = std::max(highest, number);
            }
        }
    });
    if (!isWhole || !areAttributesGood) {
        return fault(Error::Malformed);
    }
    return highest;
}

} // namespace corvanta::xlsx
