// A picture and its relationship (ECMA-376 part 1, 20.2, 20.4 and 19.3.1.37; part 2, 9.3):
//
//   <Relationship Id="rId5" Type=".../image" Target="file:///C:/%PHOTO%.png"
//   TargetMode="External"/>
//
//   <wp:inline> <wp:extent cx="" cy=""/>             only in Word documents; or wp:anchor
//     <pic:pic> <a:blip r:link="rId5"/>              r:embed for a stored picture
//       <pic:spPr> <a:xfrm> <a:off x="" y=""/> <a:ext cx="" cy=""/>
//   <v:imagedata r:href="rId5"/>                     VML; r:id for a stored picture
#include "codecs/document/placeholders.h"

#include "codecs/opc/marker_search.h"
#include "codecs/opc/splices.h"

#include <algorithm>
#include <array>
#include <optional>

namespace corvanta::document {

namespace {

/// The offset of a view into `text`.
qsizetype offsetIn(QByteArrayView text, QByteArrayView view)
{
    return view.data() - text.data();
}

/// Which of the markers is the first in the target; nothing if there is none.
std::optional<int> markerIn(QByteArrayView target, const std::vector<QByteArray> &markers)
{
    const QByteArray plain = opc::decoded(target).toUtf8();
    for (const QByteArray &form : {plain, QByteArray::fromPercentEncoding(plain)}) {
        const auto hits = opc::findMarkers(form, markers);
        if (!hits.empty()) {
            return hits.front().marker;
        }
    }
    return std::nullopt;
}

/// The placeholder that a tag of a relationships part declares.
std::optional<Placeholder> placeholderOf(QByteArrayView text, const opc::Tag &tag,
                                         const std::vector<QByteArray> &markers)
{
    const auto target = tag.attribute("Target");
    const auto id = tag.attribute("Id");
    const auto type = tag.attribute("Type");
    const bool isPicture = type && type->endsWith("/image");
    if (tag.local() != "Relationship" || !target || !id || !isPicture) {
        return std::nullopt;
    }
    const auto column = markerIn(*target, markers);
    if (!column) {
        return std::nullopt;
    }
    const qsizetype begin = offsetIn(text, *target);
    return Placeholder{*column, id->toByteArray(), begin, begin + target->size()};
}

/// Calls `take` with every placeholder and its tag.
template <class F>
void eachPlaceholder(QByteArrayView text, const std::vector<QByteArray> &markers, F &&take)
{
    for (opc::TagCursor cursor(text); cursor.next();) {
        if (const auto placeholder = placeholderOf(text, cursor.tag(), markers)) {
            take(*placeholder, cursor.tag());
        }
    }
}

/// Remove an attribute with the space before it.
void removeAttribute(QByteArrayView text, const opc::Attribute &attribute, opc::Splices &splices)
{
    const qsizetype value = offsetIn(text, attribute.value);
    qsizetype begin = text.first(value).lastIndexOf(attribute.name);
    begin -= text[begin - 1] == ' ' ? 1 : 0;
    splices.replace(begin, value + attribute.value.size() + 1, {});
}

/// The names of the attributes that refer to a picture.
struct ReferenceNames
{
    QByteArrayView element;
    QByteArrayView stored;
    QByteArrayView linked;
};
constexpr std::array<ReferenceNames, 2> kReferences{
    {{"blip", "embed", "link"}, {"imagedata", "id", "href"}}};

QByteArrayView localOf(QByteArrayView name)
{
    return name.sliced(name.lastIndexOf(':') + 1);
}

/// The index of the placeholder that `id` refers to; -1 if there is none.
int placeholderWith(QByteArrayView id, const std::vector<Placeholder> &placeholders)
{
    const auto found = std::find_if(placeholders.begin(), placeholders.end(),
                                    [&](const Placeholder &one) { return one.id == id; });
    return found == placeholders.end() ? -1 : static_cast<int>(found - placeholders.begin());
}

/// A reference of a picture: which attribute has which placeholder.
struct Reference
{
    opc::Attribute attribute;
    int placeholder = -1;
};

/// The reference of a tag to one of the placeholders, and its other references to pictures.
struct References
{
    const ReferenceNames *names = nullptr;
    std::optional<Reference> toPlaceholder;
    std::vector<opc::Attribute> others;
};

References referencesOf(const opc::Tag &tag, const std::vector<Placeholder> &placeholders)
{
    References found;
    for (const ReferenceNames &names : kReferences) {
        found.names = tag.local() == names.element ? &names : found.names;
    }
    const auto attributes = found.names != nullptr ? tag.attributes() : std::nullopt;
    if (!attributes) {
        return found;
    }
    for (const opc::Attribute &attribute : *attributes) {
        const QByteArrayView local = localOf(attribute.name);
        // VML has an id of its own without a prefix.
        const bool isReference = (local == found.names->stored || local == found.names->linked) &&
                                 local.size() != attribute.name.size();
        const int placeholder = isReference ? placeholderWith(attribute.value, placeholders) : -1;
        if (placeholder >= 0 && !found.toPlaceholder) {
            found.toPlaceholder = Reference{attribute, placeholder};
        } else if (isReference) {
            found.others.push_back(attribute);
        }
    }
    return found;
}

/// Finds the boxes, given the tags of a part in their order.
class BoxFinder
{
public:
    BoxFinder(QByteArrayView text, const std::vector<Placeholder> &placeholders)
        : m_text(text)
        , m_placeholders(placeholders)
    {
    }
    void take(const opc::Tag &tag)
    {
        const bool opens = tag.kind != opc::Tag::Kind::Close;
        const bool closes = tag.kind != opc::Tag::Kind::Open;
        const QByteArrayView local = tag.local();
        if (opens) {
            takeOpening(tag, local);
        }
        if (closes) {
            takeClosing(local);
        }
    }
    std::vector<PictureBox> boxes() { return std::move(m_boxes); }

private:
    static bool isFrame(QByteArrayView local) { return local == "inline" || local == "anchor"; }

