// The grammar of RFC 8259 (section 2), and the tokens that its parts become:
//
//     stream = *value                         DocumentStart ... DocumentEnd for each value
//     value  = object / array / string / number / "true" / "false" / "null"
//     object = "{" [ member *( "," member ) ] "}"
//     member = string ":" value               Start(key) ... End(key)
//     array  = "[" [ value *( "," value ) ] "]"
//                                             Start(item name) ... End(item name) for each value
//     string, number, true, false, null       Text
//
// Accepted beyond it: single quotes, unknown escapes, raw control characters in strings, one comma
// before a closing bracket, NaN and infinities, any run of number characters, and several top-level
// values.
#include "codecs/markup/tokens/json_tokenizer.h"

#include "base/limits.h"
#include "base/utf.h"
#include "codecs/markup/text/char_class.h"
#include "codecs/markup/text/scan.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace corvanta::markup {

namespace {

constexpr size_t kFirstContainers = 512;

/// Numbers of the texts outside the buffer. kClosedName is m_closedName.
enum External : quint32 { kClosedName, kUnderscore, kNan, kInf, kMinusInf, kFirstItemName };
constexpr std::array<std::string_view, 5> kExternal{"", "_", "nan", "inf", "-inf"};

/// Bytes that resume() reads again at most, so that its time stays linear.
constexpr size_t kMaxRewound = size_t(64) << 20;

bool isLineBreak(char c)
{
    return c == '\n' || c == '\r';
}

/// Records of a file with one value per line are objects or arrays.
bool beginsValue(char c)
{
    return c == '{' || c == '[';
}

/// The end of a number or word. Anything else makes the whole word invalid.
bool mayFollowBareValue(char c)
{
    return isSpace(c) || c == ',' || c == '}' || c == ']' || c == 0;
}

} // namespace

JSONTokenizer::JSONTokenizer(ByteSource &source, qint64 bufferChars,
                             std::u16string_view arrayItemName)
    : MarkupTokenizer(source, bufferChars)
{
    m_open.reserve(kFirstContainers);
    setArrayItemName(arrayItemName);
}

void JSONTokenizer::restart(ByteSource &source)
{
    MarkupTokenizer::restart(source);
    m_state = State::Top;
    m_open.clear();
    m_names.clear();
    m_rewound = 0;
}

void JSONTokenizer::setArrayItemName(std::optional<std::u16string_view> name)
{
    const std::u16string_view wide = name.value_or(std::u16string_view());
    std::string bytes(wide.size() * 3, '\0');
    bytes.resize(static_cast<size_t>(
        utf16ToUtf8(wide.data(), static_cast<qsizetype>(wide.size()), bytes.data())));
    const auto known = std::find(m_itemNames.begin(), m_itemNames.end(), bytes);
    m_itemName = kFirstItemName + static_cast<quint32>(known - m_itemNames.begin());
    if (known == m_itemNames.end()) {
        m_itemNames.push_back(std::move(bytes));
    }
}

RawText JSONTokenizer::externalText(quint32 number) const
{
    if (number == kClosedName) {
        return m_closedName;
    }
    const std::string_view text = number < kFirstItemName
                                      ? kExternal[number]
                                      : std::string_view(m_itemNames[number - kFirstItemName]);
    return {text.data(), static_cast<quint32>(text.size()), TextForm::Detached};
}

Result<void, MarkupError> JSONTokenizer::detectEncoding(CharSource &source, QByteArrayView first)
{
    return source.setEncoding(guessJSONEncoding(first), QByteArray(), InvalidBytes::Fail);
}

Token JSONTokenizer::nextToken()
{
    return firstToken([this] { return step(); });
}

/// The end of the number or lower-case literal at `at`; `at` itself if there is none.
inline const char *JSONTokenizer::barewordEnd(const char *at) const
{
    if (*at == 't' || *at == 'f' || *at == 'n') {
        const std::string_view word = *at == 't' ? "true" : (*at == 'f' ? "false" : "null");
        return at + (std::memcmp(at, word.data(), word.size()) == 0 ? word.size() : 0);
    }
    at = skipNumberChars(at);
    while (m_permissive && isIn(*at, charset::kPermissive)) {
        ++at;
    }
    return at;
}

