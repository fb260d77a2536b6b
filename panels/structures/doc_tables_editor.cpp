#include "panels/structures/doc_tables_editor.h"

#include "corvanta/action_item.h"
#include "panels/structures/pins.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr auto kMarker = "markerName"_L1;
constexpr auto kTemplate = "template"_L1;

} // namespace

DocTablesEditor::DocTablesEditor(const FieldContext &context, FindMarkers findMarkers)
    : ElementTable(context, {tr("Add an input pin and its table"),
                             tr("Remove the last input pin and its table")})
    , m_findMarkers(findMarkers)
{
    showRowNumbers(tr("Pin %1"));
    setSuggestions([this](const ParameterInfo &member) {
        return member.name == kMarker ? m_markers.value_or(QStringList()) : QStringList();
    });
    setRemark([this](const Element &table, const ParameterInfo &member) {
        const QString marker = memberValue(table, member);
        const bool isMissing =
            member.name == kMarker && m_markers.has_value() && !m_markers->contains(marker);
        return isMissing ? tr("the template has no marker '%%1%'").arg(marker) : QString();
    });
}

void DocTablesEditor::actionChanged()
{
    const ActionParameters &parameters = *context().parameters;
    const QString name = parameters.parameterValue(parameters.indexOfParameter(kTemplate));
    if (name == m_template) {
        return;
    }
    m_template = name;
    m_markers.reset();
    if (!name.isEmpty()) {
        m_query.ask<Markers>(*context().action, m_findMarkers, [this](const Markers &found) {
            m_markers = found;
            updateCells();
        });
    }
}

void DocTablesEditor::addRow()
{
    setPinCount(*this, context().action->pinInCount() + 1);
}

void DocTablesEditor::removeRow()
{
    setPinCount(*this, context().action->pinInCount() - 1);
}

} // namespace corvanta
