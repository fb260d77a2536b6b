// One element in the tree of a StructureEditor. Threads: the GUI thread.
#pragma once
#include "panels/structures/element.h"

#include <QTreeWidgetItem>

namespace corvanta {

class ElementItem final : public QTreeWidgetItem
{
public:
    /// `list` declares the element and outlives the item. `splits`: the elements of the list inside
    /// become children of the item.
    ElementItem(const ParameterInfo &list, Element own, bool splits)
        : info(list)
        , element(std::move(own))
    {
        const ParameterInfo *const inner = splits ? listIn(info) : nullptr;
        for (auto child = element.children.begin(); child != element.children.end();) {
            const bool isItem = inner != nullptr && child->name == inner->itemElement;
            if (isItem) {
                addChild(new ElementItem(*inner, std::move(*child), splits));
            }
            child = isItem ? element.children.erase(child) : child + 1;
        }
    }

    /// The element with those of the children, which are at its end.
    Element whole() const
    {
        Element all = element;
        for (int i = 0; i < childCount(); ++i) {
            all.children.push_back(static_cast<const ElementItem *>(child(i))->whole());
        }
        return all;
    }

    const ParameterInfo &info;
    Element element; ///< without those of the children
};

} // namespace corvanta
