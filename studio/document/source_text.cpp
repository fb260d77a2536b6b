// Splits and composes the text of a graph file.
//
//     text = begin, (before, element)*, end
//
//     begin   "<?xml ...?> ... <graph ...>"
//     before  white space, comments, processing instructions
//     element "<action ...>...</action>", "<link .../>", "<variable .../>", "<?note ...?>", or an
//             unknown one
//     end     what follows the last element, "</graph>" and the rest of the file
#include "studio/document/source_text.h"

#include "studio/document/element_comments.h"
#include "studio/document/markup_scan.h"

#include <QHash>
#include <QLocale>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QXmlStreamReader>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

QString escaped(const QString &text)
{
    return QString::fromWCharArray(ToXMLStringTool().toXML(text));
}

/// An attribute with the space before it.
QString attributeText(const QString &name, const QString &value)
{
    return u" %1='%2'"_s.arg(name, escaped(value));
}

constexpr auto kNoteBegin = "<?note "_L1;
constexpr auto kNoteEnd = "?>"_L1;

/// The first element or note of the text from an index on; begin is negative if there is none
/// before the next end tag.
MarkupRange firstElementOrNote(const QString &text, qsizetype from)
{
    MarkupRange markup = nextMarkup(text, from);
    while (markup.begin >= 0 && markup.kind == Markup::Other) {
        if (QStringView(text).mid(markup.begin).startsWith(kNoteBegin)) {
            return markup;
        }
        markup = nextMarkup(text, markup.end);
    }
    return markup.begin < 0 ? markup : firstElement(text, markup.begin);
}

/// Give an attribute of the start tag another value; a null value removes it.
void setAttribute(QString *element, const QString &name, const QString &value)
{
    const qsizetype end = endOfMarkup(*element, 0);
    const QString written = value.isNull() ? QString() : attributeText(name, value);
    qsizetype at = 1;
    while (at < end && !(*element)[at].isSpace() && (*element)[at] != u'>' &&
           (*element)[at] != u'/') {
        ++at;
    }
    while (at < end) {
        // One attribute: white space, name, "=", value in quotes.
        const qsizetype equals = element->indexOf(u'=', at);
        if (equals < 0 || equals >= end) {
            break;
        }
        qsizetype quote = equals + 1;
        while ((*element)[quote].isSpace()) {
            ++quote;
        }
        const qsizetype close = element->indexOf((*element)[quote], quote + 1);
        if (QStringView(*element).mid(at, equals - at).trimmed() == name) {
            element->replace(at, close + 1 - at, written);
            return;
        }
        at = close + 1;
    }
    element->insert(at, written);
}

/// The element of the parameters in the form in which the host writes it, inside an action.
QString writtenElement(const XMLNode &element)
{
    CorvantaGraph graph;
    graph.actions.append({u"a"_s, element});
    const QString inside = QString::fromUtf8(graph.toXml()).section(u"<action id='a'>"_s, 1);
    return inside.section(u"</action>"_s, 0, -2);
}

/// In the form ID:PIN.
QString pinText(const PinRef &pin)
{
    return pin.action + u':' + QString::number(pin.pin);
}

/// As the host reads it.
double numberOf(const QString &text)
{
    return xmltof(reinterpret_cast<const char16_t *>(text.utf16()), 0);
}

/// The position that an element of the file gives.
QPointF positionOf(const QMap<QString, QString> &attributes)
{
    return canvasPosition({numberOf(attributes.value(u"x"_s)), numberOf(attributes.value(u"y"_s))});
}

QString numberText(double position)
{
    return QString::number(qRound64(position));
}

/// The attributes of an action; null: not written.
struct ActionAttributes
{
    explicit ActionAttributes(const Node &node)
        : x(node.isPlaced ? numberText(node.position.x()) : QString())
        , y(node.isPlaced ? numberText(node.position.y()) : QString())
        , comment(node.comment.isEmpty() ? QString() : node.comment)
    {
    }
    QString x;
    QString y;
    QString comment;
};

int originOf(const NodePtr &node)
{
    return node->origin;
}

template <class Part> int originOf(const Part &part)
{
    return part.origin;
}

// The elements of parts that the file did not have.

/// In the form of the host.
QString newElement(const NodePtr &node)
{
    const ActionAttributes attributes(*node);
    QString text = u"<action"_s + attributeText(u"id"_s, node->id);
    for (const auto &[name, value] : {std::pair(u"x"_s, attributes.x),
                                      {u"y"_s, attributes.y},
                                      {u"comment"_s, attributes.comment}}) {
        text += value.isNull() ? QString() : attributeText(name, value);
    }
    return text + u'>' + writtenElement(node->element) + u"</action>"_s;
}