    void takeOpening(const opc::Tag &tag, QByteArrayView local)
    {
        if (isFrame(local)) {
            m_frame = Frame{};
        } else if (local == "extent" && m_frame) {
            addSize(tag, m_frame->extent);
        } else if (local == "pic") {
            m_picture.emplace();
            m_picture->placeholder = -1;
        } else if (local == "xfrm") {
            m_isInTransform = true;
        } else if (m_picture) {
            takeInPicture(tag, local);
        }
    }
    void takeInPicture(const opc::Tag &tag, QByteArrayView local)
    {
        if (local == "blip") {
            const auto references = referencesOf(tag, m_placeholders);
            m_picture->placeholder =
                references.toPlaceholder ? references.toPlaceholder->placeholder : -1;
        } else if (m_isInTransform && local == "ext") {
            addSize(tag, *m_picture);
        } else if (m_isInTransform && local == "off" && !m_frame) {
            addNumber(tag, "x", m_picture->lefts);
            addNumber(tag, "y", m_picture->tops);
        }
    }
    void takeClosing(QByteArrayView local)
    {
        if (local == "xfrm") {
            m_isInTransform = false;
        } else if (local == "pic" && m_picture) {
            endPicture();
        } else if (isFrame(local) && m_frame) {
            endFrame();
        }
    }
    void endPicture()
    {
        const bool isBox = m_picture->placeholder >= 0 && !m_picture->widths.empty() &&
                           !m_picture->heights.empty();
        if (isBox) {
            m_boxes.push_back(*m_picture);
        }
        if (m_frame) {
            m_frame->pictures += 1;
            m_frame->boxes += isBox ? 1 : 0;
        }
        m_picture.reset();
    }
    /// The frame of a single picture has the picture's size; that of a group has its own.
    void endFrame()
    {
        if (m_frame->pictures == 1 && m_frame->boxes == 1) {
            PictureBox &box = m_boxes.back();
            const PictureBox &extent = m_frame->extent;
            box.widths.insert(box.widths.end(), extent.widths.begin(), extent.widths.end());
            box.heights.insert(box.heights.end(), extent.heights.begin(), extent.heights.end());
        }
        m_frame.reset();
    }
    void addSize(const opc::Tag &tag, PictureBox &box)
    {
        addNumber(tag, "cx", box.widths);
        addNumber(tag, "cy", box.heights);
    }
    void addNumber(const opc::Tag &tag, QByteArrayView name, std::vector<NumberRange> &numbers)
    {
        const auto digits = tag.attribute(name);
        bool isNumber = false;
        const qint64 value = digits ? digits->toLongLong(&isNumber) : 0;
        // Coordinates have at most 13 digits (20.1.10.16); others are left alone.
        constexpr qint64 kMost = 27'273'042'316'900;
        if (isNumber && value >= -kMost && value <= kMost) {
            const qsizetype begin = offsetIn(m_text, *digits);
            numbers.push_back({begin, begin + digits->size(), value});
        }
    }

