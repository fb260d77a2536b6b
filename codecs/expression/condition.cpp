// The nodes of the syntax tree are copied in their order, with the operands resolved. Evaluation
// walks over them: a table has millions of rows, so it allocates and converts nothing that bind()
// can prepare.
#include "codecs/expression/condition.h"

#include "base/number.h"
#include "base/text/number_value.h"

#include <algorithm>
#include <compare>

using namespace Qt::StringLiterals;

namespace corvanta::expression {

namespace {

/// A name that is written like a boolean.
bool isBooleanWord(const QString &name)
{
    return name.compare("true"_L1, Qt::CaseInsensitive) == 0 ||
           name.compare("false"_L1, Qt::CaseInsensitive) == 0;
}

/// Only "not equal" holds for an unordered pair, one of which is a NaN.
bool holds(Comparison comparison, std::partial_ordering order)
{
    switch (comparison) {
    case Comparison::Equal:
        return std::is_eq(order);
    case Comparison::NotEqual:
        return std::is_neq(order);
    case Comparison::Less:
        return std::is_lt(order);
    case Comparison::LessOrEqual:
        return std::is_lteq(order);
    case Comparison::Greater:
        return std::is_gt(order);
    case Comparison::GreaterOrEqual:
        break;
    }
    return std::is_gteq(order);
}

/// As the user would write the text in an expression.
QString quoted(std::u16string_view text)
{
    return u"'%1'"_s.arg(QStringView(text.data(), static_cast<qsizetype>(text.size())));
}

} // namespace

Result<Condition, Error> Condition::bind(const Expression &expression, const RowView &columns,
                                         const std::vector<TextOrder> &orders, char decimalPoint)
{
    Condition condition;
    condition.m_decimalPoint = decimalPoint;
    condition.m_root = expression.root;
    for (const Node &node : expression.nodes) {
        BoundNode bound{node.kind, node.comparison, node.firstChild, node.next, {}, {}};
        for (const bool isLeft : {true, false}) {
            auto operand =
                bindOperand(isLeft ? node.left : node.right, columns, expression.columns, orders);
            if (!operand) {
                return operand.fault();
            }
            (isLeft ? bound.left : bound.right) = *std::move(operand);
        }
        if (const auto checked = checkTypes(bound, node, columns); !checked) {
            return checked.fault();
        }
        condition.m_nodes.push_back(std::move(bound));
    }
    return condition;
}

Result<Condition::BoundOperand, Error> Condition::bindOperand(const Operand &operand,
                                                              const RowView &columns,
                                                              const QStringList &names,
                                                              const std::vector<TextOrder> &orders)
{
    BoundOperand bound;
    bound.number = operand.number;
    bound.rest = integerRest(operand.text.toStdU16String(), operand.number);
    if (operand.kind == Operand::Kind::Text) {
        bound.source = Source::Text;
        bound.text = operand.text.toStdU16String();
    }
    if (operand.kind != Operand::Kind::Column) {
        return bound;
    }
    const QString &name = names[operand.column];
    bound.column = columns.indexOf(name);
    if (bound.column < 0 && isBooleanWord(name)) {
        bound.source = Source::Text;
        bound.text = name.toStdU16String();
        return bound;
    }
    if (bound.column < 0) {
        return Fault{Error::UnknownColumn, name, operand.position};
    }
    bound.source = sourceOf(columns.type(bound.column), orders[size_t(bound.column)]);
    return bound;
}

Condition::Source Condition::sourceOf(cell::Type type, TextOrder order)
{
    switch (type) {
    case cell::Type::Key:
        return Source::Key;
    case cell::Type::Double:
        return Source::Double;
    case cell::Type::Text:
        break;
    }
    return order == TextOrder::Numbers ? Source::TextNumberCell
           : order == TextOrder::Words ? Source::WordCell
                                       : Source::TextCell;
}

/// A text column is checked when a row has a value in it.
Result<void, Error> Condition::checkTypes(const BoundNode &node, const Node &source,
                                          const RowView &columns)
{
    const bool isMixed = node.left.isNumber() != node.right.isNumber();
    const bool hasTextCell = node.left.isTextCell() || node.right.isTextCell();
    if (node.kind != Node::Kind::Compare || !isMixed || hasTextCell) {
        return {};
    }
    const bool isTextLeft = !node.left.isNumber();
    const Operand &text = isTextLeft ? source.left : source.right;
    const BoundOperand &number = isTextLeft ? node.right : node.left;
    const QString what = number.column < 0
                             ? u"a number"_s
                             : u"the numbers of column '%1'"_s.arg(columns.names[number.column]);
    return Fault{
        Error::TypeMismatch,
        u"the text '%1' cannot be compared with %2; a number is written without quotes"_s.arg(
            QString::fromStdU16String((isTextLeft ? node.left : node.right).text), what),
        text.position};
}

/// A fault is kept in a member while the tree is walked, so that the walk returns plain values.
Result<bool, Error> Condition::isTrue(const RowView &row)
{
    const bool isTrue = evaluate(m_root, row) == Truth::True;
    return m_fault ? Result<bool, Error>(*m_fault) : isTrue;
}

/// The depth is limited by the parser, so the recursion is, too.
Condition::Truth Condition::evaluate(int index, const RowView &row)
{
    const BoundNode &node = m_nodes[size_t(index)];
    switch (node.kind) {
    case Node::Kind::And:
    case Node::Kind::Or:
        return evaluateChain(node, row);
    case Node::Kind::Not: {
        const Truth truth = evaluate(node.firstChild, row);
        return truth == Truth::Unknown ? truth
                                       : (truth == Truth::True ? Truth::False : Truth::True);
    }
    case Node::Kind::IsNull:
        return isMissing(node.left, row) ? Truth::True : Truth::False;
    case Node::Kind::Compare:
        break;
    }
    return compare(node, row);
}

/// One false child decides an "and", one true child an "or"; otherwise one unknown child makes the
/// whole unknown.
Condition::Truth Condition::evaluateChain(const BoundNode &node, const RowView &row)
{
    const Truth decides = node.kind == Node::Kind::And ? Truth::False : Truth::True;
    Truth all = node.kind == Node::Kind::And ? Truth::True : Truth::False;
    for (int child = node.firstChild; child >= 0; child = m_nodes[size_t(child)].next) {
        const Truth truth = evaluate(child, row);
        if (truth == decides) {
            return truth;
        }
        all = truth == Truth::Unknown ? truth : all;
    }
    return all;
}

/// Literals are never missing.
bool Condition::isMissing(const BoundOperand &operand, const RowView &row)
{
    if (operand.column < 0) {
        return false;
    }
    const uchar *const bytes = row.cells[operand.column];
    if (operand.source == Source::Key) {
        return cell::isMissingKey(loadNative<quint32>(bytes));
    }
    return operand.source == Source::Double ? cell::isMissingDouble(loadNative<double>(bytes))
                                            : cell::readText(bytes).isMissing();
}

/// Missing cells first: a comparison with one is unknown even if the types do not fit.
Condition::Truth Condition::compare(const BoundNode &node, const RowView &row)
{
    if (isMissing(node.left, row) || isMissing(node.right, row)) {
        return Truth::Unknown;
    }
    if (node.left.isNumber() != node.right.isNumber()) {
        failMismatch(node, row);
        return Truth::Unknown;
    }
    if (node.left.isNumber()) {
        return compareNumbers(node, row);
    }
    const auto textOf = [&row](const BoundOperand &operand) {
        return operand.column < 0 ? std::u16string_view(operand.text)
                                  : cell::readText(row.cells[operand.column]).view();
    };
    const bool areWords =
        node.left.source == Source::WordCell || node.right.source == Source::WordCell;
    const auto order = areWords ? compareWords(textOf(node.left), textOf(node.right))
                                : compareTexts(textOf(node.left), textOf(node.right));
    return holds(node.comparison, order) ? Truth::True : Truth::False;
}

/// A comparison with a missing number is neither true nor false, as in SQL.
Condition::Truth Condition::compareNumbers(const BoundNode &node, const RowView &row)
{
    double left = 0;
    double right = 0;
    if (!number(node.left, row, &left) || !number(node.right, row, &right)) {
        return Truth::Unknown;
    }
    std::partial_ordering order = left <=> right;
    if (std::is_eq(order) && std::abs(left) >= kInexactFrom) {
        order = restOf(node.left, left, row) <=> restOf(node.right, right, row);
    }
    return holds(node.comparison, order) ? Truth::True : Truth::False;
}

/// By how much an operand with many digits is greater than its value as a double.
qint64 Condition::restOf(const BoundOperand &operand, double value, const RowView &row)
{
    if (operand.source != Source::TextNumberCell) {
        return operand.rest;
    }
    return integerRest(cell::readText(row.cells[operand.column]).view(), value);
}

/// The number of an operand that is not missing. Returns false for a text that is not a number.
bool Condition::number(const BoundOperand &operand, const RowView &row, double *value)
{
    if (operand.column < 0) {
        *value = operand.number;
        return true;
    }
    const uchar *const bytes = row.cells[operand.column];
    if (operand.source == Source::Key) {
        *value = loadNative<quint32>(bytes);
        return true;
    }
    if (operand.source == Source::Double) {
        *value = loadNative<double>(bytes);
        return true;
    }
    const std::u16string_view text = cell::readText(bytes).view();
    if (!parseLocalDouble(text, m_decimalPoint, value)) {
        m_fault = {Error::NotANumber, u"%1 in column '%2' is not a number"_s.arg(
                                          quoted(text), row.names[operand.column])};
        return false;
    }
    return true;
}

/// A text and a number, of which the text is the cell of a column.
void Condition::failMismatch(const BoundNode &node, const RowView &row)
{
    const bool isTextLeft = !node.left.isNumber();
    const BoundOperand &text = isTextLeft ? node.left : node.right;
    const BoundOperand &number = isTextLeft ? node.right : node.left;
    const QString other = number.column < 0
                              ? u"the number %1"_s.arg(shortestText(number.number))
                              : u"the numbers of column '%1'"_s.arg(row.names[number.column]);
    m_fault = {
        Error::TypeMismatch,
        u"column '%1' holds texts (here %2), which cannot be compared with %3; state its kind ('%1=decimal' in 'kinds'; convert: --types), make the text a missing value (nullValues of readCSV), or write a text in single quotes"_s
            .arg(row.names[text.column], quoted(cell::readText(row.cells[text.column]).view()),
                 other)};
}

} // namespace corvanta::expression
