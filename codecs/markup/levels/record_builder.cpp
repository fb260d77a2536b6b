// Most of a record are leaves, which addLeaves() adds without a token for each of their parts.
// Other tokens are added one at a time.
#include "codecs/markup/levels/record_builder.h"

namespace corvanta::markup {

/// Add the next leaves and one more token, which it returns.
inline Result<Token, MarkupError> RecordBuilder::addNext()
{
    const bool isDirect = m_builder.depth() == m_occurrenceDepth;
    const bool hasRoom = m_builder.addLeaves(isDirect ? m_taker : nullptr);
    const Token token = hasRoom ? m_tokenizer->nextToken() : Token::None;
    if (token == Token::Error) {
        return Fault{m_tokenizer->errorCode()};
    }
    if (!hasRoom || !m_builder.add(token)) {
        return Fault{MarkupError::TreeTooLarge};
    }
    return token;
}

// The start tag of the element is the current token.
RecordBuilder::Status RecordBuilder::buildElement()
{
    begin();
    m_occurrenceDepth = 1;
    return addElement();
}

RecordBuilder::Status RecordBuilder::addElement()
{
    const qint64 outside = m_builder.depth();
    if (!m_builder.add(Token::Start)) {
        return faultHere(MarkupError::TreeTooLarge);
    }
    while (m_builder.depth() > outside) {
        if (const auto added = addNext(); !added) {
            return faultHere(added.fault().code);
        }
    }
    return {};
}

RecordBuilder::Status RecordBuilder::addRestOfValue()
{
    m_occurrenceDepth = 0;
    for (;;) {
        const auto added = addNext();
        if (!added) {
            return faultHere(added.fault().code);
        }
        if (*added == Token::DocumentEnd) {
            return {};
        }
    }
}

RecordBuilder::Status RecordBuilder::skipElement()
{
    // The element's own Start has been read, so its level already counts.
    const qint64 outside = m_tokenizer->depth() - 1;
    while (m_tokenizer->depth() > outside) {
        if (m_tokenizer->nextToken() == Token::Error) {
            return faultHere(m_tokenizer->errorCode());
        }
    }
    return {};
}

} // namespace corvanta::markup