    struct Frame
    {
        PictureBox extent;
        int pictures = 0;
        int boxes = 0;
    };

    QByteArrayView m_text;
    const std::vector<Placeholder> &m_placeholders;
    std::vector<PictureBox> m_boxes;
    std::optional<Frame> m_frame;
    std::optional<PictureBox> m_picture;
    bool m_isInTransform = false;
};

} // namespace

std::vector<Placeholder> findPlaceholders(QByteArrayView relationships,
                                          const std::vector<QByteArray> &markers)
{
    std::vector<Placeholder> found;
    eachPlaceholder(relationships, markers, [&](const Placeholder &placeholder, const opc::Tag &) {
        found.push_back(placeholder);
    });
    return found;
}

QByteArray withTargetMode(QByteArrayView relationships, const std::vector<QByteArray> &markers,
                          bool isLinked)
{
    opc::Splices splices(relationships);
    const auto change = [&](const Placeholder &placeholder, const opc::Tag &tag) {
        const auto mode = tag.attribute("TargetMode");
        if (mode && isLinked) {
            const qsizetype begin = offsetIn(relationships, *mode);
            splices.replace(begin, begin + mode->size(), "External");
        } else if (mode) {
            removeAttribute(relationships, {"TargetMode", *mode}, splices);
        } else if (isLinked) {
            // After the quote that ends the target.
            splices.insert(placeholder.targetEnd + 1, " TargetMode=\"External\"");
        }
    };
    eachPlaceholder(relationships, markers, change);
    return splices.apply();
}

QByteArray withPictureMode(QByteArrayView part, const std::vector<Placeholder> &placeholders,
                           bool isLinked)
{
    opc::Splices splices(part);
    for (opc::TagCursor cursor(part); !placeholders.empty() && cursor.next();) {
        const References found = referencesOf(cursor.tag(), placeholders);
        if (!found.toPlaceholder) {
            continue;
        }
        const QByteArrayView name = found.toPlaceholder->attribute.name;
        const QByteArrayView local = localOf(name);
        const QByteArrayView wanted = isLinked ? found.names->linked : found.names->stored;
        const qsizetype begin = offsetIn(part, local);
        splices.replace(begin, begin + local.size(), wanted.toByteArray());
        // The picture that was stored with the link would be shown in place of the new one.
        for (const opc::Attribute &other : found.others) {
            removeAttribute(part, other, splices);
        }
    }
    return splices.apply();
}

std::vector<PictureBox> findPictureBoxes(QByteArrayView part,
                                         const std::vector<Placeholder> &placeholders)
{
    BoxFinder finder(part, placeholders);
    for (opc::TagCursor cursor(part); !placeholders.empty() && cursor.next();) {
        finder.take(cursor.tag());
    }
    return finder.boxes();
}

} // namespace corvanta::document
