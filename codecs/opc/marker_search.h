// Finds markers, such as "%NAME%", in the XML text of a package part.
//
// A marker is a string of bytes that is compared with the text as it is stored. Word processors may
// divide a text into runs with formatting between them, also inside a marker; such a marker is
// split. It is not found by findMarkers(), but by findSplitMarkers() and joinMarkers().
// Threads: pure functions. Time: linear in the text for each marker.
#pragma once
#include "codecs/opc/markup_scan.h"

#include <QByteArray>
#include <QByteArrayView>

#include <vector>

namespace corvanta::opc {

/// One occurrence of a marker; offsets in the text.
struct MarkerHit
{
    qsizetype begin = 0; ///< of its first byte
    qsizetype end = 0;   ///< after its last byte
    int marker = 0;      ///< index in the list of markers
    bool operator==(const MarkerHit &) const = default;
};

/// All occurrences in the order of the text. Occurrences do not overlap: the one that begins first
/// wins, of several that begin together the first of the list. An empty marker is never found.
std::vector<MarkerHit> findMarkers(QByteArrayView text, const std::vector<QByteArray> &markers);

/// Finds out which offsets of a text are inside a tag, and thus in an attribute, or in skipped
/// markup. The text must outlive it. Time: linear in the text for all offsets together.
class TagTracker
{
public:
    explicit TagTracker(QByteArrayView text)
        : m_text(text)
    {
    }
    /// `at` must not be less than in the call before.
    bool isInTag(qsizetype at);
    /// The name of the element that begins directly before the text at the offset of the last
    /// call; empty if an element ends there, or in a tag.
    QByteArrayView element() const;

private:
    QByteArrayView m_text;
    qsizetype m_at = 0;    // of the call before
    qsizetype m_open = -1; // the last "<" before it
    Tag m_tag;             // that begins there
    qsizetype m_end = 0;   // after the tag that begins there; the end of the text for other markup
};

/// The text between the tags of one text element, <w:t> or <a:t>; offsets in the part.
struct TextPiece
{
    qsizetype begin = 0;
    qsizetype end = 0;
    int paragraph = 0; ///< number of the line around it: of the paragraph, up to a break or tab
};

/// The pieces of text that a reader sees, in the order of the part. Ends at broken markup. The
/// paragraphs of a text box are paragraphs of their own.
std::vector<TextPiece> textPieces(QByteArrayView part);

/// A marker whose text is in more than one piece.
struct SplitMarker
{
    int marker = 0;                ///< index in the list of markers
    std::vector<TextPiece> pieces; ///< at least two; only what belongs to the marker
};

/// The markers that are split, in the order of their paragraphs.
std::vector<SplitMarker> findSplitMarkers(QByteArrayView part,
                                          const std::vector<QByteArray> &markers);

/// The part with each split marker moved as a whole to where it begins; it gets the formatting of
/// that run. An element whose text then begins with a space keeps it; all other bytes are
/// unchanged.
QByteArray joinMarkers(QByteArrayView part, const std::vector<QByteArray> &markers);

/// A text that looks like a marker, and the number of pieces that it is in.
struct ListedMarker
{
    QByteArray text; ///< raw, with its percent signs
    int pieces = 1;
    bool isNumeric = false; ///< both signs follow a digit, as in "10%, at most 20%"
};

/// All texts of the form "%NAME%" in the text elements of a part, by paragraph. NAME has up to 100
/// bytes, no percent sign, and neither begins nor ends with a space.
std::vector<ListedMarker> listMarkers(QByteArrayView part);

} // namespace corvanta::opc
