#include "panels/structures/doc_tables_editor.h"

#include "corvanta/action_item.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr auto kMarker = "markerName"_L1;
constexpr auto kStyle = "styleID"_L1;
constexpr auto kDocument = "template"_L1;
constexpr auto kJoinRuns = "joinRuns"_L1;

} // namespace

DocTablesEditor::DocTablesEditor(const FieldContext &context, FindOffers findOffers)
    : ElementTable(context, {tr("Add an input pin and its table"),
                             tr("Remove the last input pin and its table")})
    , m_findOffers(findOffers)
{
    showRowNumbers(tr("Input pin %1"));
    setSuggestions([this](const ParameterInfo &member) {
        return member.name == kMarker  ? m_offers.markers.value_or(QStringList())
               : member.name == kStyle ? m_offers.styles.value_or(QStringList())
                                       : QStringList();
    });
    setRemark([this](const Element &table, const ParameterInfo &member) {
        const QString marker = memberValue(table, member);
        // Nothing is missing before the template is read.
        const bool isMissing =
            member.name == kMarker && m_offers.markers && !m_offers.markers->contains(marker);
        return isMissing ? tr("the template has no marker '%%1%'").arg(marker) : QString();
    });
}

void DocTablesEditor::actionChanged()
{
    const QString name = parameter(kDocument);
    const QString joins = parameter(kJoinRuns); // which markers a run finds depends on both
    if (name == m_template && joins == m_joins) {
        return;
    }
    m_template = name;
    m_joins = joins;
    // Remarks on the old template would be wrong until the new one is read.
    m_offers = {};
    m_worker.stop();
    if (!name.isEmpty()) {
        ask<Offers>(m_worker, *context().action, m_findOffers, [this](const Offers &found) {
            m_offers = found;
            updateCells();
        });
    }
}

/// The action knows the table of a new pin, and whether it may have one.
void DocTablesEditor::addRow()
{
    ActionItem &action = *context().action;
    const std::unique_ptr<ActionItem> copy(action.clone(action.globalParameters()));
    auto *const parameters = dynamic_cast<ActionParameters *>(copy.get());
    if (parameters == nullptr) {
        return; // no memory
    }
    // A copy, because the edit changes the action as one step that can be undone.
    copy->addPinIn();
    const int index = parameters->indexOfParameter(context().info.name);
    std::vector<Element> tables = elements();
    const std::vector<Element> all = elementsOf(context().info, parameters->parameterValue(index));
    if (all.size() > tables.size()) {
        tables.push_back(all.back());
        showElements(std::move(tables));
        reportElements();
    }
}

/// Links belong to the numbers of pins, so it is always the last one. The first pin stays.
void DocTablesEditor::removeRow()
{
    std::vector<Element> tables = elements();
    if (tables.size() > 1) {
        tables.pop_back();
        showElements(std::move(tables));
        reportElements();
    }
}

} // namespace corvanta
