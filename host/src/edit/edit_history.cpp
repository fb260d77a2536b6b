// Undo of edits in panels. The saved element is the state that is kept: it also has what the action
// does not know.
#include "corvanta/edit/edit_history.h"

#include "corvanta/action_item.h"
#include "corvanta/action_parameters.h"
#include "corvanta/main_ui.h"
#include "graph/node_writer.h"

#include <algorithm>
#include <map>
#include <memory>
#include <sstream>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// A new action of the same type with the parameters of `saved`.
std::unique_ptr<ActionItem> copyWith(ActionItem &action, const XMLNode &saved)
{
    return std::unique_ptr<ActionItem>(
        action.newInstance(new XMLNode(saved), action.globalParameters())); // newInstance() owns it
}

/// The child elements of that name as XML.
QString elementsOf(const XMLNode &parent, const QString &name)
{
    std::wostringstream out;
    out.exceptions(std::ios::badbit); // otherwise text is lost when there is no memory
    const QByteArray wanted = name.toLatin1();
    int at = 0;
    for (XMLNode child = parent.getChildNode(wanted.constData(), &at); !child.isEmpty();
         child = parent.getChildNode(wanted.constData(), &at)) {
        writeNode(child, 1, out);
    }
    return QString::fromStdWString(out.str());
}

/// The declarations of what is directly in an element of that structure, which may be its wrapper.
QVector<ParameterInfo> membersIn(const ParameterInfo &list)
{
    if (list.name == list.itemElement) {
        return list.members;
    }
    ParameterInfo items = list;
    items.name = list.itemElement;
    return {items};
}

/// Composes the element of savedForm().
class Merge
{
public:
    Merge(ActionItem &action, const XMLNode &before, const ParameterEdit &edit)
        : m_type(QString::fromLatin1(action.getTypeName()))
        , m_edit(edit)
        , m_before(before)
        , m_new(dynamic_cast<const ActionParameters *>(&action))
        , m_oldAction(copyWith(action, before))
        , m_old(dynamic_cast<const ActionParameters *>(m_oldAction.get()))
    {
        m_out.exceptions(std::ios::badbit); // otherwise text is lost when there is no memory
        action.save(m_out, m_type);
        m_saved = parsed();
        m_out.str({});
    }

    XMLNode take()
    {
        if (m_saved.isEmpty() || m_new == nullptr || m_old == nullptr) {
            return m_saved;
        }
        const QVector<ParameterInfo> infos = m_new->parameters();
        const KnownNames known = knownNames(infos);
        m_out << L'<' << m_type.toStdWString();
        writeAttributes(m_saved, m_out);
        copyUnknownAttributes(m_before, known);
        m_out << L'>';
        for (int i = 0; i < infos.size(); ++i) {
            if (infos[i].place == ParameterInfo::Place::Element) {
                writeElements(infos[i], i);
            }
        }
        copyUnknownElements(m_before, known);
        m_out << L"</" << m_type.toStdWString() << L'>';
        return parsed();
    }

private:
    XMLNode parsed() const
    {
        const auto document = XMLNode::parse(QString::fromStdWString(m_out.str()).toUtf8());
        return document ? *document : XMLNode();
    }

    void copyUnknownAttributes(const XMLNode &before, const KnownNames &known)
    {
        ToXMLStringTool tool;
        for (const QString &name : before.attributeNames()) {
            if (name != "version"_L1 && !known.attributes.contains(name)) {
                const auto *const value = before.getAttribute(name.toLatin1().constData());
                m_out << L' ' << name.toStdWString() << L"='"
                      << tool.toXML(QString::fromUtf16(value)) << L'\'';
            }
        }
    }

    void copyUnknownElements(const XMLNode &before, const KnownNames &known)
    {
        for (int i = 0; i < before.nChildNode(); ++i) {
            if (!known.elements.contains(before.getChildNode(i).getName())) {
                writeNode(before.getChildNode(i), 1, m_out);
            }
        }
    }

    /// Write an element of a structure, with what `before` has and `infos` do not declare. `before`
    /// is the same element so far: the one of the same name and number. Empty: there is none.
    void writeItem(const XMLNode &saved, const XMLNode &before, const QVector<ParameterInfo> &infos)
    {
        const KnownNames known = knownNames(infos);
        ToXMLStringTool tool;
        m_out << L'<' << saved.getName().toStdWString();
        writeAttributes(saved, m_out);
        copyUnknownAttributes(before, known);
        m_out << L'>' << (saved.nChildNode() == 0 ? tool.toXML(saved.text()) : L"");
        std::map<QString, int> places; // in `before`, by name
        for (int i = 0; i < saved.nChildNode(); ++i) {
            const XMLNode child = saved.getChildNode(i);
            const QByteArray name = child.getName().toLatin1();
            const XMLNode old = before.getChildNode(name.constData(), &places[child.getName()]);
            const auto list = std::find_if(infos.begin(), infos.end(), [&](const auto &info) {
                return info.type == ParameterInfo::Type::Structure && info.name == child.getName();
            });
            if (list == infos.end()) {
                writeNode(child, 1, m_out);
            } else {
                writeItem(child, old, membersIn(*list));
            }
        }
        copyUnknownElements(before, known);
        m_out << L"</" << saved.getName().toStdWString() << L'>';
    }

