#include "codecs/markup/tokens/xml_tokenizer.h"

#include "base/limits.h"
#include "codecs/markup/text/char_class.h"
#include "codecs/markup/text/entities.h"
#include "codecs/markup/text/scan.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace corvanta::markup {

namespace {

constexpr qsizetype kLongestOpener = 9;
/// How far up an HTML end tag looks for its element: keeps wild pages linear.
constexpr size_t kHtmlSearchDepth = 512;

struct ClearSection
{
    std::string_view opener;
    std::string_view closer;
    ClearKind kind;
};

/// Compared as written, in this order. Kept as required: "<script" also begins other names.
constexpr std::array<ClearSection, 7> kSections{{
    {"<![CDATA[", "]]>", ClearKind::CData},
    {"<!DOCTYPE", "]>", ClearKind::DocType},
    {"<!--", "-->", ClearKind::Comment},
    {"<PRE>", "</PRE>", ClearKind::Pre},
    {"<script", "</script>", ClearKind::Script},
    {"<Script", "</Script>", ClearKind::CapitalScript},
    {"<!", ">", ClearKind::Other},
}};

constexpr std::array<std::string_view, 7> kDroppedEnds{"tbody", "img",   "br",  "link",
                                                       "meta",  "input", "area"};
constexpr std::array<std::string_view, 17> kVoidElements{
    "img",   "br",    "link",     "meta",    "hr",     "input",  "col",   "base", "area",
    "param", "embed", "menuitem", "command", "keygen", "source", "track", "wbr"};

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [&](char x, char y) { return lower(x) == lower(y); });
}

template <size_t N>
bool isOneOf(std::string_view name, const std::array<std::string_view, N> &names)
{
    return std::any_of(names.begin(), names.end(),
                       [&](std::string_view known) { return equalsIgnoringCase(name, known); });
}

/// Elements that are dropped or never wait for an end tag.
bool isSpecialInHtml(std::string_view name)
{
    return equalsIgnoringCase(name, "tbody") || isOneOf(name, kVoidElements);
}

constexpr size_t kNoSection = kSections.size();

/// The section that `at` (a "<") opens, or kNoSection.
inline size_t openedSection(const char *at)
{
    const char second = at[1];
    if (second != '!' && second != 'P' && second != 's' && second != 'S') {
        return kNoSection;
    }
    size_t i = 0;
    while (i < kNoSection &&
           std::memcmp(at, kSections[i].opener.data(), kSections[i].opener.size()) != 0) {
        ++i;
    }
    return i;
}

bool endsName(char c)
{
    return c == '>' || c == '/' || c == '=' || c == '?' || isSpace(c);
}

} // namespace

XMLTokenizer::XMLTokenizer(ByteSource &source, qint64 bufferChars)
    : MarkupTokenizer(source, bufferChars)
{
}

void XMLTokenizer::restart(ByteSource &source)
{
    MarkupTokenizer::restart(source);
    m_attributes.clear();
    m_pendingEnd = false;
    m_pendingCloses = 0;
    m_names.clear();
}

MarkupError XMLTokenizer::detectEncoding(CharSource &source, QByteArrayView first)
{
    const QByteArray name = guessEncoding(first);
    const CharMode mode = encodingCode(name);
    if (mode == CharMode::Error) {
        return MarkupError::CannotConvert;
    }
    return source.setEncoding(mode, name == "System" ? m_systemEncoding : name, InvalidBytes::Fail);
}

RawText XMLTokenizer::externalText(quint32 number) const
{
    Q_UNUSED(number);
    return {m_closedName.data(), static_cast<quint32>(m_closedName.size()), TextForm::Detached};
}

Token XMLTokenizer::nextToken()
{
    if (isFinished() || (!m_begun && !begin())) {
        return token();
    }
    m_attributes.clear();
    Token token = Token::None;
    while (token == Token::None) {
        token = step();
    }
    return token;
}

