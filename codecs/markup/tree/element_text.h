// codecs/markup/tree/element_text.h
// The text of an element of a tree that comes in several pieces.
#pragma once
#include "codecs/markup/tree/tree.h"

#include <string>

namespace corvanta::markup {

/// What counts as text of an element.
struct TextRule
{
    bool clearIsText = false; ///< CDATA sections and <PRE> blocks too
    bool html =
        false; ///< in folded text, elements that begin a line of their own stand for a blank
};

/// True when an item is a piece of text under `rule`.
bool isTextPiece(const TreeItem &item, const TextRule &rule);

/// Put the pieces that stand directly in `element`, one after the other, into `out`; false when
/// there is none. The tokenizer drops blanks in front of a text: those between pieces are put back.
bool joinText(const MarkupTree &tree, quint32 element, const TextRule &rule, std::u16string *out);

/// The same for all text inside `element`, its sub-elements' included: blanks at the ends are
/// dropped, runs of them become one.
bool foldText(const MarkupTree &tree, quint32 element, const TextRule &rule, std::u16string *out);

} // namespace corvanta::markup
