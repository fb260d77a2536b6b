// Any text as an expression. An expression in parentheses gives the same, and it and its negation
// are never both true.
#include "codecs/expression/condition.h"

#include <cstdlib>
#include <limits>

using namespace corvanta;
using namespace corvanta::expression;
using namespace Qt::StringLiterals;

namespace {

/// The cells that columns have in turn: texts "ab", "7" (a number) and missing, numbers.
struct Cells
{
    alignas(2) uchar ab[5] = {0, 0x83, 'a', 0, 'b'}; // from byte 1, so that the units are aligned
    alignas(2) uchar seven[4] = {0, 0x82, '7', 0};
    quint32 key = 7;
    double number = std::numeric_limits<double>::quiet_NaN();
};

/// Nothing for what cannot be evaluated.
std::optional<bool> evaluate(const QString &text)
{
    static const Cells cells;
    const auto parsed = parse(text);
    if (!parsed) {
        return std::nullopt;
    }
    std::vector<const uchar *> row;
    std::vector<MetaInfo> types;
    std::vector<TextOrder> orders;
    for (qsizetype i = 0; i < parsed->columns.size(); ++i) {
        const uchar *const choices[] = {cells.ab + 1, cells.seven + 1, cell::missingTextCell(),
                                        reinterpret_cast<const uchar *>(&cells.key),
                                        reinterpret_cast<const uchar *>(&cells.number)};
        const size_t choice = size_t(i) % std::size(choices);
        row.push_back(choices[choice]);
        types.push_back(choice < 3 ? MetaInfo()
                                   : MetaInfo(choice == 3 ? cell::Type::Key : cell::Type::Double));
        orders.push_back(choice == 1 ? TextOrder::Numbers
                                     : static_cast<TextOrder>(2 * (i / 5 % 2)));
    }
    const RowView view{row.data(), parsed->columns.constData(), types.data(), int(row.size())};
    auto bound = Condition::bind(*parsed, view, orders);
    if (!bound) {
        return std::nullopt;
    }
    const auto isTrue = bound->isTrue(view);
    return isTrue ? std::optional(*isTrue) : std::nullopt;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto isTrue = evaluate(text);
    // One pair of parentheses and one "not" may exceed the depth.
    const auto inside = evaluate(u'(' + text + u')');
    const auto negated = evaluate(u"not ("_s + text + u')');
    if ((inside && inside != isTrue) || (isTrue && *isTrue && negated && *negated)) {
        std::abort();
    }
    return 0;
}