/// Scan the value of a leaf at `*at`; sets `*at` to the separator after it. Always inlined: it runs
/// for nearly every value.
[[gnu::always_inline]] inline bool JSONTokenizer::scanLeafValue(const char **at, Leaf *leaf)
{
    const bool quoted = **at == '"';
    const char *const text = quoted ? *at + 1 : *at;
    const char *const textEnd = quoted ? findStringStop(text, '"') : barewordEnd(text);
    if (quoted ? *textEnd != '"' : textEnd == text) {
        return false;
    }
    *at = skipSpaces(quoted ? textEnd + 1 : textEnd);
    leaf->text = span(fromToken(text), textEnd, TextForm::Plain);
    return **at == ',' || **at == '}';
}

/// A member whose name and value have no escapes, up to the comma or brace after it.
bool JSONTokenizer::takeLeaf(Leaf *leaf)
{
    if (!m_begun || isFinished()) {
        return false;
    }
    // The first member of an object follows its brace, which is not a token.
    if (m_state == State::Value && skipSpace(Hold::Token) == '{') {
        openContainer(true); // if there are too many, nextToken() reports it
    }
    if (m_state != State::Key || skipSpace(Hold::Nothing) != '"') {
        return false;
    }
    const char *const name = here() + 1;
    const char *const nameEnd = findStringStop(name, '"');
    if (*nameEnd != '"' || nameEnd == name || nameEnd[1] != ':') {
        return false;
    }
    const size_t keptBefore = m_keep;
    m_keep = m_pos;
    const char *at = skipSpaces(nameEnd + 2);
    if (!scanLeafValue(&at, leaf)) {
        m_keep = keptBefore;
        return false;
    }
    leaf->name = m_name = span(1, nameEnd, TextForm::Plain);
    leaf->hasText = true;
    return finishLeaf(*leaf, *at == ',' ? at + 1 : at);
}

/// Read one construct; returns None if it does not produce a token.
inline Token JSONTokenizer::step()
{
    if (m_state == State::AfterValue) {
        return m_open.empty() ? endDocument() : afterValue();
    }
    const bool holdName = m_state == State::Value;
    const char c = skipSpace(holdName ? Hold::Token : Hold::Nothing);
    if (c == 0) {
        return missingEnd();
    }
    switch (m_state) {
    case State::Top:
        return startDocument(c);
    case State::Key:
        return c == '}' || c == ']' ? closeContainer(c) : readKey(c);
    case State::Item:
        return c == '}' || c == ']' ? closeContainer(c) : startItem();
    default:
        return readValue(c);
    }
}

/// True for a word at the position that is not a value: it begins with a letter and is neither a
/// literal nor a number without digits.
bool JSONTokenizer::isStrayWord()
{
    const char *at = here();
    do {
        while (isIn(*at, charset::kPermissive)) {
            ++at;
        }
    } while (at == end() && refillAt(&at));
    m_pos = m_keep;
    const QByteArray word = QByteArray(here(), static_cast<qsizetype>(at - here())).toLower();
    return mayFollowBareValue(*at) && word != "nan" && word != "inf" && word != "infinity";
}

/// Skip words that are not values, at the start of a document; false when there are none.
bool JSONTokenizer::skipStrayText()
{
    if (!isStrayWord()) {
        return false;
    }
    m_onStrayText();
    const auto isInText = [](char c) {
        return c == ' ' || c == '\t' || isIn(c, charset::kPermissive);
    };
    do {
        const char *at = here();
        while (isInText(*at)) {
            ++at;
        }
        moveTo(at);
        m_keep = m_pos;
    } while (here() == end() && refill());
    return true;
}

