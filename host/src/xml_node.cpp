// The tree of saved parameters and its parser.
#include "corvanta/xml_node.h"

#include "base/mapped.h"

#include <QVector>
#include <QXmlStreamReader>

#include <memory>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

/// One element. Shared by all nodes that refer to it, and never changed after parsing.
struct XMLNode::Data
{
    QString name;
    QVector<std::pair<QString, QString>> attributes;
    std::vector<XMLNode> children;
    QStringList texts;
    int line = 0;
};

namespace {

/// Users of a tree, and its destructor, may be recursive; this depth fits on any stack.
constexpr int kMaxDepth = 1000;

/// The zero-terminated units of a text, valid as long as the text.
const char16_t *units(const QString &text)
{
    return reinterpret_cast<const char16_t *>(text.utf16());
}

} // namespace

/// Builds the tree with an explicit stack, so that the depth of calls does not depend on the
/// document.
class XMLNodeBuilder
{
public:
    explicit XMLNodeBuilder(const QByteArray &document)
        : m_reader(document)
    {
    }

    corvanta::Result<XMLNode, XMLNode::Place> build()
    {
        while (!m_reader.atEnd()) {
            // Before the token is read: the reader counts to the end of a tag, which may be lines
            // below its start.
            m_line = m_reader.lineNumber();
            take(m_reader.readNext());
        }
        if (!m_reader.hasError()) {
            return m_root;
        }
        return corvanta::Fault<XMLNode::Place>{{m_reader.lineNumber(), m_reader.columnNumber()},
                                               m_reader.errorString()};
    }

private:
    void take(QXmlStreamReader::TokenType token)
    {
        switch (token) {
        case QXmlStreamReader::StartElement:
            open();
            break;
        case QXmlStreamReader::EndElement:
            close();
            break;
        case QXmlStreamReader::Characters:
            addText(m_reader.text());
            break;
        default: // comments, processing instructions, the document type
            break;
        }
    }

    void open()
    {
        if (m_open.size() == kMaxDepth) {
            m_reader.raiseError(u"elements are nested too deeply"_s);
            return;
        }
        auto node = std::make_shared<XMLNode::Data>();
        node->name = m_reader.qualifiedName().toString();
        node->line = static_cast<int>(m_line);
        // Constant: a list that is not would be copied.
        const QXmlStreamAttributes attributes = m_reader.attributes();
        for (const QXmlStreamAttribute &attribute : attributes) {
            node->attributes.append(
                {attribute.qualifiedName().toString(), attribute.value().toString()});
        }
        m_open.push_back(std::move(node));
        m_continueText = false;
    }

    void close()
    {
        // A node joins its parent only now, when nothing in it changes any more.
        XMLNode node;
        node.m_data = std::move(m_open.back());
        m_open.pop_back();
        m_continueText = false;
        if (m_open.empty()) {
            m_root = node;
        } else {
            m_open.back()->children.push_back(std::move(node));
        }
    }

    /// Joins consecutive runs of text; a child element begins a new run.
    void addText(QStringView text)
    {
        // Blanks around the document element.
        if (m_open.empty()) {
            return;
        }
        QStringList &texts = m_open.back()->texts;
        if (m_continueText) {
            texts.back() += text;
        } else {
            texts.append(text.toString());
        }
        m_continueText = true;
    }

    QXmlStreamReader m_reader;
    std::vector<std::shared_ptr<XMLNode::Data>> m_open;
    XMLNode m_root;
    qint64 m_line = 1;           // where the current token starts
    bool m_continueText = false; // the last token was text of the open element
};

XMLNode::XMLNode() = default;

corvanta::Result<XMLNode, XMLNode::Place> XMLNode::parse(const QByteArray &document)
{
    return XMLNodeBuilder(document).build();
}

QString XMLNode::getName() const
{
    return m_data ? m_data->name : QString();
}

int XMLNode::line() const
{
    return m_data ? m_data->line : 0;
}

const char16_t *XMLNode::getAttribute(const char *name, int *) const
{
    if (m_data) {
        for (const auto &[attribute, value] : m_data->attributes) {
            if (attribute == QLatin1StringView(name)) {
                return units(value);
            }
        }
    }
    return nullptr;
}

QStringList XMLNode::attributeNames() const
{
    const auto nameOf = [](const auto &attribute) { return attribute.first; };
    return m_data ? corvanta::mapped<QStringList>(m_data->attributes, nameOf) : QStringList();
}

int XMLNode::nChildNode() const
{
    return m_data ? static_cast<int>(m_data->children.size()) : 0;
}

XMLNode XMLNode::getChildNode(int i) const
{
    return i >= 0 && i < nChildNode() ? m_data->children[static_cast<size_t>(i)] : XMLNode();
}

XMLNode XMLNode::getChildNode(const char *name, int *index) const
{
    // `*index` is unchanged when nothing is found, as callers that loop until then expect.
    for (int i = index != nullptr ? *index : 0; i < nChildNode(); ++i) {
        const XMLNode &child = m_data->children[static_cast<size_t>(i)];
        if (child.m_data->name == QLatin1StringView(name)) {
            if (index != nullptr) {
                *index = i + 1;
            }
            return child;
        }
    }
    return {};
}

const char16_t *XMLNode::getText(int i) const
{
    return m_data && i >= 0 && i < m_data->texts.size() ? units(m_data->texts[i]) : nullptr;
}

QString XMLNode::text() const
{
    return m_data ? m_data->texts.join(QString()) : QString();
}
