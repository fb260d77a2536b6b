// All fields are made again for another selection, so that none shows an action that is gone.
#include "studio/shell/views/property_view.h"

#include "corvanta/action_parameters.h"
#include "corvanta/update_class_widget.h"
#include "studio/document/graph_document.h"
#include "studio/shell/views/field_undo.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// Texts of the tables are in the catalogue of the panels.
QString ofParameters(const QString &text)
{
    return QCoreApplication::translate("Parameters", text.toUtf8());
}

/// A parameter without a label is shown by its name in the file.
QString labelOf(const ParameterInfo &info)
{
    return ofParameters(info.label.isEmpty() ? info.name : info.label);
}

/// A text that the dock, which is narrow, does not cut.
QLabel *wrappedLabel(const QString &text)
{
    auto *const label = new QLabel(text); // the form owns it
    label->setWordWrap(true);
    return label;
}

/// Lists of texts and of elements need the panel of their action.
bool hasSimpleValue(const ParameterInfo &info)
{
    return info.type != ParameterInfo::Type::Structure && info.type != ParameterInfo::Type::Strings;
}

/// Null for an action without a table of parameters.
const ActionParameters *parametersOf(const GraphDocument &document, const QString &id)
{
    return dynamic_cast<const ActionParameters *>(document.action(id));
}

} // namespace

PropertyView::PropertyView(QWidget *parent)
    : QWidget(parent)
    , m_fieldUndo(new FieldUndo(this))
{
    setObjectName(u"properties"_s);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    show(nullptr, {});
}

void PropertyView::show(GraphDocument *document, const QStringList &ids)
{
    // Making a panel takes longer than all else here, and would lose the focus.
    if (m_page != nullptr && document == m_document && ids == m_ids) {
        return;
    }
    clear();
    m_document = document;
    m_fieldUndo->follow(document != nullptr ? document->undoStack() : nullptr);
    m_ids = ids;
    if (document == nullptr || ids.isEmpty()) {
        showMessage(tr("Select an action to see its parameters."));
    } else if (ids.size() == 1) {
        showOne();
    } else {
        showSeveral();
    }
}

void PropertyView::clear()
{
    // Not later: the action of the panel may be destroyed next.
    delete m_page;
}

void PropertyView::showMessage(const QString &text)
{
    auto *const label = new QLabel(text, this);
    label->setAlignment(Qt::AlignTop);
    label->setMargin(8);
    label->setWordWrap(true);
    m_page = label;
    layout()->addWidget(m_page);
}

void PropertyView::showOne()
{
    m_page = new QWidget(this);
    auto *const rows = new QVBoxLayout(m_page);
    rows->setContentsMargins(4, 4, 4, 4);
    auto *const form = new QFormLayout;
    addName(form);
    addComment(form);
    rows->addLayout(form);
    addPanel(rows);
    layout()->addWidget(m_page);
    refresh();
}

void PropertyView::addName(QFormLayout *form)
{
    m_name = new QLineEdit(m_page);
    m_name->setObjectName(u"actionName"_s);
    m_nameProblem = new QLabel(m_page);
    m_nameProblem->setObjectName(u"actionNameProblem"_s);
    m_nameProblem->setWordWrap(true);
    m_nameProblem->hide();
    connect(m_name, &QLineEdit::editingFinished, this, &PropertyView::rename);
    form->addRow(tr("Name:"), m_name);
    // Below the field, which keeps the refused name for a correction.
    form->addRow(m_nameProblem);
}

void PropertyView::addComment(QFormLayout *form)
{
    m_comment = new QPlainTextEdit(m_page);
    m_comment->setObjectName(u"actionComment"_s);
    m_comment->setTabChangesFocus(true);
    m_comment->setFixedHeight(m_comment->fontMetrics().lineSpacing() * 2 + 14);
    const int series = ++m_series; // all letters until the next selection are one step
    connect(m_comment, &QPlainTextEdit::textChanged, this, [this, series] {
        m_document->setComment(m_ids.first(), m_comment->toPlainText(), series);
    });
    form->addRow(tr("Comment:"), m_comment);
}

void PropertyView::addPanel(QVBoxLayout *layout)
{
    // Null for a type that no module has; the graph keeps its element.
    ActionItem *const action = m_document->action(m_ids.first());
    m_panel = action != nullptr ? action->createPanel(m_page) : nullptr;
    if (m_panel != nullptr) {
        layout->addWidget(m_panel, 1);
        return;
    }
    const QString text =
        action != nullptr
            ? tr("The action has no parameters to edit.")
            : tr("No module has the action \"%1\".").arg(m_document->type(m_ids.first()));
    auto *const label = new QLabel(text, m_page);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    layout->addWidget(label, 1, Qt::AlignTop);
}

void PropertyView::refresh()
{
    if (m_document == nullptr || m_ids.isEmpty()) {
        return;
    }
    // Values that were different may be equal now: make the fields again.
    if (m_ids.size() > 1) {
        const QStringList ids = m_ids;
        m_ids.clear();
        show(m_document, ids);
        return;
    }
    const QString &id = m_ids.first();
    // A name that is being typed stays, and so does the selection of one that is going to be.
    if (!m_name->isModified() && m_name->text() != id) {
        m_name->setText(id);
    }
    if (const QString comment = m_document->comment(id); comment != m_comment->toPlainText()) {
        const QSignalBlocker blocker(m_comment);
        m_comment->setPlainText(comment);
    }
    if (m_panel != nullptr) {
        m_panel->refresh();
    }
}