/// "<name>text</name>" or "<name/>", without references and whole in the buffer.
bool XMLTokenizer::takeLeaf(Leaf *leaf)
{
    const bool isBetween = m_begun && !isFinished() && !m_pendingEnd && m_pendingCloses == 0;
    if (!isBetween || static_cast<qint64>(m_names.size()) >= limits::kElementDepth ||
        skipSpace(Hold::Nothing) != '<') {
        return false;
    }
    const char *const name = here() + 1;
    const char *const nameEnd = skipNameChars(name);
    const auto size = static_cast<size_t>(nameEnd - name);
    const bool isEmpty = *nameEnd == '/' && nameEnd[1] == '>';
    if (size == 0 || (*nameEnd != '>' && !isEmpty) || openedSection(here()) != kNoSection ||
        lacksName(name) || (m_options.html && isSpecialInHtml({name, size}))) {
        return false;
    }
    const char *const text = isEmpty ? nameEnd : skipSpaces(nameEnd + 1);
    const char *const textEnd = isEmpty ? nameEnd : findEither(text, '<', '&');
    const char *const stop = isEmpty ? nameEnd + 2 : textEnd + size + 3;
    if (!isEmpty && (*textEnd != '<' || textEnd[1] != '/' || stop > end() || stop[-1] != '>' ||
                     std::memcmp(textEnd + 2, name, size) != 0)) {
        return false;
    }
    m_keep = m_pos;
    leaf->name = span(1, nameEnd, TextForm::Plain);
    leaf->text = span(fromToken(text), textEnd, TextForm::Plain);
    leaf->hasText = text != textEnd;
    if (m_options.discardNameSpaces) {
        cutNameSpace(&leaf->name);
    }
    return finishLeaf(*leaf, stop);
}

/// Go on by one construct; None when it gives no token.
Token XMLTokenizer::step()
{
    if (m_pendingEnd) {
        m_pendingEnd = false;
        --m_depth;
        m_text = m_name;
        return finish(Token::End);
    }
    if (m_pendingCloses > 0) {
        return pendingClose();
    }
    const char c = skipSpace(Hold::Nothing);
    if (c == 0) {
        return dataEnds();
    }
    m_keep = m_pos;
    if (c != '<') {
        return readText(here());
    }
    const char *at = here();
    ensure(&at, kLongestOpener);
    if (at[1] == '/') {
        return readEndTag();
    }
    if (at[1] == '?') {
        return readInstruction();
    }
    const size_t section = openedSection(at);
    if (section != kNoSection) {
        return readClear(section);
    }
    return lacksName(at + 1) ? readText(at + 1) : readStartTag();
}

/// True in loose pages where no name can begin: a "<" that stands alone, "<=", "<2", "</>", "<? a".
bool XMLTokenizer::lacksName(const char *at) const
{
    if (!m_options.html) {
        return false;
    }
    const CharClass kind = charClass(*at);
    return kind == CharClass::Space || kind == CharClass::Digit || *at == '=' || *at == '>' ||
           *at == '-' || at == end();
}

Token XMLTokenizer::dataEnds()
{
    if (isBalanced() && !m_names.isEmpty() && !isBrokenAt(here())) {
        if (!m_options.html) {
            return fail(MarkupError::UnmatchedEndTag);
        }
        m_pendingCloses = static_cast<qint64>(m_names.size());
        return Token::None;
    }
    return endOfData();
}

/// Step over the entity at `*at` (a "&"); false, with the error set, when it is none and must be.
bool XMLTokenizer::readEntityAt(const char **at)
{
    ensure(at, kEntityBytes);
    const Entity entity = readEntity(*at, end());
    if (entity.kind != Entity::Kind::Character && !isLoose()) {
        moveTo(end() - *at < kEntityBytes && isBrokenAt(end()) ? end() : *at);
        return failed(MarkupError::UnknownEntity);
    }
    *at += entity.kind == Entity::Kind::Character ? entity.length : 1;
    return true;
}

/// Text from the token's start to the next "<"; the scan begins at `at`.
Token XMLTokenizer::readText(const char *at)
{
    TextForm form = TextForm::Plain;
    for (;;) {
        at = findEither(at, '<', '&');
        if (*at == '&') {
            form = TextForm::XmlEntities;
            if (!readEntityAt(&at)) {
                return token();
            }
            continue;
        }
        if (*at == '<' || at != end() || !refillAt(&at)) {
            break;
        }
    }
    moveTo(at);
    if (isBrokenAt(at)) {
        return fail(MarkupError::CannotRead);
    }
    m_text = span(0, at, form);
    return finish(Token::Text);
}

/// Read a name at `*at`; false, with the error set, when a character is not allowed in it.
bool XMLTokenizer::readName(const char **at, NameUse use, TextSpan *name)
{
    const quint32 offset = fromToken(*at);
    const MarkupError error =
        use == NameUse::Tag ? MarkupError::InvalidTagName : MarkupError::InvalidEndTagName;
    for (;;) {
        *at = skipNameChars(*at);
        const char c = **at;
        if (endsName(c)) {
            break;
        }
        if (c == 0 && *at == end() && refillAt(at)) {
            continue;
        }
        if (c == 0 || !m_options.ignoreInvalidCharInTagName) {
            moveTo(*at);
            return failed(error);
        }
        ++*at;
    }
    moveTo(*at);
    *name = span(offset, *at, TextForm::Plain);
    if (name->size() == 0) {
        return failed(error);
    }
    return true;
}

