// The part [Content_Types].xml of a package (ECMA-376 part 2): the media types of its parts.
//
// Every part needs a declaration; programs report a package with an undeclared part as damaged.
#pragma once
#include "base/result.h"
#include "codecs/opc/error.h"

#include <QByteArray>

#include <vector>

namespace corvanta::opc {

inline constexpr char kContentTypesPart[] = "[Content_Types].xml";

/// Reads the part, collects declarations and gives the changed text.
class ContentTypes
{
public:
    /// Errors: Encoding, Malformed, Unexpected (the root is not Types), TooLarge.
    static Result<ContentTypes, Error> read(const QByteArray &text);

    /// The names of the parts that are declared one by one, without the leading "/".
    const std::vector<QByteArray> &parts() const { return m_parts; }

    /// Declare the type of one part, unless the part has a declaration.
    void declarePart(const QByteArray &part, const QByteArray &contentType);
    /// Declare the type of all parts with this extension ("png"), unless the extension has a
    /// declaration. Letter case does not count.
    void declareExtension(const QByteArray &extension, const QByteArray &contentType);

    /// The part with the declarations after the old ones; unchanged if there were none to add.
    QByteArray text() const;

private:
    void add(const char *element, const QByteArray &attributes);

    QByteArray m_text;
    QByteArray m_prefix; // of the elements
    std::vector<QByteArray> m_parts;
    std::vector<QByteArray> m_extensions; // in lower case
    QByteArray m_added;
};

} // namespace corvanta::opc