QString newElement(const Wire &wire)
{
    return u"<link"_s + attributeText(u"from"_s, pinText(wire.ends.from)) +
           attributeText(u"to"_s, pinText(wire.ends.to)) + u"/>"_s;
}

// The name is followed by the attributes, as in an element.
QString newElement(const Note &note)
{
    return QString(kNoteBegin).chopped(1) + attributeText(u"x"_s, numberText(note.position.x())) +
           attributeText(u"y"_s, numberText(note.position.y())) +
           attributeText(u"text"_s, note.text) + kNoteEnd;
}

/// Replace another encoding in the declaration of a document. Returns false if the document has
/// characters that have other bytes in that encoding.
bool declareUtf8(QString *text)
{
    static const QRegularExpression declaration(
        u"^<\\?xml\\s[^>]*\\bencoding\\s*=\\s*[\"']([^\"']*)"_s);
    const auto found = declaration.match(*text);
    const QString letters = found.captured(1).remove(u'-').remove(u'_'); // as the host reads it
    if (!found.hasMatch() || letters.compare("UTF8"_L1, Qt::CaseInsensitive) == 0) {
        return true;
    }
    const bool isAscii = std::ranges::all_of(*text, [](QChar c) { return c.unicode() < 0x80; });
    text->replace(found.capturedStart(1), found.capturedLength(1), u"UTF-8"_s);
    return isAscii;
}

QString newVariable(const QString &name, const QString &value)
{
    return u"<variable"_s + attributeText(u"name"_s, name) + attributeText(u"value"_s, value) +
           u"/>"_s;
}

} // namespace

SourceText::SourceText() = default;

// The document is well-formed, so the scanner needs no checks of its own.
bool SourceText::split(const QByteArray &document)
{
    *this = SourceText();
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless |
                                                     QStringDecoder::Flag::ConvertInitialBom);
    m_text = decoder(document);
    // What is saved is UTF-8, which another declaration would make wrong.
    const bool isUtf8 = !decoder.hasError() && m_text.toUtf8() == document && declareUtf8(&m_text);
    const MarkupRange root = isUtf8 ? firstElement(m_text, 0) : MarkupRange();
    if (root.begin < 0) {
        m_text.clear();
        return false;
    }
    qsizetype at = endOfMarkup(m_text, root.begin);
    if (m_text[at - 2] == u'/') { // "<graph/>"
        m_text.clear();
        return false;
    }
    m_begin = m_text.left(at);
    std::array<int, kKinds> numbers{};
    for (MarkupRange element = firstElementOrNote(m_text, at); element.begin >= 0;
         element = firstElementOrNote(m_text, at)) {
        Element next = elementAt(element.begin, element.end);
        next.before = m_text.mid(at, element.begin - at);
        next.number = numbers[static_cast<size_t>(next.kind)]++;
        m_elements.append(std::move(next));
        at = element.end;
    }
    m_end = m_text.mid(at);
    return true;
}

// Only the attributes are parsed; the rest is kept as it is.
SourceText::Element SourceText::elementAt(qsizetype begin, qsizetype end) const
{
    Element element;
    element.text = m_text.mid(begin, end - begin);
    QString name;
    if (element.text.startsWith(kNoteBegin)) {
        const QString inside = element.text.mid(1, element.text.size() - kNoteEnd.size() - 1);
        element.attributes = attributesOf(u'<' + inside.mid(1) + u"/>"_s, &name);
        // Another program may give the name another meaning.
        element.kind = element.attributes.contains(u"text"_s) ? Kind::Note : Kind::Other;
        return element;
    }
    element.attributes = attributesOf(element.text, &name);
    element.kind = name == "action"_L1     ? Kind::Action
                   : name == "link"_L1     ? Kind::Link
                   : name == "variable"_L1 ? Kind::Variable
                                           : Kind::Other;
    return element;
}

/// Of the first tag of a text, which may be incomplete after it.
QMap<QString, QString> SourceText::attributesOf(const QString &element, QString *name)
{
    QXmlStreamReader reader(element);
    reader.setNamespaceProcessing(false); // prefixes are declared outside
    reader.readNextStartElement();
    *name = reader.qualifiedName().toString();
    QMap<QString, QString> values;
    const QXmlStreamAttributes attributes = reader.attributes();
    for (const QXmlStreamAttribute &attribute : attributes) {
        values.insert(attribute.qualifiedName().toString(), attribute.value().toString());
    }
    return values;
}

// For the host's reader, not for a file.
QByteArray SourceText::knownPart() const
{
    QString text = m_begin;
    for (const Element &element : m_elements) {
        text += element.before;
        if (element.kind != Kind::Other) {
            text += element.text;
            continue;
        }
        // Line feeds stay, so that messages name the right lines.
        text += QString(element.text.count(u'\n'), u'\n');
    }
    return (text + m_end).toUtf8();
}

