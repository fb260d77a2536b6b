// A recursive-descent parser; each function of the grammar in expression.h has one here.
#include "base/number.h"
#include "codecs/expression/expression.h"

using namespace Qt::StringLiterals;

namespace corvanta::expression {

namespace {

struct Token
{
    enum class Kind : quint8 { End, Number, Text, Name, QuotedName, Symbol };

    Kind kind = Kind::End;
    QString text;           // without quotes
    qsizetype position = 0; // of its first character
};

bool isNameStart(QChar c)
{
    // A lone surrogate half is accepted: the column then has such a name.
    return c.isLetter() || c == u'_' || c.isSurrogate();
}

bool isNamePart(QChar c)
{
    return isNameStart(c) || c.isDigit() || c.isMark() || c == u'.';
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

/// Splits the text into tokens.
class Lexer
{
public:
    explicit Lexer(QStringView text)
        : m_text(text)
    {
    }
    Result<Token, Error> next();

private:
    bool has(qsizetype ahead, bool (*test)(QChar)) const
    {
        return m_at + ahead < m_text.size() && test(m_text[m_at + ahead]);
    }
    QChar peek(qsizetype ahead) const
    {
        return m_at + ahead < m_text.size() ? m_text[m_at + ahead] : QChar();
    }
    bool startsNumber() const;
    qsizetype numberEnd() const;
    Result<Token, Error> number();
    Result<Token, Error> quoted(Token::Kind kind);
    Token name();
    Result<Token, Error> symbol();

    QStringView m_text;
    qsizetype m_at = 0;
};

Result<Token, Error> Lexer::next()
{
    while (has(0, [](QChar c) { return c.isSpace(); })) {
        ++m_at;
    }
    if (m_at == m_text.size()) {
        return Token{Token::Kind::End, {}, m_at};
    }
    if (startsNumber()) {
        return number();
    }
    if (peek(0) == u'\'') {
        return quoted(Token::Kind::Text);
    }
    if (peek(0) == u'"') {
        return quoted(Token::Kind::QuotedName);
    }
    return has(0, isNameStart) ? Result<Token, Error>(name()) : symbol();
}

/// A digit, or a sign or point with one after it.
bool Lexer::startsNumber() const
{
    qsizetype at = peek(0) == u'-' || peek(0) == u'+' ? 1 : 0;
    at += peek(at) == u'.' ? 1 : 0;
    return has(at, isDigit);
}

/// The end of the characters that may belong to the number that starts here. What follows it
/// without a gap belongs to it too, so that 12abc is reported as a whole.
qsizetype Lexer::numberEnd() const
{
    qsizetype end = m_at + 1;
    while (end < m_text.size()) {
        const QChar c = m_text[end];
        const bool isExponentSign =
            (c == u'+' || c == u'-') && (m_text[end - 1] == u'e' || m_text[end - 1] == u'E');
        if (!isNamePart(c) && !isExponentSign) {
            break;
        }
        ++end;
    }
    return end;
}

Result<Token, Error> Lexer::number()
{
    const qsizetype start = m_at;
    m_at = numberEnd();
    const QStringView digits = m_text.sliced(start, m_at - start);
    double value = 0;
    if (!parseDouble(std::u16string_view(digits.utf16(), size_t(digits.size())), &value)) {
        return Fault{Error::Syntax, u"'%1' is not a number"_s.arg(digits), start};
    }
    return Token{Token::Kind::Number, digits.toString(), start};
}

/// A text between two quotes of the kind at the current position.
Result<Token, Error> Lexer::quoted(Token::Kind kind)
{
    const qsizetype start = m_at;
    const QChar quote = m_text[m_at];
    QString content;
    while (++m_at < m_text.size()) {
        if (m_text[m_at] == quote) {
            if (peek(1) != quote) {
                ++m_at;
                return Token{kind, content, start};
            }
            ++m_at; // a doubled quote
        }
        content += m_text[m_at];
    }
    return Fault{Error::Syntax, u"the quote that begins here is never closed"_s, start};
}

Token Lexer::name()
{
    const qsizetype start = m_at;
    while (has(0, isNamePart)) {
        ++m_at;
    }
    return {Token::Kind::Name, m_text.sliced(start, m_at - start).toString(), start};
}

Result<Token, Error> Lexer::symbol()
{
    static const QStringList kSymbols{u"!="_s, u"<="_s, u">="_s, u"=="_s, u"<>"_s,
                                      u"="_s,  u"<"_s,  u">"_s,  u"("_s,  u")"_s};
    for (const QString &symbol : kSymbols) {
        if (m_text.sliced(m_at).startsWith(symbol)) {
            const qsizetype start = m_at;
            m_at += symbol.size();
            return Token{Token::Kind::Symbol, symbol, start};
        }
    }
    return Fault{Error::Syntax, u"unexpected character '%1'"_s.arg(m_text[m_at]), m_at};
}

class Parser
{
public:
    explicit Parser(QStringView text)
        : m_lexer(text)
    {
    }
    Result<Expression, Error> parse();

private:
    // These return the index of the node that they add.
    Result<int, Error> chain(Node::Kind kind, int depth);
    Result<int, Error> link(Node::Kind kind, int first, int depth);
    Result<int, Error> partOf(Node::Kind kind, int depth);
    Result<int, Error> negation(int depth);
    Result<int, Error> parenthesis(int depth);
    Result<int, Error> test();
    Result<int, Error> nullTest(const Operand &operand);

    Result<Operand, Error> operand();
    Result<void, Error> advance();
    Fault<Error> unexpected(const QString &expected) const;
    bool isWord(QLatin1StringView word) const
    {
        return m_token.kind == Token::Kind::Name &&
               m_token.text.compare(word, Qt::CaseInsensitive) == 0;
    }
    bool isReserved() const
    {
        return isWord("and"_L1) || isWord("or"_L1) || isWord("not"_L1) || isWord("is"_L1) ||
               isWord("null"_L1);
    }
    bool isSymbol(QLatin1StringView symbol) const
    {
        return m_token.kind == Token::Kind::Symbol && m_token.text == symbol;
    }
    int columnIndex(const QString &name);
    int add(Node node)
    {
        m_expression.nodes.push_back(std::move(node));
        return static_cast<int>(m_expression.nodes.size()) - 1;
    }

    Lexer m_lexer;
    Token m_token; // the next one
    Expression m_expression;
};

Result<Expression, Error> Parser::parse()
{
    if (const auto first = advance(); !first) {
        return first.fault();
    }
    const auto root = chain(Node::Kind::Or, 0);
    if (!root) {
        return root.fault();
    }
    if (m_token.kind != Token::Kind::End) {
        return unexpected(u"'and', 'or' or the end"_s);
    }
    m_expression.root = *root;
    return std::move(m_expression);
}

Result<void, Error> Parser::advance()
{
    auto token = m_lexer.next();
    if (!token) {
        return token.fault();
    }
    m_token = *std::move(token);
    return {};
}

Fault<Error> Parser::unexpected(const QString &expected) const
{
    const QString found =
        m_token.kind == Token::Kind::End ? u"the end"_s : u"'%1'"_s.arg(m_token.text);
    return {Error::Syntax, u"expected %1, found %2"_s.arg(expected, found), m_token.position};
}

/// Operands joined by "or", or by "and" for Node::Kind::And. One node holds all of them, so that
/// the depth of the tree does not grow with their number.
Result<int, Error> Parser::chain(Node::Kind kind, int depth)
{
    const auto first = partOf(kind, depth);
    const bool continues = isWord(kind == Node::Kind::Or ? "or"_L1 : "and"_L1);
    return first && continues ? link(kind, *first, depth) : first;
}

Result<int, Error> Parser::link(Node::Kind kind, int first, int depth)
{
    Node parent;
    parent.kind = kind;
    parent.firstChild = first;
    const int node = add(parent);
    for (int last = first; isWord(kind == Node::Kind::Or ? "or"_L1 : "and"_L1);) {
        if (const auto moved = advance(); !moved) {
            return moved.fault();
        }
        const auto child = partOf(kind, depth);
        if (!child) {
            return child.fault();
        }
        m_expression.nodes[size_t(last)].next = *child;
        last = *child;
    }
    return node;
}

Result<int, Error> Parser::partOf(Node::Kind kind, int depth)
{
    return kind == Node::Kind::Or ? chain(Node::Kind::And, depth) : negation(depth);
}

Result<int, Error> Parser::negation(int depth)
{
    if (depth > kMaxDepth) {
        return Fault{Error::TooDeep, u"more than %1 parentheses are open"_s.arg(kMaxDepth),
                     m_token.position};
    }
    if (isSymbol("("_L1)) {
        return parenthesis(depth);
    }
    if (!isWord("not"_L1)) {
        return test();
    }
    if (const auto moved = advance(); !moved) {
        return moved.fault();
    }
    const auto child = negation(depth + 1);
    if (!child) {
        return child.fault();
    }
    Node node;
    node.kind = Node::Kind::Not;
    node.firstChild = *child;
    return add(node);
}

Result<int, Error> Parser::parenthesis(int depth)
{
    if (const auto moved = advance(); !moved) {
        return moved.fault();
    }
    auto inner = chain(Node::Kind::Or, depth + 1);
    if (!inner) {
        return inner;
    }
    if (!isSymbol(")"_L1)) {
        return unexpected(u"')'"_s);
    }
    const auto moved = advance();
    return moved ? inner : Result<int, Error>(moved.fault());
}

Result<int, Error> Parser::test()
{
    static const QStringList kSymbols{u"="_s, u"!="_s, u"<"_s,  u"<="_s,
                                      u">"_s, u">="_s, u"=="_s, u"<>"_s};
    const auto left = operand();
    if (!left) {
        return left.fault();
    }
    if (isWord("is"_L1)) {
        return nullTest(*left);
    }
    const qsizetype symbol = kSymbols.indexOf(m_token.text);
    if (m_token.kind != Token::Kind::Symbol || symbol < 0) {
        return unexpected(u"= != < <= > >= or 'is null'"_s);
    }
    if (const auto moved = advance(); !moved) {
        return moved.fault();
    }
    const auto right = operand();
    if (!right) {
        return right.fault();
    }
    // The two synonyms come after the six comparisons: == is Equal, <> is NotEqual.
    return add({Node::Kind::Compare, static_cast<Comparison>(symbol % 6), -1, -1, *left, *right});
}

/// "is null" or "is not null"; the current token is "is".
Result<int, Error> Parser::nullTest(const Operand &operand)
{
    if (const auto moved = advance(); !moved) {
        return moved.fault();
    }
    const bool isNegated = isWord("not"_L1);
    if (isNegated) {
        if (const auto moved = advance(); !moved) {
            return moved.fault();
        }
    }
    if (!isWord("null"_L1)) {
        return unexpected(isNegated ? u"'null'"_s : u"'null' or 'not null'"_s);
    }
    if (const auto moved = advance(); !moved) {
        return moved.fault();
    }
    Node node;
    node.kind = Node::Kind::IsNull;
    node.left = operand;
    const int test = add(node);
    if (!isNegated) {
        return test;
    }
    Node negation;
    negation.kind = Node::Kind::Not;
    negation.firstChild = test;
    return add(negation);
}

Result<Operand, Error> Parser::operand()
{
    Operand found;
    found.text = m_token.text;
    found.position = m_token.position;
    if (isWord("null"_L1)) {
        return Fault{Error::Syntax, u"compare with 'is null' or 'is not null'"_s, m_token.position};
    }
    if (m_token.kind == Token::Kind::Number) {
        parseDouble(
            std::u16string_view(QStringView(m_token.text).utf16(), size_t(m_token.text.size())),
            &found.number);
    } else if (m_token.kind == Token::Kind::Text) {
        found.kind = Operand::Kind::Text;
    } else if (m_token.kind == Token::Kind::QuotedName ||
               (m_token.kind == Token::Kind::Name && !isReserved())) {
        found.kind = Operand::Kind::Column;
        found.column = columnIndex(m_token.text);
    } else {
        return unexpected(u"a column, a number or a text in single quotes"_s);
    }
    const auto moved = advance();
    return moved ? Result<Operand, Error>(found) : moved.fault();
}

int Parser::columnIndex(const QString &name)
{
    QStringList &columns = m_expression.columns;
    if (!columns.contains(name)) {
        columns.append(name);
    }
    return static_cast<int>(columns.indexOf(name));
}

} // namespace

Result<Expression, Error> parse(QStringView text)
{
    return Parser(text).parse();
}

} // namespace corvanta::expression
