#include "panels/structures/text_widths_editor.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr auto kWidthColumn = "n"_L1;
constexpr auto kWidth = "l"_L1;
constexpr auto kLongest = "ol"_L1;
constexpr auto kMeasure = "autoWidth"_L1;

} // namespace

TextWidthsEditor::TextWidthsEditor(const FieldContext &context)
    : ElementTable(context, {tr("Add a column"), tr("Remove the width")})
{
    hideMember(kLongest);
    setSuggestions([this](const ParameterInfo &member) {
        return member.name == kWidthColumn ? textColumns() : QStringList();
    });
    setRemark([this](const Element &element, const ParameterInfo &member) {
        return remarkOf(element, member);
    });
}

QStringList TextWidthsEditor::textColumns() const
{
    const TableSchema input = inputColumns();
    QStringList names;
    for (qsizetype i = 0; i < input.names.size(); ++i) {
        // Types may not be known.
        if (input.types.value(i).type() == MetaInfo::Unknown) {
            names << input.names[i];
        }
    }
    return names;
}

/// Columns without a width have a row, too: the user need not type their names.
std::vector<Element> TextWidthsEditor::withInputColumns(std::vector<Element> elements) const
{
    const ParameterInfo &list = context().info;
    QStringList missing = textColumns();
    for (const Element &element : elements) {
        missing.removeAll(memberValue(element, list, kWidthColumn));
    }
    for (const QString &name : std::as_const(missing)) {
        Element element;
        setMember(&element, *memberOf(list, kWidthColumn), name);
        setMember(&element, *memberOf(list, kWidth), {});
        elements.push_back(std::move(element));
    }
    return elements;
}

/// A value that is shown already must not replace the rows.
void TextWidthsEditor::setValue(const QString &value)
{
    keepWrapper(value);
    std::vector<Element> all = withInputColumns(elementsOf(context().info, value));
    if (valueOf(context().info, all) != valueOf(context().info, elements())) {
        showElements(std::move(all)); // otherwise a cell may be edited
    }
}

/// Rows that only showed a column of the old input are dropped; those with a width stay.
void TextWidthsEditor::refreshContext()
{
    std::vector<Element> reported;
    std::copy_if(elements().begin(), elements().end(), std::back_inserter(reported),
                 [this](const Element &element) { return isReported(element); });
    showElements(withInputColumns(std::move(reported)));
}

/// What an empty cell means depends on another parameter.
void TextWidthsEditor::actionChanged()
{
    const QString text = isMeasured() ? tr("automatic") : tr("none");
    setEmptyText(text);
    updateCells();
}

bool TextWidthsEditor::isMeasured() const
{
    return parameter(kMeasure) != "0"_L1;
}

/// A width of 0 is one that a new element has.
void TextWidthsEditor::cellEdited(Element *element)
{
    const ParameterInfo &list = context().info;
    const bool hasWidth = !memberValue(*element, list, kWidth).isEmpty();
    element->name = hasWidth ? list.itemElement : QString();
    if (hasWidth) {
        setMember(element, *memberOf(list, kLongest), memberValue(*element, list, kLongest));
    }
}

QString TextWidthsEditor::remarkOf(const Element &element, const ParameterInfo &member) const
{
    const QString value = memberValue(element, member);
    const bool isTextForSure = !inputColumns().types.isEmpty(); // types may not be known
    if (member.name == kWidth && value.isEmpty() && isTextForSure && !isMeasured()) {
        return tr("the text column '%1' needs a width, because widths are not measured")
            .arg(memberValue(element, context().info, kWidthColumn));
    }
    const bool isUnknown = member.name == kWidthColumn && !inputColumns().names.isEmpty() &&
                           !inputColumns().names.contains(value);
    return isUnknown ? tr("the input has no column '%1'").arg(value) : QString();
}

} // namespace corvanta