/// The common end tag: the name of the innermost element and a ">".
inline bool XMLTokenizer::isExpectedEnd(const char *at) const
{
    if (m_names.isEmpty()) {
        return false;
    }
    const std::string_view name = m_names.top();
    return end() - at > static_cast<ptrdiff_t>(name.size()) && at[name.size()] == '>' &&
           std::memcmp(at, name.data(), name.size()) == 0;
}

Token XMLTokenizer::readEndTag()
{
    const char *at = here() + 2;
    if (isExpectedEnd(at)) {
        m_text = span(fromToken(at), at + m_names.top().size(), TextForm::Plain);
        moveTo(at + m_names.top().size() + 1);
        return endElement();
    }
    TextSpan name;
    const bool isNameless = lacksName(at);
    moveTo(at);
    if (!isNameless && !readName(&at, NameUse::EndTag, &name)) {
        return token();
    }
    char c = skipSpace(Hold::Token);
    while (m_options.html && c != '>' && c != 0) {
        ++m_pos;
        c = skipSpace(Hold::Token);
    }
    if (c != '>') {
        return fail(MarkupError::InvalidTagEnd);
    }
    ++m_pos;
    m_text = name;
    if (isNameless || (m_options.html && isOneOf(resolve(name).view(), kDroppedEnds))) {
        return Token::None;
    }
    if (m_options.discardNameSpaces) {
        cutNameSpace(&m_text);
    }
    if (isBalanced()) {
        return closeFor(resolve(m_text).view());
    }
    --m_depth;
    return finish(Token::End);
}

/// The end of an element by its tag, with the stack of open names: what does not fit is an error in
/// XML; in HTML it closes everything down to its element, or means nothing.
Token XMLTokenizer::closeFor(std::string_view name)
{
    if (!m_names.isEmpty() && m_names.top() == name) {
        return endElement();
    }
    if (!m_options.html) {
        return fail(m_names.isEmpty() ? MarkupError::UnexpectedEndTag
                                      : MarkupError::UnmatchedEndTag);
    }
    for (size_t up = 0; up < std::min(m_names.size(), kHtmlSearchDepth); ++up) {
        if (equalsIgnoringCase(m_names.above(up), name)) {
            m_pendingCloses = static_cast<qint64>(up) + 1;
            break;
        }
    }
    return Token::None;
}

inline Token XMLTokenizer::endElement()
{
    m_names.pop();
    --m_depth;
    return finish(Token::End);
}

Token XMLTokenizer::pendingClose()
{
    --m_pendingCloses;
    m_closedName = m_names.top();
    m_text = TextSpan::external(0);
    return endElement();
}

bool XMLTokenizer::pushName(std::string_view name)
{
    if (static_cast<qint64>(m_names.size()) >= limits::kElementDepth) {
        return failed(MarkupError::TreeTooLarge);
    }
    m_names.push(name);
    return true;
}

/// Up to "?>"; in loose pages, which may lack the "?", up to the first ">".
Token XMLTokenizer::readInstruction()
{
    const char *at = here() + 2;
    TextSpan name;
    if (!lacksName(at) && !readName(&at, NameUse::Tag, &name)) {
        return token();
    }
    const char last = m_options.html ? '>' : '?';
    for (;;) {
        at = findEither(at, last, last);
        if (*at == last) {
            ensure(&at, 2);
            if (last == '>' || at[1] == '>') {
                break;
            }
            ++at;
        } else if (at != end() || !refillAt(&at)) {
            moveTo(at);
            return fail(MarkupError::InvalidPiEnd);
        }
    }
    moveTo(at + (last == '>' ? 1 : 2));
    m_text = name;
    return finish(Token::Instruction);
}

/// A section that is not looked into: everything up to its closer.
Token XMLTokenizer::readClear(size_t opener)
{
    const ClearSection &section = kSections[opener];
    const char *at = here() + section.opener.size();
    const quint32 start = fromToken(at);
    bool bracketed = section.kind != ClearKind::DocType;
    for (;; ++at) {
        const char *const stop = findEither(at, '>', bracketed ? '>' : '[');
        at = stop;
        if (*at == 0) {
            if (at == end() && refillAt(&at)) {
                --at;
                continue;
            }
            moveTo(at);
            return fail(MarkupError::UnmatchedClearTagEnd);
        }
        if (*at == '[') {
            bracketed = true;
            continue;
        }
        const auto closer = static_cast<quint32>(bracketed ? section.closer.size() : 1);
        const quint32 size = fromToken(at + 1) - start;
        if (size >= closer &&
            std::memcmp(at + 1 - closer, section.closer.data() + section.closer.size() - closer,
                        closer) == 0) {
            m_text = {start, size - closer, TextForm::Plain};
            break;
        }
    }
    moveTo(at + 1);
    m_clearKind = section.kind;
    return finish(Token::Clear);
}

