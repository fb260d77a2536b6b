// A worksheet (ECMA-376 part 1, 18.3.1.99) and the parts into which it is split:
//
//   <worksheet>                                     head
//     <sheetPr/> <sheetViews/> <cols/> ...          head
//     <dimension/>                                  dropped: the last row is not yet known
//     <sheetData>                                   head; opened if it is <sheetData/>
//       <row r="1">...</row>                        head
//       <row r="START">...</row> ...                dropped
//     </sheetData>                                  tail
//     <mergeCells/> <hyperlinks/> ... </worksheet>  tail
#include "codecs/xlsx/sheet_splitter.h"

#include "base/limits.h"
#include "codecs/opc/part_names.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace corvanta::xlsx {

namespace {

using opc::Error;
using opc::Scan;
using opc::Tag;

// One tag, comment or CDATA section.
constexpr qsizetype kMaxMarkupBytes = qsizetype(16) << 20;
// The declaration and a byte-order mark.
constexpr qsizetype kBeginningBytes = 256;

Fault<Error> fault(Error code, qsizetype offset = -1)
{
    return {code, {}, offset};
}

/// The family whose main namespace the root's own prefix has; std::nullopt for any other.
std::optional<Family> familyOf(const Tag &root)
{
    const QByteArray declaration =
        root.prefix().isEmpty() ? QByteArray("xmlns") : "xmlns:" + root.prefix().toByteArray();
    const auto uri = root.attributes() ? root.attribute(declaration) : std::nullopt;
    for (const Family &family : {kStrict, kTransitional}) {
        if (uri == family.main) {
            return family;
        }
    }
    return std::nullopt;
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
        return {}; // too short to determine the encoding
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
    auto facts = readTail(m_tail);
    if (!facts) {
        return facts.fault();
    }
    m_tailFacts = std::move(*facts);
    return {};
}

/// Scan the markup of m_text. Markup that the end of the text cuts is kept for the next piece.
Result<void, Error> SheetSplitter::scan()
{
    if (!m_isEncodingKnown && !opc::isUtf8Text(m_text)) {
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
        noteCells(m_at);
        keepUpTo(m_at);
        m_text = m_text.sliced(m_at);
        m_kept = 0;
        m_cells = 0;
    }
    m_at = 0;
    return {};
}

/// Take the next markup after m_at. Returns false when the text ends before or inside it; m_at is
/// where the scan then continues.
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
    switch (opc::scanMarkup(m_text, begin, &tag, &end)) {
    case Scan::Broken:
        return fault(Error::Malformed);
    case Scan::Incomplete:
        // A tag without an end must not make the text grow without limit.
        return m_text.size() - begin > kMaxMarkupBytes ? Result<bool, Error>(fault(Error::TooLarge))
                                                       : false;
    case Scan::Skipped:
        m_at = end;
        return true;
    case Scan::Tag:
        break;
    }
    m_at = end;
    const auto taken = isInRows ? takeRowsTag(tag) : takeFrontTag(tag);
    return taken ? Result<bool, Error>(true) : taken.fault();
}

/// Only appended rows are below rows that may have no cells. The first cell of a row ends the
/// search.
void SheetSplitter::noteCells(qsizetype offset)
{
    if (m_place == Place::Rows && !dropsRows() && !m_hasCells) {
        const QByteArrayView text(m_text);
        const QByteArrayView cells = text.sliced(m_cells, offset - m_cells);
        m_hasCells = cells.contains(m_cellEnd) || (m_hasPlainRows && cells.contains("</c>"));
    }
    m_cells = offset;
}

void SheetSplitter::endRow(qsizetype offset)
{
    noteCells(offset);
    m_lastRowWithCells = m_hasCells ? std::max(m_lastRowWithCells, m_row) : m_lastRowWithCells;
    m_hasCells = false;
}

/// Move the part of m_text up to `offset` that was not yet kept to the head, unless it is dropped.
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
        return closeFrontTag(tag);
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

Result<void, Error> SheetSplitter::closeFrontTag(const Tag &tag)
{
    --m_depth;
    if (m_isInDimension && m_depth == 1) {
        m_isInDimension = false;
        m_kept = tag.end;
    }
    return m_depth > 0 ? Result<void, Error>() : fault(Error::Unexpected);
}

