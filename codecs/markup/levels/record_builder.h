// Builds the tree of one record from the tokens of a document.
#pragma once
#include "base/result.h"
#include "codecs/markup/tree/tree.h"

namespace corvanta::markup {

/// Threads: one at a time.
class RecordBuilder
{
public:
    /// Errors of all functions: those of the tokenizer, and TreeTooLarge; with the position.
    using Status = Result<void, MarkupResult>;

    /// Begin a document. `tokenizer` must outlive the document.
    void beginDocument(MarkupTokenizer &tokenizer) { m_tokenizer = &tokenizer; }

    /// Let `taker`, which may be null, take leaves that are directly in an occurrence.
    void setLeafTaker(MarkupTreeBuilder::LeafTaker *taker) { m_taker = taker; }

    /// Begin a tree at the current token, which is not added.
    void begin()
    {
        m_occurrenceDepth = kNoDepth;
        m_builder.begin(*m_tokenizer);
    }
    /// Begin a tree at the current Start and add its whole element.
    Status buildElement();
    /// Add the current Start and the rest of its element.
    Status addElement();
    /// Add everything up to the end of the top-level value.
    Status addRestOfValue();
    /// Read to the end of the element of the current Start, without a tree.
    Status skipElement();
    /// The tree of what was added so far. Valid until the next call of this object.
    const MarkupTree &tree() { return m_builder.tree(); }

    /// The fault `error` at the position of the tokenizer.
    Fault<MarkupResult> faultHere(MarkupError error) const
    {
        return Fault{MarkupResult{error, m_tokenizer->line(), m_tokenizer->column()}};
    }

    /// For options, and for callers of MarkupTreeBuilder::parseNext().
    MarkupTreeBuilder &builder() { return m_builder; }

private:
    Result<Token, MarkupError> addNext();

    static constexpr qint64 kNoDepth = -1;

    MarkupTreeBuilder m_builder;
    MarkupTreeBuilder::LeafTaker *m_taker = nullptr;
    qint64 m_occurrenceDepth = kNoDepth; // of the open elements while one is built
    MarkupTokenizer *m_tokenizer = nullptr;
};

} // namespace corvanta::markup
