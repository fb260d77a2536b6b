// The expressions that select rows: price > 10 and (name = 'a b' or day is null)
//
//     expression  = conjunction {"or" conjunction}
//     conjunction = negation {"and" negation}
//     negation    = "not" negation | "(" expression ")" | test
//     test        = operand comparison operand | operand "is" ["not"] "null"
//     comparison  = "=" | "!=" | "<" | "<=" | ">" | ">="       also "==" and "<>"
//     operand     = number | 'text' | column | "column"        a doubled quote is one quote
//
// Words are accepted in any letter case. A column name without quotes consists of letters, digits,
// "_" and ".", and does not begin with a digit or ".". The language is a part of the search
// conditions of SQL (ISO/IEC 9075-2), with the same three truth values.
#pragma once
#include "base/result.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <vector>

namespace corvanta::expression {

/// The detail of each fault is in words for the user.
enum class Error : quint8 {
    Syntax = 1,        ///< the text is not an expression
    TooDeep = 2,       ///< more than kMaxDepth parentheses and "not" are open
    UnknownColumn = 3, ///< detail: the name alone
    TypeMismatch = 4,  ///< a text is compared with a number
    NotANumber = 5,    ///< a text of a column of numbers
};

/// Parentheses and "not" inside each other.
inline constexpr int kMaxDepth = 100;

enum class Comparison : quint8 { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };

/// One side of a comparison.
struct Operand
{
    enum class Kind : quint8 { Number, Text, Column };

    Kind kind = Kind::Number;
    double number = 0;      ///< of a Number
    QString text;           ///< of a Text, without its quotes; the digits of a Number
    int column = -1;        ///< of a Column: index in Expression::columns
    qsizetype position = 0; ///< of its first character, from 0
};

/// A node of the syntax tree. And and Or have two or more children, Not has one.
struct Node
{
    enum class Kind : quint8 { And, Or, Not, Compare, IsNull };

    Kind kind = Kind::Compare;
    Comparison comparison = Comparison::Equal;
    int firstChild = -1; ///< index in Expression::nodes; -1: none
    int next = -1;       ///< the next child of the parent; -1: none
    Operand left;        ///< of Compare and IsNull
    Operand right;       ///< of Compare
};

/// A parsed expression. Plain data.
struct Expression
{
    std::vector<Node> nodes;
    int root = -1;       ///< index of the node for the whole expression
    QStringList columns; ///< the names that it uses, each once, in order
};

/// Parse a whole expression. Errors: Syntax, TooDeep; the offset counts characters from 0.
Result<Expression, Error> parse(QStringView text);

} // namespace corvanta::expression