Token XMLTokenizer::readStartTag()
{
    const char *at = here() + 1;
    if (!readName(&at, NameUse::Tag, &m_name) || !readAttributes()) {
        return token();
    }
    const std::string_view written = resolve(m_name).view();
    if (m_options.html && equalsIgnoringCase(written, "tbody")) {
        m_pendingEnd = false;
        m_attributes.clear(); // they must not be taken for those of the next tag
        return Token::None;
    }
    m_pendingEnd = m_pendingEnd || (m_options.html && isOneOf(written, kVoidElements));
    if (m_options.discardNameSpaces) {
        cutNameSpace(&m_name);
    }
    if (isBalanced() && !m_pendingEnd && !pushName(resolve(m_name).view())) {
        return token();
    }
    ++m_depth;
    m_text = m_name;
    return finish(Token::Start);
}

void XMLTokenizer::cutNameSpace(TextSpan *name) const
{
    const size_t colon = resolve(*name).view().find(':');
    if (colon != std::string_view::npos) {
        *name = name->without(static_cast<quint32>(colon + 1));
    }
}

/// Everything behind a start tag's name; false with the error set.
bool XMLTokenizer::readAttributes()
{
    for (;;) {
        const char c = skipSpace(Hold::Token);
        if (c == '>') {
            ++m_pos;
            return true;
        }
        if (c == '/') {
            const char *at = here();
            ensure(&at, 2);
            moveTo(at + 1);
            if (*here() == '>') {
                ++m_pos;
                m_pendingEnd = true;
                return true;
            }
            if (!m_options.html) {
                return failed(MarkupError::InvalidTagEnd);
            }
            continue;
        }
        if (m_options.html && (c == '=' || c == '?')) {
            ++m_pos; // left over from something else
            continue;
        }
        if (!isNameChar(c) && !m_options.ignoreInvalidCharInTagName) {
            return failed(MarkupError::InvalidTagEnd);
        }
        if (c == 0 || c == '=' || c == '?') {
            return failed(MarkupError::InvalidTagEnd);
        }
        if (!readAttribute()) {
            return false;
        }
    }
}

bool XMLTokenizer::readAttribute()
{
    Attribute attribute;
    const char *at = here();
    if (!readName(&at, NameUse::Tag, &attribute.name)) {
        return false;
    }
    if (skipSpace(Hold::Token) != '=') {
        m_attributes.push_back(attribute);
        return m_options.html || failed(MarkupError::NoEqualSign);
    }
    ++m_pos;
    const char quote = skipSpace(Hold::Token);
    const bool quoted = quote == '"' || quote == '\'';
    if (!quoted && !m_options.html) {
        return failed(MarkupError::QuoteExpected);
    }
    if (!(quoted ? readQuoted(quote, &attribute.value) : readUnquoted(&attribute.value))) {
        return false;
    }
    m_attributes.push_back(attribute);
    return true;
}

/// A value from its opening quote on. A "<" in it is accepted.
bool XMLTokenizer::readQuoted(char quote, TextSpan *value)
{
    const char *at = here() + 1;
    const quint32 offset = fromToken(at);
    TextForm form = TextForm::Plain;
    for (;;) {
        at = findEither(at, quote, '&');
        if (*at == quote) {
            break;
        }
        if (*at == '&') {
            form = TextForm::XmlEntities;
            if (!readEntityAt(&at)) {
                return false;
            }
        } else if (at != end() || !refillAt(&at)) {
            moveTo(at);
            return failed(MarkupError::QuoteExpected);
        }
    }
    *value = span(offset, at, form);
    moveTo(at + 1);
    return true;
}

/// A value of loose HTML that ends at a blank or at the tag's end.
bool XMLTokenizer::readUnquoted(TextSpan *value)
{
    const char *at = here();
    const quint32 offset = fromToken(at);
    TextForm form = TextForm::Plain;
    for (;;) {
        while (*at != 0 && *at != '>' && *at != '&' && !isSpace(*at)) {
            ++at;
        }
        if (*at == '&') {
            form = TextForm::XmlEntities;
            if (!readEntityAt(&at)) {
                return false;
            }
        } else if (*at != 0 || at != end() || !refillAt(&at)) {
            break;
        }
    }
    *value = span(offset, at, form);
    moveTo(at);
    return true;
}

} // namespace corvanta::markup
