#include "panels/structures/chart_editor.h"

#include "base/mapped.h"
#include "panels/note_label.h"
#include "panels/structures/chart_axes_field.h"
#include "panels/suggestion_field.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr auto kChartName = "name"_L1;
constexpr auto kChartType = "type"_L1;
constexpr auto kAxes = "axis"_L1;
constexpr auto kTemplate = "template"_L1;
constexpr int kNamesInNote = 3; // more are counted only

} // namespace

ChartEditor::ChartEditor(const FieldContext &context, FindMarks findMarks)
    : StructureEditor(context, Lists::AsFields,
                      {tr("Add a chart"), {}, tr("No charts yet: choose a template, or add one")})
    , m_findMarks(findMarks)
    , m_note(new NoteLabel(this))
    , m_add(new QPushButton(tr("Add them"), this))
{
    nameControl(m_add, tr("Add the tags of the template that have no chart"));
    m_add->hide();
    // The Enter key belongs to the field that is edited.
    m_add->setAutoDefault(false);
    connect(m_add, &QPushButton::clicked, this, [this] { addMissing(); });
    auto *const row = new QHBoxLayout;
    row->addWidget(m_note, 1);
    row->addWidget(m_add, 0, Qt::AlignTop);
    column()->insertLayout(1, row); // below the tree
}

void ChartEditor::actionChanged()
{
    const QString name = parameter(kTemplate);
    if (name == m_template) {
        return;
    }
    // Templates can be large, so they are read once and in the background.
    m_template = name;
    m_marks.reset();
    m_worker.stop();
    if (!name.isEmpty()) {
        ask<Marks>(m_worker, *context().action, m_findMarks, [this](const Marks &found) {
            m_marks = found;
            updateItems();
            elementsShown();
            if (m_chosen == m_template && !missingNames().isEmpty()) {
                addMissing();
            }
        });
    }
}

/// A template that the user chooses brings its charts. One that undo brings back does not: the
/// charts are then those of that time.
void ChartEditor::parameterEdited(const QString &name)
{
    if (name == kTemplate) {
        m_chosen = parameter(kTemplate);
    }
}

/// Names are chosen among the tags of the template.
FieldEditor *ChartEditor::makeMember(const FieldContext &context)
{
    if (context.info.name == kAxes) {
        return new ChartAxesField(context, [this] { return currentType(); });
    }
    return context.info.name == kChartName
               ? new SuggestionField(context, [this] { return markNames(); })
               : makeEditor(context);
}

int ChartEditor::currentType() const
{
    const Element *const chart = currentElement();
    return chart == nullptr ? 0 : memberValue(*chart, context().info, kChartType).toInt();
}

QString ChartEditor::summary(const Element &chart, const ParameterInfo &list, int) const
{
    const QString name = memberValue(chart, list, kChartName);
    const ParameterInfo &type = *memberOf(list, kChartType);
    const QString kind = type.choices.value(memberValue(chart, type).toInt());
    return u"%1 \u2013 %2"_s.arg(name.isEmpty() ? tr("(no tag)") : name, kind);
}

QString ChartEditor::remark(const Element &chart, const ParameterInfo &list) const
{
    const QString name = memberValue(chart, list, kChartName);
    // Nothing is known to be wrong before the template is read.
    return !m_marks || markNames().contains(name) ? QString()
                                                  : tr("The template has no tag '%1'").arg(name);
}

QStringList ChartEditor::markNames() const
{
    return mapped<QStringList>(m_marks.value_or(std::vector<ChartMark>()),
                               [](const ChartMark &mark) { return mark.name; });
}

QStringList ChartEditor::missingNames() const
{
    QStringList names = markNames();
    for (const Element &chart : elements()) {
        // One chart serves every series with its tag.
        names.removeAll(memberValue(chart, context().info, kChartName));
    }
    return names;
}

void ChartEditor::elementsShown()
{
    const QStringList missing = missingNames();
    // A template may have many tags; the note has one line.
    const QString some = missing.mid(0, kNamesInNote).join(u"', '"_s);
    m_note->setNote(NoteLabel::Kind::Remark,
                    missing.isEmpty()
                        ? QString()
                        : tr("Tags of the template without a chart: '%1'")
                              .arg(missing.size() > kNamesInNote ? some + u"', '\u2026"_s : some));
    m_add->setVisible(!missing.isEmpty());
}

void ChartEditor::addMissing()
{
    const ParameterInfo &list = context().info;
    std::vector<Element> left = elements();
    std::vector<Element> charts;
    // In the order of the template; charts without a tag follow, so that no data is lost.
    for (const ChartMark &mark : *m_marks) {
        const auto found = std::find_if(left.begin(), left.end(), [&](const Element &chart) {
            return memberValue(chart, list, kChartName) == mark.name;
        });
        if (found != left.end()) {
            charts.push_back(std::move(*found));
            left.erase(found);
            continue;
        }
        Element chart = newElement(list);
        setMember(&chart, *memberOf(list, kChartType), QString::number(mark.type));
        setMember(&chart, *memberOf(list, kChartName), mark.name);
        charts.push_back(std::move(chart));
    }
    std::move(left.begin(), left.end(), std::back_inserter(charts));
    replaceElements(std::move(charts));
}

} // namespace corvanta
