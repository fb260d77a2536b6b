// Evaluates an expression for the rows of one table, with the three truth values of SQL: a
// comparison with a missing cell is unknown, and only rows for which the whole is true pass.
//
// Numbers are compared with numbers and texts with texts, by code point. A NaN is a value that is
// not equal to, less or greater than any number.
#pragma once
#include "base/row_view.h"
#include "base/text/text_order.h"
#include "codecs/expression/expression.h"

#include <optional>
#include <string>
#include <vector>

namespace corvanta::expression {

/// An expression with its columns found in a table. Evaluates without allocating memory. Threads:
/// one at a time.
class Condition
{
public:
    /// Find the columns of `expression` in a table. `orders` has one entry per column; the decimal
    /// point of numbers in texts is `decimalPoint`. The words true and false without quotes are
    /// texts.
    /// Errors: UnknownColumn, TypeMismatch (a column of numbers and a text); the offset counts
    /// characters of the expression from 0.
    static Result<Condition, Error> bind(const Expression &expression, const RowView &columns,
                                         const std::vector<TextOrder> &orders,
                                         char decimalPoint = '.');

    /// Whether the expression is true for the row, which has the columns given to bind(). Errors:
    /// TypeMismatch (a text column that has no numbers, and a number), NotANumber. Both need a text
    /// that is not missing, so that a column without values never fails.
    Result<bool, Error> isTrue(const RowView &row);

private:
    enum class Truth : quint8 { False, True, Unknown };
    /// Where the value of an operand comes from.
    enum class Source : quint8 { Number, Text, Key, Double, TextCell, WordCell, TextNumberCell };
    struct BoundOperand
    {
        Source source = Source::Number;
        double number = 0;
        qint64 rest = 0;     // what a literal with many digits is more than `number`
        std::u16string text; // of a literal, so that comparisons need no conversion
        int column = -1;     // in the table
        bool isNumber() const { return source != Source::Text && !isTextCell(); }
        bool isTextCell() const { return source == Source::TextCell || source == Source::WordCell; }
    };
    struct BoundNode
    {
        Node::Kind kind = Node::Kind::Compare;
        Comparison comparison = Comparison::Equal;
        int firstChild = -1;
        int next = -1;
        BoundOperand left;
        BoundOperand right;
    };

    /// Errors: UnknownColumn.
    static Result<BoundOperand, Error> bindOperand(const Operand &operand, const RowView &columns,
                                                   const QStringList &names,
                                                   const std::vector<TextOrder> &orders);
    static Source sourceOf(cell::Type type, TextOrder order);
    /// Errors: TypeMismatch.
    static Result<void, Error> checkTypes(const BoundNode &node, const Node &source,
                                          const RowView &columns);
    static bool isMissing(const BoundOperand &operand, const RowView &row);
    // The truth of a node; after a fault any, and m_fault is set.

    Truth evaluate(int index, const RowView &row);
    Truth evaluateChain(const BoundNode &node, const RowView &row);
    Truth compare(const BoundNode &node, const RowView &row);
    Truth compareNumbers(const BoundNode &node, const RowView &row);
    static qint64 restOf(const BoundOperand &operand, double value, const RowView &row);
    /// Returns false after a fault.
    bool number(const BoundOperand &operand, const RowView &row, double *value);
    void failMismatch(const BoundNode &node, const RowView &row);

    std::vector<BoundNode> m_nodes;
    int m_root = -1;
    char m_decimalPoint = '.';
    std::optional<Fault<Error>> m_fault; // of the row that is evaluated
};

} // namespace corvanta::expression