    /// The elements of a structure that the action has changed because of another parameter.
    void writeChanged(const ParameterInfo &list)
    {
        const QByteArray name = list.name.toLatin1();
        int at = 0;
        int oldAt = 0;
        for (XMLNode item = m_saved.getChildNode(name.constData(), &at); !item.isEmpty();
             item = m_saved.getChildNode(name.constData(), &at)) {
            writeItem(item, m_before.getChildNode(name.constData(), &oldAt), membersIn(list));
        }
    }

    /// The child elements of one parameter. Only a Structure can hold what the action does not
    /// know: its elements come from the edit or, when the value is still the same, from `before`.
    void writeElements(const ParameterInfo &info, int index)
    {
        const bool isStructure = info.type == ParameterInfo::Type::Structure;
        const bool isSame = m_old->parameterValue(index) == m_new->parameterValue(index);
        if (isStructure && !isSame) {
            if (m_edit.parameter == info.name) {
                m_out << m_edit.value.toStdWString();
            } else {
                writeChanged(info);
            }
            return;
        }
        const bool isKept = isStructure && !elementsOf(m_before, info.name).isEmpty();
        m_out << elementsOf(isKept ? m_before : m_saved, info.name).toStdWString();
    }

    const QString m_type;
    const ParameterEdit &m_edit;
    const XMLNode &m_before;
    const ActionParameters *m_new;
    std::unique_ptr<ActionItem> m_oldAction; // with the parameters of m_before
    const ActionParameters *m_old;           // the same object
    std::wostringstream m_out;
    XMLNode m_saved; // what the action saves
};

/// Letters typed one after the other are one step, as in text editors.
bool isSameSeries(const EditHistory::Step &step, const QString &action, const ParameterEdit &edit)
{
    return edit.series != 0 && step.edit.series == edit.series && step.action == action &&
           step.edit.parameter == edit.parameter;
}

} // namespace

XMLNode savedForm(ActionItem &action, const XMLNode &before, const ParameterEdit &edit)
{
    return Merge(action, before, edit).take();
}

/// The graph may hold more than the action reads, such as comments in a structure. As long as the
/// value is the same, that form is kept.
QString storedValue(ActionItem &action, int index)
{
    const auto &parameters = dynamic_cast<const ActionParameters &>(action);
    QString value = parameters.parameterValue(index);
    const ParameterInfo info = parameters.parameters()[index];
    const CorvantaGraph *const graph = MainUI::editedGraph();
    const int number = action.getIdx();
    if (info.type != ParameterInfo::Type::Structure || graph == nullptr || number < 0 ||
        number >= graph->actions.size()) {
        return value;
    }
    const XMLNode &element = graph->actions[number].parameters;
    const std::unique_ptr<ActionItem> copy = copyWith(action, element);
    const bool isSame =
        dynamic_cast<const ActionParameters &>(*copy).parameterValue(index) == value;
    const QString stored = elementsOf(element, info.name);
    return isSame && !stored.isEmpty() ? stored : value;
}

/// Both actions have the same type, so their parameters have the same numbers.
void restoreParameters(ActionItem &action, const XMLNode &saved)
{
    const std::unique_ptr<ActionItem> copy = copyWith(action, saved);
    const auto *const from = dynamic_cast<const ActionParameters *>(copy.get());
    auto *const to = dynamic_cast<ActionParameters *>(&action);
    if (from == nullptr || to == nullptr) {
        return;
    }
    const qsizetype count = from->parameters().size();
    for (int i = 0; i < count; ++i) {
        to->setParameterValue(i, from->parameterValue(i));
    }
}

EditHistory::EditHistory(CorvantaGraph *graph)
    : m_graph(graph)
{
}

/// A new edit discards the steps that could be redone: they belong to another state.
void EditHistory::record(ActionItem *action, const ParameterEdit &edit)
{
    const int index = action->getIdx();
    if (index < 0 || index >= m_graph->actions.size()) {
        return;
    }
    CorvantaGraph::Action &element = m_graph->actions[index];
    const XMLNode after = savedForm(*action, element.parameters, edit);
    m_steps.resize(m_done);
    if (!m_steps.empty() && isSameSeries(m_steps.back(), element.id, edit)) {
        m_steps.back().after = after;
    } else {
        m_steps.push_back({element.id, edit, element.parameters, after});
        ++m_done;
    }
    element.parameters = after;
}

const EditHistory::Step *EditHistory::undo()
{
    if (m_done == 0) {
        return nullptr;
    }
    const Step &step = m_steps[--m_done];
    setElement(step, step.before);
    return &step;
}

const EditHistory::Step *EditHistory::redo()
{
    if (m_done == m_steps.size()) {
        return nullptr;
    }
    const Step &step = m_steps[m_done++];
    setElement(step, step.after);
    return &step;
}

/// The step has the id of its action, because numbers change when actions are removed.
void EditHistory::setElement(const Step &step, const XMLNode &element)
{
    const int index = m_graph->indexOf(step.action);
    if (index >= 0) {
        m_graph->actions[index].parameters = element;
    }
}

} // namespace corvanta
