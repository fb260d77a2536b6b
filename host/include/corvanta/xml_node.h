// Saved parameters: a small immutable XML tree, and the conversions of its texts.
//
// Comments, processing instructions and declarations of the document are not kept. Names include
// their namespace prefix.
#pragma once
#include "base/result.h"
#include "corvanta/export.h"

#include <QString>
#include <QStringList>

#include <iosfwd>
#include <memory>

/// A node of a parameter tree; copies share the tree. Texts returned as pointers are
/// zero-terminated UTF-16 and valid as long as any node of the tree. Threads: any.
class CORVANTA_EXPORT XMLNode
{
public:
    /// An empty node: it has no name, attributes, children or text.
    XMLNode();
    static XMLNode emptyNode() { return {}; }

    /// A place in a document; both numbers are 1-based.
    struct Place
    {
        qint64 line = 0;
        qint64 column = 0;
    };
    /// Parse a whole document. The fault gives the place and the reason; a document that is nested
    /// more than 1,000 deep is rejected too.
    static corvanta::Result<XMLNode, Place> parse(const QByteArray &document);

    /// True if the node represents an element that does not exist.
    bool isEmpty() const { return !m_data; }
    /// Name of the element; null for an empty node.
    QString getName() const;
    /// Line of the element's start tag in its document, 1-based; 0 for an empty node.
    int line() const;

    /// The attribute's value, or null. `index` is not used for attributes, which are unique.
    const char16_t *getAttribute(const char *name, int *index = nullptr) const;
    /// The names of all attributes, in the order of the document.
    QStringList attributeNames() const;

    /// Number of child elements.
    int nChildNode() const;
    /// Child number `i`, from 0; an empty node if there is none.
    XMLNode getChildNode(int i) const;
    /// The first child of that name, starting at child number `*index` (0 without `index`). Sets
    /// `*index` to the child after it. Returns an empty node if there is none.
    XMLNode getChildNode(const char *name, int *index = nullptr) const;
    /// The i-th run of character data directly inside the element, or null.
    const char16_t *getText(int i = 0) const;
    /// All character data directly inside the element.
    QString text() const;

private:
    struct Data;
    friend class XMLNodeBuilder;
    std::shared_ptr<const Data> m_data;
};

// Conversions of attribute texts; each returns the default if the text is null. Numbers: leading
// blanks are skipped and text after the digits is ignored; a text without digits gives 0, and a
// number out of range gives the nearest possible one.
CORVANTA_EXPORT QString xmltoa(const char16_t *text, const QString &defaultValue);
CORVANTA_EXPORT int xmltoi(const char16_t *text, int defaultValue);
CORVANTA_EXPORT long long xmltol(const char16_t *text, long long defaultValue);
CORVANTA_EXPORT double xmltof(const char16_t *text, double defaultValue);
/// False for "0", "false", "no" and an empty text, true for everything else.
CORVANTA_EXPORT char xmltob(const char16_t *text, char defaultValue);

/// Read and write a string list as one `<s>TEXT</s>` child per string. Other children are skipped.
CORVANTA_EXPORT QStringList fromXMLSL(const XMLNode &node);
CORVANTA_EXPORT void toXML(const QStringList &list, std::wostream &out);

/// Escapes text for attribute values and element text. Threads: one at a time.
class CORVANTA_EXPORT ToXMLStringTool
{
public:
    ToXMLStringTool();
    ~ToXMLStringTool();
    ToXMLStringTool(const ToXMLStringTool &) = delete;
    ToXMLStringTool &operator=(const ToXMLStringTool &) = delete;

    /// `text` with & < > " ' and the line feed, carriage return and tab escaped, so that an XML
    /// reader returns them unchanged. Valid until the next call or freeBuffer().
    const wchar_t *toXML(const QString &text);
    /// Free the memory of the last result.
    void freeBuffer();

private:
    std::unique_ptr<std::wstring> m_buffer;
};

/// True if the node has no version, which means that it is new.
CORVANTA_EXPORT bool isNewFile(const XMLNode &node);
