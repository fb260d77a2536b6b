// A recursive-descent parser; each function of the grammar in expression.h has one here.
#include "base/number.h"
#include "codecs/expression/expression.h"

#include <QCoreApplication>

#include <optional>

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

std::u16string_view viewOf(QStringView text)
{
    return {text.utf16(), static_cast<size_t>(text.size())};
}

/// Letters of any script; other names are in double quotes.
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

/// The number is checked here, so that the message can name its place.
Result<Token, Error> Lexer::number()
{
    const qsizetype start = m_at;
    m_at = numberEnd();
    const QStringView digits = m_text.sliced(start, m_at - start);
    double value = 0;
    if (!parseDouble(viewOf(digits), &value)) {
        return Fault{Error::Syntax,
                     QCoreApplication::translate("Problems", "'%1' is not a number").arg(digits),
                     start};
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
    return Fault{
        Error::Syntax,
        QCoreApplication::translate("Problems", "the quote that begins here is never closed"),
        start};
}

/// Words such as "and" are names here; the parser knows which ones are reserved.
Token Lexer::name()
{
    const qsizetype start = m_at;
    while (has(0, isNamePart)) {
        ++m_at;
    }
    return {Token::Kind::Name, m_text.sliced(start, m_at - start).toString(), start};
}

/// Symbols of two characters come first in the list, because "<" begins "<=".
Result<Token, Error> Lexer::symbol()
{
    static constexpr auto kSymbols = std::to_array<QLatin1StringView>(
        {"!="_L1, "<="_L1, ">="_L1, "=="_L1, "<>"_L1, "="_L1, "<"_L1, ">"_L1, "("_L1, ")"_L1});
    for (const QLatin1StringView symbol : kSymbols) {
        if (m_text.sliced(m_at).startsWith(symbol)) {
            const qsizetype start = m_at;
            m_at += symbol.size();
            return Token{Token::Kind::Symbol, QString(symbol), start};
        }
    }
    return Fault{
        Error::Syntax,
        QCoreApplication::translate("Problems", "unexpected character '%1'").arg(m_text[m_at]),
        m_at};
}

/// After a fault the parser sees the end of the text, so that all functions return soon. They may
/// then return anything: the fault is the result.
class Parser
{
public:
    explicit Parser(QStringView text)
        : m_lexer(text)
    {
        advance();
    }
    Result<Expression, Error> parse();

private:
    // These return the index of the node that they add.
    int chain(Node::Kind kind, int depth);
    int partOf(Node::Kind kind, int depth);
    int negation(int depth);
    int parenthesis(int depth);
    int test();
    int nullTest(const Operand &operand);

    Operand operand();
    std::optional<Comparison> comparison() const;
    int columnIndex(const QString &name);
    int add(Node node);
    int addParent(Node::Kind kind, int firstChild);

    void advance();
    void fail(const Fault<Error> &fault);
    void failUnexpected(const QString &expected);
    /// Move to the next token if the current one is this word, or this symbol.
    bool accept(QLatin1StringView wordOrSymbol);
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

    Lexer m_lexer;
    Token m_token; // the current one
    Expression m_expression;
    std::optional<Fault<Error>> m_fault; // the first one
};

Result<Expression, Error> Parser::parse()
{
    m_expression.root = chain(Node::Kind::Or, 0);
    if (m_token.kind != Token::Kind::End) {
        failUnexpected(QCoreApplication::translate("Problems", "'and', 'or' or the end"));
    }
    if (m_fault) {
        return *m_fault;
    }
    return std::move(m_expression);
}

/// The first fault is kept; parse() returns it.
void Parser::advance()
{
    auto token = m_lexer.next();
    if (token) {
        m_token = *std::move(token);
    } else {
        fail(token.fault());
    }
}

/// The first fault counts; later ones are consequences of it.
void Parser::fail(const Fault<Error> &fault)
{
    m_fault = m_fault ? m_fault : fault;
    m_token = {};
    m_lexer = Lexer({});
}

void Parser::failUnexpected(const QString &expected)
{
    const bool isEnd = m_token.kind == Token::Kind::End;
    const QString found =
        isEnd ? QCoreApplication::translate("Problems", "the end") : u"'%1'"_s.arg(m_token.text);
    fail({Error::Syntax,
          QCoreApplication::translate("Problems", "expected %1, found %2").arg(expected, found),
          m_token.position});
}

/// Takes the token if it is the expected one.
bool Parser::accept(QLatin1StringView wordOrSymbol)
{
    const bool isSymbol = m_token.kind == Token::Kind::Symbol && m_token.text == wordOrSymbol;
    if (!isSymbol && !isWord(wordOrSymbol)) {
        return false;
    }
    advance();
    return true;
}

int Parser::add(Node node)
{
    m_expression.nodes.push_back(std::move(node));
    return static_cast<int>(m_expression.nodes.size()) - 1;
}

int Parser::addParent(Node::Kind kind, int firstChild)
{
    Node node;
    node.kind = kind;
    node.firstChild = firstChild;
    return add(std::move(node));
}

/// Operands joined by "or", or by "and" for Node::Kind::And. One node holds all of them, so that
/// the depth of the tree does not grow with their number.
int Parser::chain(Node::Kind kind, int depth)
{
    const auto word = kind == Node::Kind::Or ? "or"_L1 : "and"_L1;
    const int first = partOf(kind, depth);
    if (!isWord(word)) {
        return first;
    }
    const int parent = addParent(kind, first);
    for (int last = first; accept(word);) {
        const int child = partOf(kind, depth);
        last = m_expression.nodes[size_t(last)].next = child;
    }
    return parent;
}

int Parser::partOf(Node::Kind kind, int depth)
{
    return kind == Node::Kind::Or ? chain(Node::Kind::And, depth) : negation(depth);
}

/// The limit keeps "((((" from using up the stack.
int Parser::negation(int depth)
{
    if (depth > kMaxDepth) {
        fail({Error::TooDeep,
              QCoreApplication::translate("Problems", "more than %1 parentheses are open")
                  .arg(kMaxDepth),
              m_token.position});
    }
    if (accept("("_L1)) {
        return parenthesis(depth);
    }
    return accept("not"_L1) ? addParent(Node::Kind::Not, negation(depth + 1)) : test();
}

/// The current token is the one after the opening parenthesis.
int Parser::parenthesis(int depth)
{
    const int inner = chain(Node::Kind::Or, depth + 1);
    if (!accept(")"_L1)) {
        failUnexpected(u"')'"_s);
    }
    return inner;
}

std::optional<Comparison> Parser::comparison() const
{
    // In the order of the enumeration; after it two synonyms of the first two.
    static constexpr auto kSymbols = std::to_array<QLatin1StringView>(
        {"="_L1, "!="_L1, "<"_L1, "<="_L1, ">"_L1, ">="_L1, "=="_L1, "<>"_L1});
    const auto found = std::find(kSymbols.begin(), kSymbols.end(), m_token.text);
    const bool isOne = m_token.kind == Token::Kind::Symbol && found != kSymbols.end();
    return isOne ? std::optional(static_cast<Comparison>((found - kSymbols.begin()) % 6))
                 : std::nullopt;
}

int Parser::test()
{
    const Operand left = operand();
    if (accept("is"_L1)) {
        return nullTest(left);
    }
    const auto found = comparison();
    if (!found) {
        failUnexpected(QCoreApplication::translate("Problems", "= != < <= > >= or 'is null'"));
    }
    advance();
    const Operand right = operand();
    return add({Node::Kind::Compare, found.value_or(Comparison::Equal), -1, -1, left, right});
}

/// "null" or "not null"; the current token is the one after "is".
int Parser::nullTest(const Operand &operand)
{
    const bool isNegated = accept("not"_L1);
    if (!accept("null"_L1)) {
        failUnexpected(isNegated ? u"'null'"_s
                                 : QCoreApplication::translate("Problems", "'null' or 'not null'"));
    }
    const int test = add({Node::Kind::IsNull, Comparison::Equal, -1, -1, operand, {}});
    return isNegated ? addParent(Node::Kind::Not, test) : test;
}

Operand Parser::operand()
{
    Operand found{Operand::Kind::Number, 0, m_token.text, -1, m_token.position};
    if (isWord("null"_L1)) {
        fail({Error::Syntax,
              QCoreApplication::translate("Problems", "compare with 'is null' or 'is not null'"),
              m_token.position});
    } else if (m_token.kind == Token::Kind::Number) {
        parseDouble(viewOf(m_token.text), &found.number); // the lexer has checked it
    } else if (m_token.kind == Token::Kind::Text) {
        found.kind = Operand::Kind::Text;
    } else if (m_token.kind == Token::Kind::QuotedName ||
               (m_token.kind == Token::Kind::Name && !isReserved())) {
        found.kind = Operand::Kind::Column;
        found.column = columnIndex(m_token.text);
    } else {
        failUnexpected(QCoreApplication::translate(
            "Problems", "a column, a number or a text in single quotes"));
    }
    advance();
    return found;
}

/// A column that is named twice is bound once.
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