QVector<Note> SourceText::notes() const
{
    QVector<Note> all;
    for (const Element &element : m_elements) {
        if (element.kind == Kind::Note) {
            all.append({0, element.number, positionOf(element.attributes),
                        element.attributes.value(u"text"_s)});
        }
    }
    return all;
}

bool SourceText::hasPosition(int index) const
{
    return std::any_of(m_elements.begin(), m_elements.end(), [&](const Element &element) {
        return element.kind == Kind::Action && element.number == index &&
               (element.attributes.contains(u"x"_s) || element.attributes.contains(u"y"_s));
    });
}

/// Composes the text of one state.
class SourceText::Composer
{
public:
    /// Tables by origin, because the elements are visited in the order of the file.
    Composer(const SourceText &source, const Content &content)
        : m_source(source)
        , m_content(content)
        , m_lineEnd(source.m_text.contains("\r\n"_L1) ? u"\r\n"_s : u"\n"_s)
    {
        for (const NodePtr &node : content.nodes) {
            m_nodes.insert(node->origin, node);
        }
        for (const Wire &wire : content.wires) {
            m_wires.insert(wire.origin, &wire);
        }
        for (const Note &note : content.notes) {
            m_notes.insert(note.origin, &note);
        }
        for (const Element &element : source.m_elements) {
            ++m_left[static_cast<size_t>(element.kind)];
            if (element.kind == Kind::Variable) {
                m_lastVariables.insert(element.attributes.value(u"name"_s), element.number);
            }
        }
    }

    /// The whole document.
    QString text()
    {
        m_text = m_source.m_begin;
        for (qsizetype i = 0; i < m_source.m_elements.size(); ++i) {
            const Element &element = m_source.m_elements[i];
            m_next = element.before;
            if (i == 0) {
                addNewKinds(Kind::Other);
            }
            addElement(element);
            m_next = i + 1 < m_source.m_elements.size() ? m_source.m_elements[i + 1].before
                                                        : m_source.m_end;
            if (--m_left[static_cast<size_t>(element.kind)] == 0) {
                addNewOf(element.kind);
                addNewKinds(element.kind);
            }
        }
        if (m_source.m_elements.isEmpty()) {
            m_next = m_source.m_end;
            addNewKinds(Kind::Other);
        }
        return m_text + m_source.m_end.mid(m_written);
    }

private:
    /// New elements of kinds that the file does not have follow those of the kind before.
    void addNewKinds(Kind after)
    {
        for (int kind = after == Kind::Other ? 0 : static_cast<int>(after) + 1;
             kind < static_cast<int>(Kind::Other); ++kind) {
            if (m_left[static_cast<size_t>(kind)] != 0 || m_isAdded[static_cast<size_t>(kind)]) {
                break;
            }
            addNewOf(static_cast<Kind>(kind));
        }
    }

    /// Write the elements of a kind that the file did not have.
    void addNewOf(Kind kind)
    {
        if (m_isAdded[static_cast<size_t>(kind)]) {
            return;
        }
        m_isAdded[static_cast<size_t>(kind)] = true;
        if (kind == Kind::Variable) {
            addNewVariables();
        } else if (kind == Kind::Action) {
            addNewParts(m_content.nodes);
        } else if (kind == Kind::Link) {
            addNewParts(m_content.wires);
        } else if (kind == Kind::Note) {
            addNewParts(m_content.notes);
        }
    }

    void addNewVariables()
    {
        for (auto it = m_content.variables.begin(); it != m_content.variables.end(); ++it) {
            if (!m_lastVariables.contains(it.key())) {
                addLine(newVariable(it.key(), it.value()));
            }
        }
    }

    template <class Parts> void addNewParts(const Parts &parts)
    {
        for (const auto &part : parts) {
            if (originOf(part) < 0) {
                addLine(newElement(part));
            }
        }
    }

    /// Write a new element in a line of its own.
    void addLine(QString element)
    {
        if (m_lineEnd != "\n"_L1) {
            element.replace(u'\n', m_lineEnd);
        }
        if (m_written == 0) {
            m_written = restOfLine(m_next);
            m_text += m_next.left(m_written);
        }
        m_text += m_lineEnd + u"  "_s + element;
    }

    /// The length of a comment in the line of the element before it, to which it belongs.
    static qsizetype restOfLine(const QString &text)
    {
        const QString line = text.left(text.indexOf(u'\n')).trimmed();
        const bool isComment = line.startsWith("<!--"_L1) && line.endsWith("-->"_L1);
        return isComment ? text.indexOf(u'\n') - (text.contains("\r\n"_L1) ? 1 : 0) : 0;
    }