Result<void, Error> SheetSplitter::takeRoot(const Tag &tag)
{
    const auto family = familyOf(tag);
    if (tag.local() != QByteArrayView("worksheet") || tag.kind != Tag::Kind::Open || !family) {
        return fault(Error::Unexpected);
    }
    m_family = *family;
    m_rootTag = m_text.sliced(tag.begin, tag.end - tag.begin);
    m_prefix = tag.prefix().toByteArray();
    m_rowName = opc::qualified(m_prefix, "row");
    m_formulaName = opc::qualified(m_prefix, "f");
    m_cellEnd = "</" + opc::qualified(m_prefix, "c") + '>';
    // Programs use one prefix throughout; only the rows of an earlier update have none.
    m_isMainDefault = tag.attribute("xmlns") == family->main;
    m_rowsEnd = '/' + opc::qualified(m_prefix, "sheetData");
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
    const auto uri = tag.attribute("xmlns");
    m_hasPlainRows = !m_prefix.isEmpty() && (uri ? *uri == m_family.main : m_isMainDefault);
    m_rowStarts = {'<' + m_rowName};
    if (m_hasPlainRows) {
        m_rowStarts.emplace_back("<row");
    }
    const qsizetype afterName = tag.begin + 1 + tag.name.size();
    const QByteArray name = tag.name.toByteArray();
    const bool isEmpty = tag.kind == Tag::Kind::Empty;
    keepUpTo(afterName);
    m_head += declaration + tag.inside.toByteArray() + '>';
    m_kept = tag.end;
    m_place = Place::Rows;
    if (isEmpty) {
        // The scan then finds the closing tag like any other.
        m_text.insert(tag.end, "</" + name + '>');
    }
}

/// The next "<" of a tag that matters: a row, the end of the rows, a comment or the like, and while
/// rows are dropped a formula; also one too close to the end of the text to be recognised. -1 when
/// there is none. Nearly all bytes of a sheet are skipped here, so one or two characters of each
/// tag are compared before whole names are.
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
        const char first = at[1]; // the text ends with a NUL
        const bool isFound = end - at <= m_rowsEnd.size() + 1 || first == '!' || first == '?' ||
                             (first == '/' && at[2] == endStart && is(m_rowsEnd)) ||
                             (first == rowStart && is(m_rowName)) ||
                             (wantsFormulas && is(m_formulaName)) ||
                             (m_hasPlainRows && (first == 'r' || (wantsFormulas && first == 'f')));
        if (isFound) {
            return at - begin;
        }
        ++at;
    }
    return -1;
}

bool SheetSplitter::isOwn(const Tag &tag, QByteArrayView local) const
{
    return tag.local() == local &&
           (tag.prefix() == m_prefix || (m_hasPlainRows && tag.prefix().isEmpty()));
}

Result<void, Error> SheetSplitter::takeRowsTag(const Tag &tag)
{
    const bool isClosing = tag.kind == Tag::Kind::Close;
    if (isClosing && tag.name == QByteArrayView(m_rowsEnd).sliced(1)) {
        endRow(tag.begin);
        keepUpTo(tag.begin);
        m_place = Place::Tail;
        m_at = tag.begin;
        return {};
    }
    if (!isClosing && isOwn(tag, "row")) {
        return takeRow(tag);
    }
    if (!isClosing && isOwn(tag, "f")) {
        m_hasDroppedFormula = m_hasDroppedFormula || m_place == Place::DroppedRows;
    }
    return {};
}

Result<void, Error> SheetSplitter::takeRow(const Tag &tag)
{
    const auto number = tag.attribute("r");
    // A row without a number follows the one before it.
    const auto parsed = number ? opc::partNumber(*number) : m_lastRow + 1;
    if (!parsed) {
        return fault(Error::Unexpected);
    }
    const quint64 row = *parsed;
    endRow(tag.begin);
    // Rows may be out of order in files of careless programs: one above the place stays.
    const bool isDropped = dropsRows() && row >= m_startRow;
    if (isDropped != (m_place == Place::DroppedRows)) {
        keepUpTo(tag.begin);
        m_place = isDropped ? Place::DroppedRows : Place::Rows;
    }
    m_row = row;
    m_lastRow = std::max(m_lastRow, row);
    return {};
}

} // namespace corvanta::xlsx
