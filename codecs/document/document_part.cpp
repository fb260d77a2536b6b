// A part is copied with a value in place of each slot:
//
//   <w:t>Dear %NAME%,</w:t> ... <wp:extent cx="914400" cy="457200"/>
//   text of m_text [slot] text [slot] ... text
#include "codecs/document/document_part.h"

#include "codecs/document/document_text.h"

#include <algorithm>
#include <cmath>

namespace corvanta::document {

std::vector<QByteArray> escapedMarkers(std::vector<QByteArray> markers)
{
    for (QByteArray &marker : markers) {
        marker.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;");
    }
    return markers;
}

std::vector<QByteArray> markerForms(const std::vector<QByteArray> &markers, bool joinsRuns)
{
    std::vector<QByteArray> forms = markers;
    if (joinsRuns) {
        const auto escaped = escapedMarkers(markers);
        forms.insert(forms.end(), escaped.begin(), escaped.end());
    }
    return forms;
}

DocumentPart DocumentPart::ofRelationships(const QByteArray &text, const MarkerLists &markers,
                                           const QByteArray &folder)
{
    DocumentPart part(text);
    part.m_folder = folder;
    for (const Placeholder &one : findPlaceholders(text, markers.images)) {
        part.m_slots.push_back({one.targetBegin, one.targetEnd, Slot::Kind::Target, one.column});
    }
    return part;
}

DocumentPart DocumentPart::ofText(const QByteArray &text, const MarkerLists &markers,
                                  bool joinsRuns, const std::vector<Placeholder> &fitted)
{
    DocumentPart part(text);
    part.addTexts(markers, joinsRuns);
    part.addBoxes(fitted);
    std::stable_sort(part.m_slots.begin(), part.m_slots.end(),
                     [](const Slot &a, const Slot &b) { return a.begin < b.begin; });
    return part;
}

bool DocumentPart::takePrefix()
{
    opc::TagCursor root(m_text);
    if (!root.next()) {
        return false;
    }
    m_prefix = root.tag().prefix().toByteArray();
    const auto uri = root.tag().declaredNamespace();
    return m_prefix == "w" || (uri && uri->contains("/wordprocessingml/"));
}

void DocumentPart::addTexts(const MarkerLists &markers, bool joinsRuns)
{
    const auto forms = markerForms(markers.texts, joinsRuns);
    const bool isWord = takePrefix();
    const QByteArray textElement = opc::qualified(m_prefix, "t");
    opc::TagTracker tags(m_text);
    for (const opc::MarkerHit &hit : opc::findMarkers(m_text, forms)) {
        // The value of an attribute is escaped differently, and only a text element of a Word
        // document can have line breaks: not a deleted text, a field or a formula.
        const bool isInTag = tags.isInTag(hit.begin);
        const bool hasBreaks = isWord && tags.element() == textElement;
        const auto text = hasBreaks ? Slot::Kind::Text : Slot::Kind::OtherText;
        const auto kind = isInTag ? Slot::Kind::Attribute : text;
        const int column = hit.marker % static_cast<int>(markers.texts.size());
        m_slots.push_back({hit.begin, hit.end, kind, column});
    }
}

void DocumentPart::addBoxes(const std::vector<Placeholder> &fitted)
{
    for (const PictureBox &box : findPictureBoxes(m_text, fitted)) {
        const int index = static_cast<int>(m_boxes.size());
        m_boxes.push_back({fitted[static_cast<size_t>(box.placeholder)].column,
                           box.widths.front().value, box.heights.front().value});
        addNumbers(box.widths, Slot::Kind::Width, index);
        addNumbers(box.heights, Slot::Kind::Height, index);
        addNumbers(box.lefts, Slot::Kind::Left, index);
        addNumbers(box.tops, Slot::Kind::Top, index);
    }
}

void DocumentPart::addNumbers(const std::vector<NumberRange> &numbers, Slot::Kind kind, int box)
{
    for (const NumberRange &number : numbers) {
        m_slots.push_back({number.begin, number.end, kind, box});
    }
}

void DocumentPart::note(Slot::Kind kind, std::vector<bool> *used) const
{
    for (const Slot &slot : m_slots) {
        if (slot.kind == kind) {
            (*used)[static_cast<size_t>(slot.index)] = true;
        }
    }
}

void DocumentPart::noteTexts(std::vector<bool> *inText, std::vector<bool> *inAttribute) const
{
    note(Slot::Kind::Text, inText);
    note(Slot::Kind::OtherText, inText);
    note(Slot::Kind::Attribute, inAttribute);
}

void DocumentPart::noteImages(std::vector<bool> *used) const
{
    note(Slot::Kind::Target, used);
}

DocumentPart::Fit DocumentPart::fitted(const Box &box, const ImageInfo &image)
{
    Fit fit{box.width, box.height};
    const double scale =
        std::min(double(box.width) / image.width, double(box.height) / image.height);
    // A picture of unknown size fills the box, as does one in a box without an area.
    if (image.width > 0 && image.height > 0 && std::isfinite(scale) && scale > 0) {
        fit.width = std::clamp<qint64>(std::llround(image.width * scale), 1, box.width);
        fit.height = std::clamp<qint64>(std::llround(image.height * scale), 1, box.height);
    }
    fit.left = (box.width - fit.width) / 2;
    fit.top = (box.height - fit.height) / 2;
    return fit;
}

QByteArray DocumentPart::number(const Slot &slot, const RowValues &values) const
{
    const Box &box = m_boxes[static_cast<size_t>(slot.index)];
    const Fit fit = fitted(box, values.sizes[static_cast<size_t>(box.column)]);
    const qint64 old = m_text.mid(slot.begin, slot.end - slot.begin).toLongLong();
    switch (slot.kind) {
    case Slot::Kind::Width:
        return QByteArray::number(fit.width);
    case Slot::Kind::Height:
        return QByteArray::number(fit.height);
    case Slot::Kind::Left:
        return QByteArray::number(old + fit.left);
    default:
        return QByteArray::number(old + fit.top);
    }
}

QByteArray DocumentPart::prefixed(const QByteArray &text) const
{
    const QByteArray colon = m_prefix.isEmpty() ? m_prefix : m_prefix + ':';
    // A "<" of the text itself is escaped.
    return m_prefix == "w"
               ? text
               : QByteArray(text).replace("<w:", '<' + colon).replace("</w:", "</" + colon);
}

QByteArray DocumentPart::value(const Slot &slot, const RowValues &values) const
{
    const auto column = static_cast<size_t>(slot.index);
    switch (slot.kind) {
    case Slot::Kind::Text:
        return prefixed(values.texts[column]);
    case Slot::Kind::OtherText:
        return withoutBreaks(values.texts[column]);
    case Slot::Kind::Attribute:
        return values.attributes[column];
    case Slot::Kind::Target:
        return m_folder + values.targets[column];
    default:
        return number(slot, values);
    }
}

QByteArray DocumentPart::filled(const RowValues &values) const
{
    QByteArray out;
    // Values are usually short; the text grows at most once or twice.
    out.reserve(m_text.size() + m_text.size() / 8);
    qsizetype at = 0;
    for (const Slot &slot : m_slots) {
        out += QByteArrayView(m_text).sliced(at, slot.begin - at);
        out += value(slot, values);
        at = slot.end;
    }
    return out += QByteArrayView(m_text).sliced(at);
}

} // namespace corvanta::document