/// Pass the next line break; false when there is none.
bool JSONTokenizer::skipLine()
{
    do {
        m_keep = m_pos;
        const char *const stop = std::find_if(here(), end(), isLineBreak);
        const bool found = stop != end();
        m_skipped += stop - here();
        moveTo(found ? stop + 1 : stop);
        if (found) {
            return true;
        }
    } while (refillSkipped());
    return false;
}

/// Go to the first line after the marked one that begins like a value.
bool JSONTokenizer::rewindToNextLine()
{
    m_rewound += m_pos - mark();
    m_pos = m_keep = mark();
    while (m_rewound <= kMaxRewound && skipLine()) {
        const char *at = here();
        ensure(&at, 1);
        if (beginsValue(*at)) {
            return true;
        }
    }
    return false;
}

bool JSONTokenizer::resume(Rewind rewind)
{
    // Between the values, the line of the error is the current one.
    const bool hasSeveralLines = m_state != State::Top && hasBreakSinceMark();
    // Where a NUL cut a document off, no line begins: discardRest() then counts what follows.
    const bool isAtNul = isEndedByNul();
    m_lostAfterNul = 0;
    const bool isCut = hasSeveralLines && rewind == Rewind::Never && isAtNul;
    if (isCut || !recover()) {
        return false;
    }
    m_state = State::Top;
    m_open.clear();
    m_names.clear();
    if (!hasSeveralLines) {
        m_skipped = 0;
        const bool hasLine = skipLine();
        m_lostAfterNul = isAtNul && !hasLine ? m_skipped - 1 : 0;
        return hasLine;
    }
    // A line that was not complete ends where the next one begins.
    const bool isAtLine = here() > data() && isLineBreak(here()[-1]) && beginsValue(*here());
    return rewind == Rewind::ToNextLine ? isMarkKept() && rewindToNextLine() : isAtLine;
}

Token JSONTokenizer::startDocument(char c)
{
    m_keep = m_pos;
    markDocument();
    const bool isWord = m_onStrayText && m_permissive && charClass(c) == CharClass::Letter &&
                        c != 't' && c != 'f' && c != 'n';
    if (isWord && skipStrayText()) {
        return Token::None;
    }
    m_state = State::Value;
    m_documentKind =
        c == '{' ? DocumentKind::Object : (c == '[' ? DocumentKind::Array : DocumentKind::Scalar);
    m_text = m_name = {};
    return documentMarks() ? finish(Token::DocumentStart) : Token::None;
}

Token JSONTokenizer::endDocument()
{
    m_state = State::Top;
    m_text = {};
    return documentMarks() ? finish(Token::DocumentEnd) : Token::None;
}

/// The data ends inside or between values.
Token JSONTokenizer::missingEnd()
{
    const bool open = !m_open.empty() || m_state == State::Value;
    return open && isBalanced() ? fail(MarkupError::UnmatchedEndTag) : endOfData();
}

/// Read a key and its colon. An empty key is named "_", because an element needs a name.
inline Token JSONTokenizer::readKey(char quote)
{
    if (quote != '"' && quote != '\'') {
        return fail(MarkupError::QuoteExpected);
    }
    m_keep = m_pos;
    TextSpan name;
    if (!scanString(quote, &name)) {
        return fail(MarkupError::QuoteExpected);
    }
    if (name.size() == 0) {
        name = TextSpan::external(kUnderscore);
    }
    if (*here() != ':' && skipSpace(Hold::Token) != ':') {
        return fail(MarkupError::ColonExpected);
    }
    ++m_pos;
    m_name = m_text = name;
    ++m_depth;
    m_state = State::Value;
    return finish(Token::Start);
}

// Items of an array have no name in JSON: each gets the one of its array.
Token JSONTokenizer::startItem()
{
    m_keep = m_pos;
    m_name = m_text = TextSpan::external(m_open.back().itemName);
    ++m_depth;
    m_state = State::Value;
    return finish(Token::Start);
}

