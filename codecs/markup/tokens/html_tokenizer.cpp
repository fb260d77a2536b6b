// The constructs of a page (HTML standard, section 13.2.5), and the tokens that they become:
//
//     <name a="v" b='w' c=x d>           Start, perhaps after Ends; or nothing
//     </name ...>                        Ends, or nothing
//     text &amp; &copy &#65              Text
//     <script> ... </script>             Clear; also style, iframe, noframes, noembed
//     <title> ... </title>               Start, Text, End; also textarea, xmp
//     <!-- ... -->  <!-- ... --!>        Clear; "<!-->" and "<!--->" are complete
//     <! ... >  <? ... >  </2 ... >      Clear
//     "<" before anything else           Text
//
// The end of the data ends everything; a tag that it cuts is ignored.
#include "codecs/markup/tokens/html_tokenizer.h"

#include "codecs/markup/text/char_class.h"
#include "codecs/markup/text/scan.h"
#include "codecs/markup/tokens/html_elements.h"

#include <algorithm>
#include <utility>

namespace corvanta::markup {

namespace {

/// Bytes at a "<" that decide what begins.
constexpr qsizetype kOpenerBytes = 9;
/// The external text of a row that the page omits.
constexpr quint32 kRowName = 1;
constexpr std::string_view kRow = "tr";

bool isLetter(char c)
{
    return charClass(c) == CharClass::Letter;
}

/// True for what ends the name of a tag.
bool endsTagName(char c)
{
    return c == '>' || c == '/' || isSpace(c);
}

} // namespace

/// Elements that the last document left open must not close in this one.
void HtmlTokenizer::restart(ByteSource &source)
{
    XMLTokenizer::restart(source);
    m_open.clear();
    m_isRawNext = false;
    m_unfinished.reset();
}

RawText HtmlTokenizer::externalText(quint32 number) const
{
    return number == kRowName
               ? RawText{kRow.data(), static_cast<quint32>(kRow.size()), TextForm::Detached}
               : XMLTokenizer::externalText(number);
}

Token HtmlTokenizer::nextToken()
{
    m_attributes.clear();
    return firstToken([this] { return step(); });
}

/// "<td>text</td>" in a row, or an element without rules, without attributes and references.
bool HtmlTokenizer::takeLeaf(Leaf *leaf)
{
    if (!isBetweenTags() || m_isRawNext || skipSpace(Hold::Nothing) != '<') {
        return false;
    }
    const char *const name = here() + 1;
    const char *const nameEnd = skipNameChars(name);
    const auto size = static_cast<size_t>(nameEnd - name);
    if (*nameEnd != '>' || !isLetter(*name)) {
        return false;
    }
    const HtmlElement element = htmlElement({name, size});
    const HtmlElement outer = m_open.top();
    const bool isPlain = element.kind == HtmlKind::Other && element.traits == 0 &&
                         !outer.isTablePart() && outer.kind != HtmlKind::ColGroup &&
                         outer.kind != HtmlKind::Head;
    const bool isCell = element.kind == HtmlKind::Cell && outer.kind == HtmlKind::Row;
    const char *const text = skipSpaces(nameEnd + 1);
    const char *const textEnd = isPlain || isCell ? findEither(text, '<', '&') : text;
    const char *const stop = textEnd + size + 3;
    if ((!isPlain && !isCell) || *textEnd != '<' || textEnd[1] != '/' || stop > end() ||
        stop[-1] != '>' || !equalBytes(textEnd + 2, name, size)) {
        return false;
    }
    return finishElement(leaf, nameEnd, text, textEnd, stop);
}

Token HtmlTokenizer::step()
{
    if (m_pendingEnd) {
        return finishPendingEnd();
    }
    if (m_pendingCloses > 0) {
        return pendingClose();
    }
    const char *at = here();
    ensure(&at, 1);
    m_isAfterSpace = isSpace(*at);
    const char c = skipSpace(Hold::Nothing);
    if (c == 0) {
        return dataEnds();
    }
    m_keep = m_pos;
    if (m_isRawNext) {
        return readRawText();
    }
    return c == '<' ? readTag() : readText(here());
}

/// Read the construct that begins with the "<" at the position.
inline Token HtmlTokenizer::readTag()
{
    const char *at = here();
    ensure(&at, kOpenerBytes);
    if (isLetter(at[1])) {
        return readStartTag();
    }
    if (at[1] == '/' && isLetter(at[2])) {
        return readEndTag();
    }
    if (at[1] == '/' && at[2] == '>') {
        moveTo(at + 3);
        return Token::None;
    }
    const bool isSection = at[1] == '!' || at[1] == '?' || (at[1] == '/' && at + 2 != end());
    return isSection ? readSection() : readText(at + 1);
}

/// Read a text, from the start of the token to the next "<"; the scan begins at `at`.
Token HtmlTokenizer::readText(const char *at)
{
    TextForm form = TextForm::Plain;
    do {
        at = findEither(at, '<', '&');
        while (*at == '&') {
            form = TextForm::HtmlEntities;
            at = findEither(at + 1, '<', '&');
        }
    } while (*at != '<' && at == end() && refillAt(&at));
    moveTo(at);
    if (isBrokenAt(at)) {
        return fail(MarkupError::CannotRead);
    }
    m_text = span(0, at, form);
    return finish(Token::Text);
}

/// A construct was read up to `at`. Returns false, after an Error token, when the source failed
/// there. Remembers the construct when the data ended in it.
bool HtmlTokenizer::completed(const char *at)
{
    moveTo(at);
    if (isBrokenAt(at)) {
        fail(MarkupError::CannotRead);
        return false;
    }
    if (at == end()) {
        m_unfinished = tokenStart();
    }
    return true;
}

// ---- Searches.

/// The next `c` at or after `at`. A NUL in the data is like any other character.
const char *HtmlTokenizer::findChar(const char *at, char c)
{
    for (;;) {
        at = findEither(at, c, c);
        if (*at == c) {
            return at;
        }
        if (at != end()) {
            ++at;
        } else if (!refillAt(&at)) {
            return at;
        }
    }
}

/// The next character at or after `at` that `isStop` accepts. The same for NULs.
template <class IsStop> const char *HtmlTokenizer::findStop(const char *at, IsStop isStop)
{
    for (;;) {
        while (*at != 0 && !isStop(*at)) {
            ++at;
        }
        if (*at != 0) {
            return at;
        }
        if (at != end()) {
            ++at;
        } else if (!refillAt(&at)) {
            return at;
        }
    }
}

/// True when `opener`, the name in any letter case and a character that ends a name are at `at`.
/// That many bytes are in the buffer, or the data ends before.
bool HtmlTokenizer::isTagAt(const char *at, std::string_view opener, std::string_view name) const
{
    const size_t size = opener.size() + name.size();
    return end() - at > static_cast<ptrdiff_t>(size) &&
           std::string_view(at, opener.size()) == opener &&
           equalsIgnoringCase({at + opener.size(), name.size()}, name) && endsTagName(at[size]);
}

/// The end tag of the element whose content begins at `at`. In a comment of a script, an inner
/// script may have an end tag of its own.
const char *HtmlTokenizer::findRawEnd(const char *at)
{
    const bool isScript = m_rawName == "script";
    bool isInComment = false;
    bool isInInner = false;
    const quint32 content = fromToken(at);
    for (;; ++at) {
        at = findEither(at, '<', isScript ? '>' : '<');
        while (at == end()) {
            if (!refillAt(&at)) {
                return at;
            }
            at = findEither(at, '<', isScript ? '>' : '<');
        }
        if (*at == '<') {
            ensure(&at, static_cast<qsizetype>(m_rawName.size()) + 3);
            if (isTagAt(at, "</", m_rawName) && !std::exchange(isInInner, false)) {
                return at;
            }
            isInInner = isInInner || (isInComment && isTagAt(at, "<", m_rawName));
            isInComment = isInComment || (isScript && std::string_view(at, 4) == "<!--");
        } else if (*at == '>' && fromToken(at) >= content + 2 && at[-1] == '-' && at[-2] == '-') {
            isInComment = isInInner = false;
        }
    }
}

/// Remember the name of the current tag, whose content is not markup.
void HtmlTokenizer::setRawName()
{
    m_rawName = resolve(m_name).view();
    for (char &c : m_rawName) {
        c = static_cast<char>(c | 0x20); // a letter
    }
}

// ---- Sections.

Token HtmlTokenizer::finishClear(const char *content, const char *end, ClearKind kind)
{
    m_text = span(fromToken(content), end, TextForm::Plain);
    m_clearKind = kind;
    return finish(Token::Clear);
}

/// Read "<!", "<?" or "</" up to the first ">".
Token HtmlTokenizer::readSection()
{
    const std::string_view opener(here(), 9);
    if (opener.starts_with("<!--")) {
        return readComment();
    }
    const bool isDocType = equalsIgnoringCase(opener, "<!doctype");
    const quint32 content = isDocType ? static_cast<quint32>(opener.size()) : 2;
    const char *const stop = findChar(here() + 2, '>');
    if (!completed(stop)) {
        return token();
    }
    moveTo(stop + (stop != end() ? 1 : 0));
    const char *const begin = std::min(data() + m_keep + content, stop);
    return finishClear(begin, stop, isDocType ? ClearKind::DocType : ClearKind::Other);
}

Token HtmlTokenizer::readComment()
{
    constexpr quint32 kOpener = 4;
    const char *at = here() + kOpener;
    const bool isEmpty = *at == '>' || (*at == '-' && at[1] == '>');
    size_t closer = isEmpty ? 0 : 3;
    at = findChar(at, '>');
    while (!isEmpty && at != end()) {
        const std::string_view content(data() + m_keep + kOpener, fromToken(at) - kOpener);
        closer = content.ends_with("--") ? 2 : (content.ends_with("--!") ? 3 : 0);
        if (closer != 0) {
            break;
        }
        at = findChar(at + 1, '>');
    }
    if (!completed(at)) {
        return token();
    }
    const char *const content = data() + m_keep + kOpener;
    const char *const contentEnd = isEmpty ? content : (at == end() ? at : at - closer);
    m_pos += at != end() ? 1 : 0;
    return finishClear(content, contentEnd, ClearKind::Comment);
}

/// Read the content and the end tag of a script and the like; its start tag was read.
Token HtmlTokenizer::readHidden()
{
    const quint32 begin = fromToken(here());
    const char *const stop = findRawEnd(here());
    const quint32 length = fromToken(stop) - begin;
    if (!completed(findChar(stop, '>'))) {
        return token();
    }
    m_pos += here() != end() ? 1 : 0;
    const char *const content = data() + m_keep + begin;
    return finishClear(content, content + length, ClearKind::Script);
}

/// Read the text of an element whose content is not markup. Its end tag follows.
Token HtmlTokenizer::readRawText()
{
    m_isRawNext = false;
    const char *const stop = findRawEnd(here());
    if (!completed(stop)) {
        return token();
    }
    if (fromToken(stop) == 0) {
        return Token::None;
    }
    m_text = span(0, stop, TextForm::HtmlEntities);
    return finish(Token::Text);
}

// ---- Ends of elements.

Token HtmlTokenizer::endElement()
{
    m_names.pop();
    m_open.pop();
    --m_depth;
    return finish(Token::End);
}

/// End the innermost element without an end tag.
Token HtmlTokenizer::pendingClose()
{
    --m_pendingCloses;
    m_closedName = m_names.top();
    m_text = TextSpan::external(0);
    return endElement();
}

/// A page may end anywhere: the elements that are open then end with it.
Token HtmlTokenizer::dataEnds()
{
    m_isRawNext = false;
    if (!m_names.isEmpty() && !isBrokenAt(here())) {
        m_pendingCloses = static_cast<qint64>(m_names.size());
        return Token::None;
    }
    return endOfData();
}

/// True for the common end tag: the name of the innermost element and a ">".
inline bool HtmlTokenizer::isExpectedEnd(const char *at) const
{
    const HtmlKind kind = m_open.top().kind;
    if (m_names.isEmpty() || kind == HtmlKind::Html || kind == HtmlKind::Body) {
        return false;
    }
    const std::string_view name = m_names.top();
    return end() - at > static_cast<ptrdiff_t>(name.size()) && at[name.size()] == '>' &&
           std::equal(name.begin(), name.end(), at);
}

Token HtmlTokenizer::readEndTag()
{
    const char *at = here() + 2;
    if (isExpectedEnd(at)) {
        m_text = span(fromToken(at), at + m_names.top().size(), TextForm::Plain);
        moveTo(at + m_names.top().size() + 1);
        return endElement();
    }
    TextSpan name;
    const bool isComplete = readName(&at, &name) && readAttributes();
    m_attributes.clear();
    if (!isComplete) {
        return cutTag();
    }
    const HtmlElement element = htmlElement(resolve(name).view());
    if (options().discardNameSpaces) {
        cutNameSpace(&name);
    }
    m_pendingCloses = static_cast<qint64>(m_open.endedBy(element, resolve(name).view(), m_names));
    if (element.kind == HtmlKind::Tbody) {
        m_open.beginGroup();
    }
    return Token::None;
}

// ---- Start tags.

Token HtmlTokenizer::readStartTag()
{
    const char *at = here() + 1;
    if (!readName(&at, &m_name)) {
        return cutTag();
    }
    const HtmlElement element = htmlElement(resolve(m_name).view());
    if (element.is(html::kHidden)) {
        setRawName();
        const bool isComplete = readAttributes();
        m_attributes.clear();
        return isComplete ? readHidden() : cutTag();
    }
    const OpenElements::Plan plan = m_open.beforeStart(element);
    if (plan.action == OpenElements::Plan::Do::End) {
        m_pos = m_keep;
        m_pendingCloses = static_cast<qint64>(plan.count);
        return Token::None;
    }
    if (plan.action == OpenElements::Plan::Do::BeginRow) {
        return beginRow();
    }
    if (!readAttributes()) {
        return cutTag();
    }
    if (element.is(html::kText)) {
        m_isRawNext = !m_isSelfClosing || !m_open.isForeign();
        setRawName();
    }
    if (plan.action == OpenElements::Plan::Do::Begin && element.kind != HtmlKind::Tbody) {
        return beginElement(element);
    }
    if (plan.action == OpenElements::Plan::Do::Begin) {
        m_open.beginGroup();
    }
    m_attributes.clear();
    return Token::None;
}

/// The data ended in a tag, which is not a token.
Token HtmlTokenizer::cutTag()
{
    m_attributes.clear();
    return completed(end()) ? Token::None : token();
}

/// Make the Start of an element whose tag was read.
Token HtmlTokenizer::beginElement(HtmlElement element)
{
    m_pendingEnd = element.is(html::kVoid) || (m_isSelfClosing && m_open.isForeign());
    if (options().discardNameSpaces) {
        cutNameSpace(&m_name);
    }
    if (!m_pendingEnd) {
        if (!pushName(resolve(m_name).view())) {
            return token();
        }
        m_open.push(element);
    }
    m_rowGroup = m_open.rowGroup();
    ++m_depth;
    m_text = m_name;
    return finish(Token::Start);
}

/// Make the Start of a row before a cell outside of rows. The tag of the cell is read again.
Token HtmlTokenizer::beginRow()
{
    m_pos = m_keep;
    if (!pushName(kRow)) {
        return token();
    }
    m_open.push(htmlElement(kRow));
    m_rowGroup = m_open.rowGroup();
    ++m_depth;
    m_text = TextSpan::external(kRowName);
    return finish(Token::Start);
}

/// Read a name at `*at`, up to the character that ends it.
bool HtmlTokenizer::readName(const char **at, TextSpan *name)
{
    const quint32 offset = fromToken(*at);
    *at = findStop(skipNameChars(*at), endsTagName);
    moveTo(*at);
    *name = span(offset, *at, TextForm::Plain);
    return *at != end();
}

/// Read the rest of a tag after its name.
bool HtmlTokenizer::readAttributes()
{
    m_isSelfClosing = false;
    for (;;) {
        const char c = skipSpace(Hold::Token);
        if (c == '>') {
            ++m_pos;
            return true;
        }
        if (here() == end()) {
            return false;
        }
        m_isSelfClosing = c == '/';
        if (c == '/' || c == 0) {
            ++m_pos;
        } else if (!readAttribute()) {
            return false;
        }
    }
}

/// Read `name="value"`, in which the value or its quotes may be missing.
bool HtmlTokenizer::readAttribute()
{
    Attribute attribute;
    const char *at = here();
    const quint32 offset = fromToken(at);
    // The first character may be a "=".
    at = findStop(at + 1, [](char c) { return c == '=' || endsTagName(c); });
    moveTo(at);
    attribute.name = span(offset, at, TextForm::Plain);
    if (skipSpace(Hold::Token) == '=') {
        ++m_pos;
        const char quote = skipSpace(Hold::Token);
        const bool isQuoted = quote == '"' || quote == '\'';
        if (!(isQuoted ? readQuoted(quote, &attribute.value) : readUnquoted(&attribute.value))) {
            return false;
        }
    }
    m_attributes.push_back(attribute);
    return true;
}

/// Read a value from its opening quote to the closing one.
bool HtmlTokenizer::readQuoted(char quote, TextSpan *value)
{
    const quint32 offset = fromToken(here()) + 1;
    const char *const stop = findChar(here() + 1, quote);
    moveTo(stop);
    if (stop == end()) {
        return false;
    }
    *value = span(offset, stop, TextForm::HtmlAttribute);
    ++m_pos;
    return true;
}

/// Read a value without quotes, which ends at a space or at the end of the tag.
bool HtmlTokenizer::readUnquoted(TextSpan *value)
{
    const quint32 offset = fromToken(here());
    const char *const stop = findStop(here(), [](char c) { return c == '>' || isSpace(c); });
    *value = span(offset, stop, TextForm::HtmlAttribute);
    moveTo(stop);
    return stop != end();
}

} // namespace corvanta::markup
