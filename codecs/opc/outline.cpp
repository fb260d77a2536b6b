// The elements of a text by depth (XML 1.0, section 3: elements nest, and one of them is the root):
//
//   depth 1   <workbook>                   index 0, parent -1
//   depth 2     <sheets>                   index 1, parent 0
//   depth 3       <sheet/> <sheet/>        indexes 2 and 3, parent 1
//   depth 4         ...                    indexed
//   depth 5           ...                  only checked
//
// Four levels hold everything that changes: the entries of the lists of a workbook, of its styles
// and of its relationships, and their children.
#include "codecs/opc/outline.h"

namespace corvanta::opc {

namespace {

constexpr size_t kIndexedDepth = 4;
// Bounds for memory: a text of a few MiB could otherwise demand many times its size.
constexpr size_t kMaxElements = size_t(4) << 20;
constexpr size_t kMaxDepth = 1'000'000;

/// Checks that the tags of a text nest, and collects the elements of its upper levels.
class OutlineReader
{
public:
    explicit OutlineReader(QByteArrayView text)
        : m_cursor(text)
    {
    }
    Result<std::vector<Element>, Error> read();

private:
    struct Open
    {
        QByteArrayView name;
        int index; // -1: not indexed
    };
    bool take(const Tag &tag);
    bool close(const Tag &tag);
    int addElement(const Tag &tag);

    TagCursor m_cursor;
    std::vector<Open> m_open;
    std::vector<Element> m_elements;
};

Result<std::vector<Element>, Error> OutlineReader::read()
{
    while (m_cursor.next()) {
        if (!take(m_cursor.tag())) {
            return Fault<Error>{Error::Malformed, {}, m_cursor.offset()};
        }
        if (m_elements.size() > kMaxElements || m_open.size() > kMaxDepth) {
            return Fault<Error>{Error::TooLarge};
        }
    }
    if (m_cursor.isBroken() || !m_open.empty() || m_elements.empty()) {
        return Fault<Error>{Error::Malformed, {}, m_cursor.offset()};
    }
    return std::move(m_elements);
}

bool OutlineReader::take(const Tag &tag)
{
    if (tag.kind == Tag::Kind::Close) {
        return close(tag);
    }
    // The attributes are parsed here once, so that users of the outline can rely on them.
    const bool isSecondRoot = m_open.empty() && !m_elements.empty();
    if (isSecondRoot || !tag.attributes()) {
        return false;
    }
    const int index = m_open.size() < kIndexedDepth ? addElement(tag) : -1;
    if (tag.kind == Tag::Kind::Open) {
        m_open.push_back({tag.name, index});
    }
    return true;
}

bool OutlineReader::close(const Tag &tag)
{
    if (m_open.empty() || m_open.back().name != tag.name) {
        return false;
    }
    if (m_open.back().index >= 0) {
        Element &closed = m_elements[static_cast<size_t>(m_open.back().index)];
        closed.closeBegin = tag.begin;
        closed.end = tag.end;
    }
    m_open.pop_back();
    return true;
}

/// Returns the element's index. The end of an element that is not empty is set by close().
int OutlineReader::addElement(const Tag &tag)
{
    constexpr qsizetype kEmptyTagEnd = 2; // "/>"
    const bool isEmpty = tag.kind == Tag::Kind::Empty;
    m_elements.push_back({tag, isEmpty ? tag.end - kEmptyTagEnd : -1, isEmpty ? tag.end : -1,
                          m_open.empty() ? -1 : m_open.back().index});
    return static_cast<int>(m_elements.size()) - 1;
}

} // namespace

Result<Outline, Error> Outline::read(QByteArrayView text)
{
    if (!isUtf8Text(text)) {
        return Fault<Error>{Error::Encoding};
    }
    auto elements = OutlineReader(text).read();
    if (!elements) {
        return elements.fault();
    }
    return Outline(std::move(*elements));
}

Result<Outline, Error> Outline::readRootedIn(QByteArrayView text, QByteArrayView root)
{
    auto outline = read(text);
    const bool isOther = outline && outline->root().tag.local() != root;
    return isOther ? Fault{Error::Unexpected} : std::move(outline);
}

QByteArray Outline::qualified(QByteArrayView local) const
{
    return opc::qualified(root().tag.prefix(), local);
}

std::vector<int> Outline::children(int parent, QByteArrayView local) const
{
    const QByteArray name = qualified(local);
    std::vector<int> found;
    for (size_t i = 0; i < m_elements.size(); ++i) {
        const bool isNamed = local.isEmpty() || m_elements[i].tag.name == QByteArrayView(name);
        if (m_elements[i].parent == parent && isNamed) {
            found.push_back(static_cast<int>(i));
        }
    }
    return found;
}

std::optional<int> Outline::child(int parent, QByteArrayView local) const
{
    const std::vector<int> all = children(parent, local);
    return all.empty() ? std::nullopt : std::optional<int>(all.front());
}

} // namespace corvanta::opc