inline Token JSONTokenizer::readValue(char c)
{
    switch (c) {
    case '"':
    case '\'':
        return readString(c);
    case '{':
    case '[':
        return openContainer(c == '{') ? Token::None : fail(MarkupError::TreeTooLarge);
    case '}':
    case ']':
        return fail(MarkupError::UnexpectedEndTag);
    case 't':
    case 'f':
    case 'n':
        return readLiteral(c);
    default:
        return readNumber();
    }
}

/// Enter a container. Copies the name of the element that holds it, because the buffer may discard
/// it before the container ends.
bool JSONTokenizer::openContainer(bool object)
{
    if (static_cast<qint64>(m_open.size()) >= limits::kElementDepth) {
        return false;
    }
    Container container;
    container.itemName = object ? 0 : m_itemName;
    if (m_name.isExternal()) {
        container.nameExternal = m_name.offset();
    } else {
        const RawText name = resolve(m_name);
        container.nameSize = name.size;
        container.nameForm = name.form;
        m_names.insert(m_names.end(), name.data, name.data + name.size);
    }
    m_open.push_back(container);
    ++m_pos;
    m_state = object ? State::Key : State::Item;
    return true;
}

/// Leave a container. Its element ends after the separator that follows.
Token JSONTokenizer::closeContainer(char c)
{
    if ((c == '}') != isObject()) {
        return fail(MarkupError::UnmatchedEndTag);
    }
    ++m_pos;
    const Container container = m_open.back();
    m_open.pop_back();
    if (container.nameExternal != 0) {
        m_closedName = externalText(container.nameExternal);
    } else {
        const size_t start = m_names.size() - container.nameSize;
        m_names.resize(start);
        // The bytes stay where they are until the next container opens.
        const bool plain = container.nameForm == TextForm::Plain;
        m_closedName = {m_names.data() + start, container.nameSize,
                        plain ? TextForm::Detached : container.nameForm};
    }
    m_name = TextSpan::external(kClosedName);
    m_scalar = false;
    m_state = State::AfterValue;
    return Token::None;
}

/// A member or item is complete when a separator or a closing bracket follows its value.
inline Token JSONTokenizer::afterValue()
{
    const char c = skipSpace(m_scalar ? Hold::Token : Hold::Nothing);
    if (c == ',') {
        ++m_pos;
        m_state = isObject() ? State::Key : State::Item;
        return endElement();
    }
    if (c == '}' || c == ']') {
        // The next step reads the bracket again and closes the container.
        if ((c == '}') != isObject()) {
            return fail(MarkupError::UnmatchedEndTag);
        }
        m_state = isObject() ? State::Key : State::Item;
        return endElement();
    }
    return c == 0 ? missingEnd() : fail(MarkupError::InvalidTagEnd);
}

inline Token JSONTokenizer::endElement()
{
    --m_depth;
    m_text = m_name;
    return finish(Token::End);
}

/// Scan a string from its opening quote; false when it does not end.
inline bool JSONTokenizer::scanString(char quote, TextSpan *text)
{
    const char *at = here() + 1;
    const quint32 offset = fromToken(at);
    TextForm form = TextForm::Plain;
    for (at = findStringStop(at, quote); *at != quote; at = findStringStop(at, quote)) {
        if (!passStringStop(&at, &form)) {
            moveTo(at);
            return false;
        }
    }
    *text = span(offset, at, form);
    moveTo(at + 1);
    return true;
}

/// Pass a backslash with the byte after it, a control character, or the end of the buffer; false at
/// the end of the data.
bool JSONTokenizer::passStringStop(const char **at, TextForm *form)
{
    const char c = **at;
    if (c == 0) {
        return *at == end() && refillAt(at);
    }
    if (c == '\\') {
        *form = TextForm::JsonEscaped;
        ensure(at, 2);
        const bool isComplete = (*at)[1] != 0;
        *at += isComplete ? 2 : 1;
        return isComplete;
    }
    *form = c == '\r' || c == '\n' ? TextForm::JsonEscaped : *form;
    ++*at;
    return true;
}

