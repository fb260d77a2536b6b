// An occurrence is a child of the container with the name of the level. With ignoreEmpty, "<a/>" is
// not an occurrence, but "<a x='1'/>" and "<a><b/></a>" are.
#include "codecs/markup/levels/element_filter.h"

namespace corvanta::markup {

quint32 ElementFilter::firstOccurrence(const MarkupTree &tree, const LevelState &level,
                                       quint32 from, quint32 container) const
{
    quint32 child = tree.next(from, container, ItemKind::Child);
    while (child != MarkupTree::kNone &&
           (!level.isOccurrence(tree.raw(child)) || isIgnored(tree, child))) {
        child = tree.sibling(child);
    }
    return child;
}

/// True for an element without text, sub-elements and attributes.
bool ElementFilter::isEmpty(const MarkupTree &tree, quint32 element) const
{
    const TreeItem &item = tree.item(element);
    if (item.kind != ItemKind::Child || item.count(ItemKind::Child) > 0 ||
        item.count(ItemKind::Text) > 0 || item.count(ItemKind::Attribute) > 0) {
        return false;
    }
    quint32 clear = tree.first(element, ItemKind::Clear);
    while (clear != MarkupTree::kNone && !isTextPiece(tree.item(clear), m_text)) {
        clear = tree.sibling(clear);
    }
    return clear == MarkupTree::kNone;
}

} // namespace corvanta::markup
