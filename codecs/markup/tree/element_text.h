// Joins the text of an element that consists of several pieces.
#pragma once
#include "codecs/markup/tree/tree.h"

#include <string>

namespace corvanta::markup {

/// What counts as text of an element.
struct TextRule
{
    /// CDATA sections and <PRE> blocks are text.
    bool clearIsText = false;
    /// In folded text, HTML elements that are not inline separate words.
    bool html = false;
};

/// True when an item is text under `rule`.
bool isTextPiece(const TreeItem &item, const TextRule &rule);

/// Join the pieces of text directly inside `element` in `out`; returns false if it has none. Spaces
/// between pieces, which the tokenizer drops, are restored.
bool joinText(const MarkupTree &tree, quint32 element, const TextRule &rule, std::u16string *out);

/// Join all pieces of text inside `element` and its sub-elements in `out`; returns false if there
/// is none. Drops spaces at both ends and folds runs of them to one.
bool foldText(const MarkupTree &tree, quint32 element, const TextRule &rule, std::u16string *out);

} // namespace corvanta::markup