inline Token JSONTokenizer::readString(char quote)
{
    TextSpan text;
    if (!scanString(quote, &text)) {
        return fail(MarkupError::QuoteExpected);
    }
    m_text = text;
    m_scalar = true;
    m_state = State::AfterValue;
    return finish(Token::Text);
}

/// How many characters of `word` (lower case) are at `*at`, in any letter case. Refills only while
/// they match, because the data after a mismatch may belong to the next document.
qsizetype JSONTokenizer::matchingChars(const char **at, std::string_view word)
{
    qsizetype n = 0;
    for (const char wanted : word) {
        ensure(at, n + 1);
        if (((*at)[n] | 0x20) != wanted) {
            break;
        }
        ++n;
    }
    return n;
}

// Errors are reported at the next character, so move there first.
Token JSONTokenizer::failAt(const char *at, MarkupError error)
{
    moveTo(at);
    return fail(error);
}

Token JSONTokenizer::readLiteral(char c)
{
    struct Literal
    {
        std::string_view word;
        MarkupError error;
    };
    static constexpr Literal kTrue{"true", MarkupError::TrueExpected};
    static constexpr Literal kFalse{"false", MarkupError::FalseExpected};
    static constexpr Literal kNull{"null", MarkupError::NullExpected};
    const Literal &literal = c == 't' ? kTrue : (c == 'f' ? kFalse : kNull);
    const char *at = here();
    const qsizetype letters = matchingChars(&at, literal.word);
    if (std::string_view(at, static_cast<size_t>(letters)) == literal.word) {
        m_text = span(fromToken(at), at + letters, TextForm::Plain);
        return finishBareValue(at + letters, literal.error);
    }
    if (matches(&at, "nan")) {
        m_text = TextSpan::external(kNan);
        return finishBareValue(at + 3, literal.error);
    }
    return failAt(at + letters, literal.error);
}

/// Read a run of number characters; also NaN and infinities.
inline Token JSONTokenizer::readNumber()
{
    const char *at = here();
    const quint8 set = m_permissive ? charset::kPermissive : charset::kNumber;
    const quint32 offset = fromToken(at);
    do {
        while (isIn(*at, set)) {
            ++at;
        }
    } while (at == end() && refillAt(&at));
    m_text = span(offset, at, TextForm::Plain);
    if (!m_permissive && (matches(&at, "n") || matches(&at, "i"))) {
        return readSpecialNumber(at, data()[m_keep + offset] == '-');
    }
    return m_text.size() == 0 ? failAt(at, MarkupError::InvalidNumber)
                              : finishBareValue(at, MarkupError::InvalidNumber);
}

/// "NaN", "INF" or "Infinity" in any case, after an optional sign.
Token JSONTokenizer::readSpecialNumber(const char *at, bool negative)
{
    constexpr std::string_view kInfinity = "infinity";
    constexpr qsizetype kShort = 3;
    if (matches(&at, "nan")) {
        m_text = TextSpan::external(kNan);
        return finishBareValue(at + kShort, MarkupError::InvalidNumber);
    }
    const qsizetype letters = matchingChars(&at, kInfinity);
    if (letters < kShort) {
        return failAt(at + letters, MarkupError::InvalidNumber);
    }
    m_text = TextSpan::external(negative ? kMinusInf : kInf);
    const bool isLong = letters == static_cast<qsizetype>(kInfinity.size());
    return finishBareValue(at + (isLong ? letters : kShort), MarkupError::InvalidNumber);
}

/// Complete a value without quotes, which ends at `at`: only a separator may follow.
inline Token JSONTokenizer::finishBareValue(const char *at, MarkupError error)
{
    ensure(&at, 1);
    // After a failure of the source, the value may be incomplete.
    if (!mayFollowBareValue(*at) || isBrokenAt(at)) {
        return failAt(at, error);
    }
    moveTo(at);
    m_scalar = true;
    m_state = State::AfterValue;
    return finish(Token::Text);
}

} // namespace corvanta::markup
