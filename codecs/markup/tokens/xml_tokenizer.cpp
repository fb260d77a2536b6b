// The parts of a document (XML 1.0, sections 2 and 3), and the tokens that they become:
//
//     <name a="v" b='w'>             Start, with attributes
//     </name>                        End
//     <name/>                        Start End
//     text &amp; &#65; &#x41;        Text, without the spaces before it
//     <?name ... ?>                  Instruction
//     <![CDATA[ ... ]]>  <!-- ... -->  <!DOCTYPE ... [ ... ]>  and other sections: Clear
//
// HTML mode follows the parsing of the HTML standard (section 13.2) only as far as tables need it:
// void elements, "tbody", attributes without value or quotes, and end tags that do not match.
#include "codecs/markup/tokens/xml_tokenizer.h"

#include "codecs/markup/text/char_class.h"
#include "codecs/markup/text/entities.h"
#include "codecs/markup/text/scan.h"
#include "codecs/markup/tokens/clear_sections.h"
#include "codecs/markup/tokens/html_elements.h"

#include <algorithm>
#include <cstring>

namespace corvanta::markup {

namespace {

/// How many open elements an HTML end tag searches for its element. The limit keeps the time for
/// malformed HTML linear.
constexpr size_t kHtmlSearchDepth = 512;

bool endsName(char c)
{
    return c == '>' || c == '/' || c == '=' || c == '?' || isSpace(c);
}

/// Characters after "<" that browsers take as text, not as a tag.
bool cannotBeginName(char c)
{
    const CharClass kind = charClass(c);
    return kind == CharClass::Space || kind == CharClass::Digit || c == '=' || c == '>' || c == '-';
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
    m_unknownEntities.reset();
}

Result<void, MarkupError> XMLTokenizer::detectEncoding(CharSource &source, QByteArrayView first)
{
    const QByteArray name = guessEncoding(first);
    const CharMode mode = encodingCode(name);
    if (mode == CharMode::Error) {
        return Fault{MarkupError::CannotConvert};
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
    m_attributes.clear();
    return firstToken([this] { return step(); });
}

/// "<name>text</name>" or "<name/>", without references and complete in the buffer.
bool XMLTokenizer::takeLeaf(Leaf *leaf)
{
    if (!isBetweenTags() || skipSpace(Hold::Nothing) != '<') {
        return false;
    }
    const char *const name = here() + 1;
    const char *const nameEnd = skipNameChars(name);
    const auto size = static_cast<size_t>(nameEnd - name);
    const bool isEmpty = *nameEnd == '/' && nameEnd[1] == '>';
    if (size == 0 || (*nameEnd != '>' && !isEmpty) ||
        openedSection(here(), m_options.html) != kNoSection || lacksName(name) ||
        (m_options.html && (isDroppedElement({name, size}) || isVoidElement({name, size})))) {
        return false;
    }
    const char *const text = isEmpty ? nameEnd : skipSpaces(nameEnd + 1);
    const char *const textEnd = isEmpty ? nameEnd : findEither(text, '<', '&');
    const char *const stop = isEmpty ? nameEnd + 2 : textEnd + size + 3;
    if (!isEmpty && (*textEnd != '<' || textEnd[1] != '/' || stop > end() || stop[-1] != '>' ||
                     !equalBytes(textEnd + 2, name, size))) {
        return false;
    }
    return finishElement(leaf, nameEnd, text, textEnd, stop);
}

/// Read one construct; returns None if it does not produce a token.
Token XMLTokenizer::step()
{
    if (m_pendingEnd) {
        return finishPendingEnd();
    }
    if (m_pendingCloses > 0) {
        return pendingClose();
    }
    const char c = skipSpace(Hold::Nothing);
    if (c == 0) {
        return dataEnds();
    }
    m_keep = m_pos;
    return c == '<' ? readTag() : readText(here());
}

/// Read the construct that begins with the "<" at the position.
inline Token XMLTokenizer::readTag()
{
    const char *at = here();
    ensure(&at, kLongestOpener);
    if (at[1] == '/') {
        return readEndTag();
    }
    if (at[1] == '?') {
        return readInstruction();
    }
    const size_t section = openedSection(at, m_options.html);
    if (section != kNoSection) {
        return readClear(section);
    }
    return lacksName(at + 1) ? readText(at + 1) : readStartTag();
}

/// True in HTML mode where a name cannot begin: a single "<", "<=", "<2", "</>", "<? a".
bool XMLTokenizer::lacksName(const char *at) const
{
    return m_options.html && (cannotBeginName(*at) || at == end());
}

/// In HTML, the elements that are still open end here.
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

/// Count an unknown reference at `at` (a "&"). Other texts with this character are as they are
/// meant.
void XMLTokenizer::noteReference(const char *at)
{
    const std::string_view rest(at,
                                static_cast<size_t>(std::min<qint64>(end() - at, kEntityBytes)));
    const std::string_view reference = rest.substr(0, rest.find_first_of("; \t\r\n&<\"'", 1) + 1);
    if (reference.size() > 2 && reference.ends_with(';')) {
        m_unknownEntities.add([&] {
            return QStringLiteral("'%1' in the text or tag at line %2, column %3")
                .arg(QString::fromUtf8(reference), QString::number(tokenStart().line()),
                     QString::number(tokenStart().column() + 1));
        });
    }
}

/// Skip the entity at `*at` (a "&"); fails when it is unknown and unknown ones are errors.
bool XMLTokenizer::readEntityAt(const char **at)
{
    ensure(at, kEntityBytes);
    const std::optional<Entity> entity = readEntity(*at, end());
    if (!entity && !isLoose()) {
        moveTo(end() - *at < kEntityBytes && isBrokenAt(end()) ? end() : *at);
        return failed(MarkupError::UnknownEntity);
    }
    if (!entity && !m_options.html) {
        noteReference(*at);
    }
    *at += entity ? entity->length : 1;
    return true;
}

/// Read a text, from the start of the token to the next "<"; the scan begins at `at`.
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

/// Read a name at `*at`; fails with `error` at a character that names must not have.
bool XMLTokenizer::readName(const char **at, MarkupError error, TextSpan *name)
{
    const quint32 offset = fromToken(*at);
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
    return name->size() != 0 || failed(error);
}

/// True for the common end tag: the name of the innermost element and a ">".
inline bool XMLTokenizer::isExpectedEnd(const char *at) const
{
    if (m_names.isEmpty()) {
        return false;
    }
    const std::string_view name = m_names.top();
    return end() - at > static_cast<ptrdiff_t>(name.size()) && at[name.size()] == '>' &&
           std::memcmp(at, name.data(), name.size()) == 0;
}

/// Read an end tag; without a name, or of an element that is dropped, it is not a token.
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
    if ((!isNameless && !readName(&at, MarkupError::InvalidEndTagName, &name)) || !closeEndTag()) {
        return token();
    }
    m_text = name;
    if (isNameless || (m_options.html && hasDroppedEndTag(resolve(name).view()))) {
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

/// Pass the ">" of an end tag; in HTML mode, with everything before it.
bool XMLTokenizer::closeEndTag()
{
    char c = skipSpace(Hold::Token);
    while (m_options.html && c != '>' && c != 0) {
        ++m_pos;
        c = skipSpace(Hold::Token);
    }
    if (c != '>') {
        return failed(MarkupError::InvalidTagEnd);
    }
    ++m_pos;
    return true;
}

/// End the elements that an end tag called `name` closes. In XML only the innermost element may
/// have that name. In HTML the tag closes everything up to its element, or is ignored.
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

/// End the innermost element without an end tag.
Token XMLTokenizer::pendingClose()
{
    --m_pendingCloses;
    m_closedName = m_names.top();
    m_text = TextSpan::external(0);
    return endElement();
}

/// Remember the name of a new innermost element; fails when too many are open.
bool XMLTokenizer::pushName(std::string_view name)
{
    if (static_cast<qint64>(m_names.size()) >= limits::kElementDepth) {
        return failed(MarkupError::TreeTooLarge);
    }
    m_names.push(name);
    return true;
}

/// Read an instruction up to "?>"; in HTML mode, where the "?" may be missing, to the first ">".
Token XMLTokenizer::readInstruction()
{
    const char *at = here() + 2;
    TextSpan name;
    if (!lacksName(at) && !readName(&at, MarkupError::InvalidTagName, &name)) {
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

/// Read a section up to its closer, without looking for tokens in it.
Token XMLTokenizer::readClear(size_t opener)
{
    const char *const at =
        findCloser(here() + kClearSections[opener].opener.size(), opener, &m_text);
    if (at == nullptr) {
        return fail(MarkupError::UnmatchedClearTagEnd);
    }
    moveTo(at);
    m_clearKind = kClearSections[opener].kind;
    return finish(Token::Clear);
}

/// Find the end of a section whose content begins at `at`; sets `*text` to the content. Null, with
/// the position at the end of the data, when there is no closer.
const char *XMLTokenizer::findCloser(const char *at, size_t opener, TextSpan *text)
{
    const ClearSection &section = kClearSections[opener];
    const quint32 start = fromToken(at);
    const bool isDocType = section.kind == ClearKind::DocType;
    DocTypeEnd docType;
    for (;;) {
        at = findEither(at, '>', isDocType ? '[' : '>');
        if (*at == 0) {
            if (at != end() || !refillAt(&at)) {
                moveTo(at);
                return nullptr;
            }
            continue;
        }
        const std::string_view content(data() + m_keep + start, fromToken(++at) - start);
        const size_t closer =
            isDocType ? docType.closerSize(content) : closerSize(content, section);
        if (closer != 0) {
            *text = {start, static_cast<quint32>(content.size() - closer), TextForm::Plain};
            return at;
        }
    }
}

/// Read a start tag. In HTML mode, "tbody" is dropped and void elements end immediately.
Token XMLTokenizer::readStartTag()
{
    const char *at = here() + 1;
    if (!readName(&at, MarkupError::InvalidTagName, &m_name) || !readAttributes()) {
        return token();
    }
    const std::string_view written = resolve(m_name).view();
    if (m_options.html && isDroppedElement(written)) {
        m_pendingEnd = false;
        m_attributes.clear(); // otherwise they would be attributes of the next tag
        return Token::None;
    }
    m_pendingEnd = m_pendingEnd || (m_options.html && isVoidElement(written));
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

/// Remove everything up to the first colon.
void XMLTokenizer::cutNameSpace(TextSpan *name) const
{
    const size_t colon = resolve(*name).view().find(':');
    if (colon != std::string_view::npos) {
        *name = name->without(static_cast<quint32>(colon + 1));
    }
}

/// Read the rest of a start tag after its name.
bool XMLTokenizer::readAttributes()
{
    for (;;) {
        switch (nextTagPart()) {
        case TagPart::Attribute:
            if (!readAttribute()) {
                return false;
            }
            break;
        case TagPart::Skipped:
            break;
        case TagPart::End:
            return true;
        case TagPart::Failed:
            return false;
        }
    }
}

/// Find the next part of a start tag. Passes everything but the first character of an attribute.
inline XMLTokenizer::TagPart XMLTokenizer::nextTagPart()
{
    const char c = skipSpace(Hold::Token);
    if (c == '>') {
        ++m_pos;
        return TagPart::End;
    }
    if (c == '/') {
        return readSlash();
    }
    const bool isSeparator = c == '=' || c == '?';
    if (isSeparator && m_options.html) {
        ++m_pos; // left over from something else
        return TagPart::Skipped;
    }
    const bool isAllowed = isNameChar(c) || m_options.ignoreInvalidCharInTagName;
    if (!isAllowed || c == 0 || isSeparator) {
        fail(MarkupError::InvalidTagEnd);
        return TagPart::Failed;
    }
    return TagPart::Attribute;
}

/// Read "/>"; in HTML mode a "/" elsewhere is skipped.
XMLTokenizer::TagPart XMLTokenizer::readSlash()
{
    const char *at = here();
    ensure(&at, 2);
    moveTo(at + 1);
    if (*here() == '>') {
        ++m_pos;
        m_pendingEnd = true;
        return TagPart::End;
    }
    if (!m_options.html) {
        fail(MarkupError::InvalidTagEnd);
        return TagPart::Failed;
    }
    return TagPart::Skipped;
}

/// Read `name="value"`; in HTML mode, the value or its quotes may be missing.
bool XMLTokenizer::readAttribute()
{
    Attribute attribute;
    const char *at = here();
    if (!readName(&at, MarkupError::InvalidTagName, &attribute.name)) {
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

/// Read a value from its opening quote to the closing one. Accepts "<" in it.
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

/// Read an HTML value without quotes, which ends at a space or at the end of the tag.
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