void PropertyView::rename()
{
    // Also emitted when the focus leaves the field unchanged.
    if (!m_name->isModified()) {
        return;
    }
    QString why;
    const QString name = m_name->text();
    m_name->setModified(false);
    if (name != m_ids.first() && !m_document->rename(m_ids.first(), name, &why)) {
        m_nameProblem->setText(why);
        m_nameProblem->show();
        return;
    }
    m_nameProblem->hide();
}

void PropertyView::editName()
{
    if (m_name != nullptr) {
        m_name->setFocus(Qt::ShortcutFocusReason);
        m_name->selectAll();
    }
}

void PropertyView::editComment()
{
    if (m_comment != nullptr) {
        m_comment->setFocus(Qt::ShortcutFocusReason);
        m_comment->selectAll();
    }
}

void PropertyView::showSeveral()
{
    const QString type = m_document->type(m_ids.first());
    // Parameters of equal names may mean different things in different types.
    const bool isOneType = std::all_of(m_ids.begin(), m_ids.end(), [&](const QString &id) {
        return m_document->type(id) == type && m_document->action(id) != nullptr;
    });
    const ActionParameters *const parameters = parametersOf(*m_document, m_ids.first());
    if (!isOneType || parameters == nullptr) {
        showMessage(tr("Actions selected: %1. Actions of one type can be changed together.")
                        .arg(m_ids.size()));
        return;
    }
    auto *const scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    m_page = scroll;
    auto *const fields = new QWidget; // the scroll area owns it
    auto *const form = new QFormLayout(fields);
    // The dock is narrow, and a two-line label would be cut next to a one-line field.
    form->setRowWrapPolicy(QFormLayout::WrapAllRows);
    form->addRow(wrappedLabel(
        tr("%1: each change applies to all %2 actions.").arg(type, QString::number(m_ids.size()))));
    for (const ParameterInfo &info : parameters->parameters()) {
        if (hasSimpleValue(info)) {
            QLabel *const label = wrappedLabel(labelOf(info));
            QWidget *const field = makeField(info);
            label->setBuddy(field);
            form->addRow(label, field);
        }
    }
    scroll->setWidget(fields);
    layout()->addWidget(m_page);
}

QWidget *PropertyView::makeField(const ParameterInfo &info)
{
    QWidget *const field = info.type == ParameterInfo::Type::Flag ? makeFlagField(info)
                           : !info.choices.isEmpty()              ? makeChoiceField(info)
                                                                  : makeTextField(info);
    field->setObjectName(info.name);
    field->setAccessibleName(labelOf(info));
    field->setToolTip(ofParameters(info.meaning));
    return field;
}

QWidget *PropertyView::makeFlagField(const ParameterInfo &info)
{
    auto *const box = new QCheckBox; // the form owns the fields
    const auto value = commonValue(info.name);
    // The third state is only shown: a click gives all actions one value.
    box->setTristate(!value);
    box->setCheckState(!value             ? Qt::PartiallyChecked
                       : *value == "1"_L1 ? Qt::Checked
                                          : Qt::Unchecked);
    connect(box, &QCheckBox::clicked, this, [this, box, name = info.name] {
        box->setTristate(false);
        setParameter(name, box->checkState() == Qt::Unchecked ? u"0"_s : u"1"_s);
    });
    return box;
}

QWidget *PropertyView::makeChoiceField(const ParameterInfo &info)
{
    auto *const box = new QComboBox;
    // The longest choice would make all fields wider than the dock.
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    for (int i = 0; i < info.choices.size(); ++i) {
        // A number without a text is not a choice.
        if (!info.choices.at(i).isEmpty()) {
            box->addItem(ofParameters(info.choices.at(i)), QString::number(i));
        }
    }
    const auto value = commonValue(info.name);
    // Shown while no choice is current.
    box->setPlaceholderText(tr("different values"));
    box->setCurrentIndex(value ? box->findData(*value) : -1);
    connect(box, &QComboBox::activated, this,
            [this, box, name = info.name] { setParameter(name, box->currentData().toString()); });
    return box;
}

QWidget *PropertyView::makeTextField(const ParameterInfo &info)
{
    auto *const edit = new QLineEdit;
    const auto value = commonValue(info.name);
    edit->setText(value.value_or(QString()));
    edit->setPlaceholderText(value ? QString() : tr("different values"));
    connect(edit, &QLineEdit::editingFinished, this, [this, edit, name = info.name] {
        // Leaving a field that shows different values must not make them equal.
        if (edit->isModified()) {
            edit->setModified(false);
            setParameter(name, edit->text());
        }
    });
    return edit;
}

std::optional<QString> PropertyView::commonValue(const QString &parameter) const
{
    std::optional<QString> common;
    for (const QString &id : m_ids) {
        const ActionParameters *const parameters = parametersOf(*m_document, id);
        const QString value = parameters->parameterValue(parameters->indexOfParameter(parameter));
        if (common && *common != value) {
            return std::nullopt;
        }
        common = value;
    }
    return common;
}

void PropertyView::setParameter(const QString &parameter, const QString &value)
{
    m_document->setParameter(m_ids, parameter, value);
}

} // namespace corvanta::studio
