// Most of a record are leaves, which addLeaves() adds without a token for each of their parts.
// Other tokens are added one at a time.
#include "codecs/markup/levels/record_builder.h"

namespace corvanta::markup {

/// Add the next leaves and one more token; returns the error, if any. (Not a Result: this runs for
/// every token.)
inline std::optional<MarkupError> RecordBuilder::addNext(Token *token)
{
    if (!m_builder.addLeaves()) {
        return MarkupError::TreeTooLarge;
    }
    *token = m_tokenizer->nextToken();
    if (*token == Token::Error) {
        return m_tokenizer->errorCode();
    }
    return m_builder.add(*token) ? std::nullopt : std::optional(MarkupError::TreeTooLarge);
}

RecordBuilder::Status RecordBuilder::buildElement()
{
    begin();
    return addElement();
}

RecordBuilder::Status RecordBuilder::addElement()
{
    const qint64 outside = m_builder.depth();
    bool isGood = m_builder.add(Token::Start);
    Token token = Token::Start;
    std::optional<MarkupError> error;
    while (isGood && m_builder.depth() > outside) {
        error = addNext(&token);
        isGood = !error;
    }
    if (!isGood) {
        return faultHere(error.value_or(MarkupError::TreeTooLarge));
    }
    return {};
}

RecordBuilder::Status RecordBuilder::addRestOfValue()
{
    Token token = Token::None;
    while (token != Token::DocumentEnd) {
        if (const auto error = addNext(&token)) {
            return faultHere(*error);
        }
    }
    return {};
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
