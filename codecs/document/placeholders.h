// Placeholder pictures of a template: pictures whose file name contains the marker of a column.
//
// The name of a linked picture is the target of a relationship of the part that shows it. The
// picture itself refers to the relationship by its id, and says whether it is stored in the
// document or linked. Offsets refer to the given text. Threads: pure functions.
#pragma once
#include "codecs/opc/markup_scan.h"

#include <QByteArray>

#include <vector>

namespace corvanta::document {

/// A relationship to a picture whose target contains a marker.
struct Placeholder
{
    int column = 0;            ///< index of the marker in its list
    QByteArray id;             ///< of the relationship
    qsizetype targetBegin = 0; ///< of the value of Target, without its quotes
    qsizetype targetEnd = 0;
};

/// The placeholders of a relationships part, in its order. A marker may be percent-encoded, as word
/// processors write names of files. The first marker in a target counts.
std::vector<Placeholder> findPlaceholders(QByteArrayView relationships,
                                          const std::vector<QByteArray> &markers);

/// The relationships part with its placeholders declared as stored in the document or as linked.
/// All other bytes are unchanged.
QByteArray withTargetMode(QByteArrayView relationships, const std::vector<QByteArray> &markers,
                          bool isLinked);

/// The part with all pictures that refer to `placeholders` referring to a stored or to a linked
/// picture.
QByteArray withPictureMode(QByteArrayView part, const std::vector<Placeholder> &placeholders,
                           bool isLinked);

/// A number in a part: the range of its digits.
struct NumberRange
{
    qsizetype begin = 0;
    qsizetype end = 0;
    qint64 value = 0;
};

/// The frame that a placeholder picture fills, in English metric units (1/914400 inch).
struct PictureBox
{
    int placeholder = 0;              ///< index in the list
    std::vector<NumberRange> widths;  ///< all are the width of the box; at least one
    std::vector<NumberRange> heights; ///< all are its height; at least one
    // The position of the picture on its slide; empty in a Word document.
    std::vector<NumberRange> lefts;
    std::vector<NumberRange> tops;
};

/// The boxes of the pictures that refer to `placeholders`, in the order of the part. VML pictures
/// have none.
std::vector<PictureBox> findPictureBoxes(QByteArrayView part,
                                         const std::vector<Placeholder> &placeholders);

} // namespace corvanta::document
