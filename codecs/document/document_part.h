// One part of a template with the places where values of a row are put in.
//
// The places are found once. A document is then made from the pieces of text between them:
//
//     <w:t>Dear %name%,</w:t>  ->  <w:t>Dear | value | ,</w:t>
//               slot
#pragma once
#include "codecs/document/image_file.h"
#include "codecs/document/placeholders.h"
#include "codecs/opc/marker_search.h"

#include <QByteArray>

#include <vector>

namespace corvanta::document {

/// What is searched for in the parts. A marker is "%NAME%" in UTF-8, one for each column.
struct MarkerLists
{
    std::vector<QByteArray> texts;  ///< replaced by the text of a cell
    std::vector<QByteArray> images; ///< of placeholders, which get a picture
};

/// What a row puts into a document; per column of MarkerLists.
struct RowValues
{
    std::vector<QByteArray> texts;      ///< as text of an element
    std::vector<QByteArray> attributes; ///< as value of an attribute; only where it is needed
    /// Targets of the pictures, escaped: the name of a media member without its folder, or the
    /// address of a linked file.
    std::vector<QByteArray> targets;
    std::vector<ImageInfo> sizes; ///< of the pictures; read by fitted boxes only
};

/// The text of a part and its slots. Constant once made.
class DocumentPart
{
public:
    /// A relationships part. `folder` is put before the targets, for example "../media/".
    static DocumentPart ofRelationships(const QByteArray &text, const MarkerLists &markers,
                                        const QByteArray &folder);
    /// A part with text. With `joinsRuns` markers are also found in their escaped form. The boxes
    /// of `fitted` placeholders get the ratio of the picture.
    static DocumentPart ofText(const QByteArray &text, const MarkerLists &markers, bool joinsRuns,
                               const std::vector<Placeholder> &fitted);

    /// The part with the values in their places. `values` has an entry for each column that the
    /// part uses, see noteTexts(). May be called from several threads at once.
    QByteArray filled(const RowValues &values) const;

    /// Whether rows replace anything in it.
    bool hasSlots() const { return !m_slots.empty(); }

    // For those who make the values: by column, whether the part uses the value.

    /// Sets what the part uses and leaves the other entries; both lists have all columns of texts.
    void noteTexts(std::vector<bool> *inText, std::vector<bool> *inAttribute) const;
    /// The same for the columns of pictures.
    void noteImages(std::vector<bool> *used) const;

private:
    /// A range of the part that each row replaces. Offsets count bytes of m_text.
    struct Slot
    {
        enum class Kind : quint8 { Text, OtherText, Attribute, Target, Width, Height, Left, Top };
        qsizetype begin = 0;
        qsizetype end = 0;
        Kind kind = Kind::Text;
        int index = 0; // of the column; of the box for its numbers
    };
    /// The size of a placeholder in the template, in English metric units (1/914400 inch).
    struct Box
    {
        int column = 0; // of the picture
        qint64 width = 0;
        qint64 height = 0;
    };
    /// A rectangle inside a box, relative to its corner.
    struct Fit
    {
        qint64 width = 0;
        qint64 height = 0;
        qint64 left = 0;
        qint64 top = 0;
    };

    explicit DocumentPart(const QByteArray &text)
        : m_text(text)
    {
    }
    /// Note the prefix of the part. Returns whether the part belongs to a Word document: others
    /// have texts without line breaks.
    bool takePrefix();
    // Add the slots of texts, and those of the numbers of all boxes and of one side of a box.
    void addTexts(const MarkerLists &markers, bool joinsRuns);
    void addBoxes(const std::vector<Placeholder> &fitted);
    void addNumbers(const std::vector<NumberRange> &numbers, Slot::Kind kind, int box);
    /// Set the columns of the slots of one kind.
    void note(Slot::Kind kind, std::vector<bool> *used) const;
    /// The largest rectangle in the box that has the ratio of the image, in its middle.
    static Fit fitted(const Box &box, const ImageInfo &image);
    // What replaces a slot; number() is for the slots of boxes.
    QByteArray value(const Slot &slot, const RowValues &values) const;
    /// A text whose line breaks have the prefix of the part, instead of "w".
    QByteArray prefixed(const QByteArray &text) const;
    QByteArray number(const Slot &slot, const RowValues &values) const;

    QByteArray m_text;         // as in the template
    QByteArray m_folder;       // of the targets in a relationships part
    QByteArray m_prefix;       // of the root element
    std::vector<Slot> m_slots; // in the order of the text
    std::vector<Box> m_boxes;
};

/// The markers as word processors write them: "&", "<" and ">" escaped.
std::vector<QByteArray> escapedMarkers(std::vector<QByteArray> markers);
/// What to search for: the markers, and with `joinsRuns` then the escaped ones in the same order.
std::vector<QByteArray> markerForms(const std::vector<QByteArray> &markers, bool joinsRuns);

} // namespace corvanta::document
