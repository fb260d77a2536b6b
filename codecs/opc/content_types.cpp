// The content types of a package (ECMA-376 part 2, section 6.2.3), in any order:
//
//   <Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">
//     <Default Extension="xml" ContentType="application/xml"/>
//     <Override PartName="/xl/workbook.xml" ContentType="application/..."/>
//   </Types>
//
// An Override applies to one part and takes precedence over the Default of its extension.
#include "codecs/opc/content_types.h"

#include "codecs/opc/splices.h"

#include <algorithm>

namespace corvanta::opc {

namespace {

/// The lists are short: a search through them costs less than a set.
bool contains(const std::vector<QByteArray> &list, const QByteArray &value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

/// The values of one attribute of all elements of one name.
std::vector<QByteArray> valuesOf(const Outline &outline, QByteArrayView element,
                                 QByteArrayView attribute)
{
    std::vector<QByteArray> values;
    for (const int index : outline.children(0, element)) {
        const auto value = outline.element(index).tag.attribute(attribute);
        values.push_back(decoded(value.value_or(QByteArrayView())).toUtf8());
    }
    return values;
}

} // namespace

Result<ContentTypes, Error> ContentTypes::read(const QByteArray &text)
{
    const auto outline = Outline::readRootedIn(text, "Types");
    if (!outline) {
        return outline.fault();
    }
    ContentTypes types;
    types.m_text = text;
    types.m_prefix = outline->qualified({}); // "" or the prefix with its colon
    types.m_parts = valuesOf(*outline, "Override", "PartName");
    // Part names begin with "/", names of members do not.
    for (QByteArray &part : types.m_parts) {
        part.remove(0, part.startsWith('/') ? 1 : 0);
    }
    types.m_extensions = valuesOf(*outline, "Default", "Extension");
    for (QByteArray &extension : types.m_extensions) {
        extension = extension.toLower();
    }
    return types;
}

void ContentTypes::add(const char *element, const QByteArray &attributes)
{
    m_added += '<' + m_prefix + element + ' ' + attributes + "/>";
}

/// A second entry of a part would make the package invalid.
void ContentTypes::declarePart(const QByteArray &part, const QByteArray &contentType)
{
    if (!contains(m_parts, part)) {
        m_parts.push_back(part);
        add("Override", "PartName=\"/" + quotable(QString::fromUtf8(part)) + "\" ContentType=\"" +
                            contentType + '"');
    }
}

void ContentTypes::declareExtension(const QByteArray &extension, const QByteArray &contentType)
{
    if (!contains(m_extensions, extension.toLower())) {
        m_extensions.push_back(extension.toLower());
        add("Default", "Extension=\"" + quotable(QString::fromUtf8(extension)) +
                           "\" ContentType=\"" + contentType + '"');
    }
}

QByteArray ContentTypes::text() const
{
    if (m_added.isEmpty()) {
        return m_text;
    }
    const auto outline = Outline::read(m_text); // succeeds, as it did in read()
    Splices splices(m_text);
    splices.append(outline->root(), m_added);
    return splices.apply();
}

} // namespace corvanta::opc