    /// Write an element of the file, unless it has been removed.
    void addElement(const Element &element)
    {
        const QString before = element.before.mid(m_written);
        m_written = 0;
        const QString text = current(element);
        if (!text.isEmpty()) {
            m_text += before + text;
        } else if (!before.trimmed().isEmpty()) {
            // A comment may be about more than the element after it.
            m_text += before.left(before.lastIndexOf(u'>') + 1);
        }
    }

    /// The text of an element now; empty if it has been removed.
    QString current(const Element &element) const
    {
        switch (element.kind) {
        case Kind::Action:
            return m_nodes.contains(element.number)
                       ? currentAction(element, *m_nodes.value(element.number))
                       : QString();
        case Kind::Link:
            return m_wires.contains(element.number)
                       ? currentLink(element, m_wires.value(element.number)->ends)
                       : QString();
        case Kind::Variable:
            return currentVariable(element);
        case Kind::Note:
            return m_notes.contains(element.number)
                       ? currentNote(element, *m_notes.value(element.number))
                       : QString();
        case Kind::Other:
            break;
        }
        return element.text;
    }

    /// The element of an action, with only the differences replaced.
    QString currentAction(const Element &element, const Node &node) const
    {
        QString text = element.text;
        if (node.isElementEdited) {
            const MarkupRange old = firstElement(text, endOfMarkup(text, 0));
            QString written = withComments(text.mid(old.begin, old.end - old.begin),
                                           writtenElement(node.element).trimmed());
            if (m_lineEnd != "\n"_L1) {
                written.replace("\r\n"_L1, "\n"_L1).replace(u'\n', m_lineEnd);
            }
            text.replace(old.begin, old.end - old.begin, written);
        }
        const auto update = [&](const QString &name, const QString &value) {
            if (element.attributes.value(name) != value) {
                setAttribute(&text, name, value);
            }
        };
        const ActionAttributes now(node);
        // From the last to the first, because a new attribute is inserted after the others.
        update(u"id"_s, node.id);
        if (node.isPlaced && !isAt(element, node.position)) {
            update(u"x"_s, now.x);
            update(u"y"_s, now.y);
        }
        update(u"comment"_s, now.comment);
        return text;
    }

    /// Positions of the file need not be whole numbers.
    static bool isAt(const Element &element, QPointF position)
    {
        return positionOf(element.attributes) == position &&
               (element.attributes.contains(u"x"_s) || element.attributes.contains(u"y"_s));
    }

    /// A link may have got other ends, or its actions other names.
    static QString currentLink(const Element &element, const LinkRef &ends)
    {
        QString text = element.text;
        for (const auto &[name, pin] : {std::pair(u"from"_s, ends.from), {u"to"_s, ends.to}}) {
            const auto old = CorvantaGraph::parsePin(element.attributes.value(name));
            if (!old || old->action != pin.action || old->pin != pin.pin) {
                setAttribute(&text, name, pinText(pin));
            }
        }
        return text;
    }

    /// Unchanged byte for byte.
    static QString currentNote(const Element &element, const Note &note)
    {
        const bool isSame =
            isAt(element, note.position) && element.attributes.value(u"text"_s) == note.text;
        return isSame ? element.text : newElement(note);
    }

    /// The element of a variable; empty if it has been removed.
    QString currentVariable(const Element &element) const
    {
        const QString name = element.attributes.value(u"name"_s);
        if (!m_content.variables.contains(name)) {
            return {};
        }
        QString text = element.text;
        // Of equal names the last one counts.
        const QString value = m_content.variables.value(name);
        if (m_lastVariables.value(name) == element.number &&
            element.attributes.value(u"value"_s) != value) {
            setAttribute(&text, u"value"_s, value);
        }
        return text;
    }

    const SourceText &m_source;
    const Content &m_content;
    QString m_lineEnd;
    QString m_text;
    QString m_next;                       // the text between the present element and the next one
    qsizetype m_written = 0;              // how much of it is written
    QHash<int, NodePtr> m_nodes;          // by origin
    QHash<int, const Wire *> m_wires;     // by origin
    QHash<int, const Note *> m_notes;     // by origin
    QHash<QString, int> m_lastVariables;  // number of the last element, by name
    std::array<int, kKinds> m_left{};     // elements that follow, by kind
    std::array<bool, kKinds> m_isAdded{}; // whether the new elements of the kind are written
};

// A new graph is composed like a file with nothing in it.
QByteArray SourceText::compose(const Content &content, double version) const
{
    if (!isNew()) {
        return Composer(*this, content).text().toUtf8();
    }
    SourceText empty;
    empty.m_begin = u"<graph>"_s;
    if (version >= 0) {
        empty.m_begin.insert(
            6, attributeText(u"version"_s,
                             QString::number(version, 'g', QLocale::FloatingPointShortest)));
    }
    empty.m_end = u"\n</graph>\n"_s;
    return Composer(empty, content).text().toUtf8();
}

} // namespace corvanta::studio
