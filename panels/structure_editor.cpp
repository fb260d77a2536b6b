// An item of the tree owns its element. With Lists::InTree, elements that are items themselves are
// children of the item and not of the element.
#include "panels/structure_editor.h"

#include "corvanta/edit/shown_text.h"
#include "panels/glyphs.h"
#include "panels/structures/element_item.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QSignalBlocker>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using Type = ParameterInfo::Type;

constexpr int kVisibleRows = 8; // as high as the buttons; longer trees scroll

/// Says what it means that it is empty: users do not read an empty box as a setting.
class HintedTree final : public QTreeWidget
{
public:
    HintedTree(QString hint, QWidget *parent)
        : QTreeWidget(parent)
        , m_hint(std::move(hint))
    {
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QTreeWidget::paintEvent(event);
        if (topLevelItemCount() == 0) {
            constexpr int margin = 4;
            QPainter painter(viewport());
            painter.setPen(palette().color(QPalette::PlaceholderText));
            painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                             Qt::TextWordWrap, m_hint);
        }
    }

private:
    QString m_hint;
};

} // namespace

StructureEditor::StructureEditor(const FieldContext &context)
    : StructureEditor(context, Lists::InTree,
                      {tr("Add an element"), tr("Add an element inside the current one"),
                       tr("None: the button + adds one")})
{
}

StructureEditor::StructureEditor(const FieldContext &context, Lists lists, const Texts &texts)
    : FieldEditor(context)
    , m_lists(lists)
    , m_tree(new HintedTree(texts.empty, this))
    , m_form(new QGridLayout)
    , m_column(new QVBoxLayout(this))
{
    m_tree->setHeaderHidden(true);
    m_tree->setRootIsDecorated(lists == Lists::InTree && listIn(context.info) != nullptr);
    m_tree->setFixedHeight(fontMetrics().lineSpacing() * kVisibleRows + 2 * m_tree->frameWidth());
    m_tree->installEventFilter(this); // for the keys
    setMainControl(m_tree);
    auto *const buttons = new QVBoxLayout;
    auto *const top = new QHBoxLayout;
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->addLayout(top);
    m_column->addLayout(m_form);
    m_form->setColumnStretch(1, 1);
    top->addWidget(m_tree);
    top->addLayout(buttons);
    addButtons(buttons, texts);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, [this] { showFields(); });
}

void StructureEditor::addButtons(QVBoxLayout *buttons, const Texts &texts)
{
    buttons->setSpacing(2);
    buttons->addWidget(makeButton(
        Glyph::Add, texts.addAfter, [this] { add(Where::After); }, Qt::Key_Insert));
    if (m_tree->rootIsDecorated()) {
        buttons->addWidget(makeButton(
            Glyph::ToRight, texts.addInside, [this] { add(Where::Inside); },
            Qt::CTRL | Qt::Key_Insert));
    }
    buttons->addWidget(makeButton(
        Glyph::Remove, tr("Remove the element"), [this] { removeCurrent(); }, Qt::Key_Delete));
    buttons->addWidget(makeButton(
        Glyph::Up, tr("Move the element up"), [this] { moveCurrent(-1); }, Qt::CTRL | Qt::Key_Up));
    m_lastButton = makeButton(
        Glyph::Down, tr("Move the element down"), [this] { moveCurrent(1); },
        Qt::CTRL | Qt::Key_Down);
    buttons->addWidget(m_lastButton);
    buttons->addStretch(1);
}

StructureEditor::~StructureEditor()
{
    // The tree is destroyed after this object, and clears itself then.
    m_tree->disconnect(this);
}

void StructureEditor::resizeEvent(QResizeEvent *event)
{
    FieldEditor::resizeEvent(event);
    arrangeLabels();
}

// ---- The elements

std::vector<Element> StructureEditor::elements() const
{
    std::vector<Element> all;
    all.reserve(static_cast<size_t>(m_tree->topLevelItemCount()));
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i) {
        all.push_back(static_cast<const ElementItem *>(m_tree->topLevelItem(i))->whole());
    }
    return all;
}

ElementItem *StructureEditor::current() const
{
    return static_cast<ElementItem *>(m_tree->currentItem());
}

const Element *StructureEditor::currentElement() const
{
    return current() == nullptr ? nullptr : &current()->element;
}

/// The element of the top level that contains the current item.
int StructureEditor::currentIndex() const
{
    QTreeWidgetItem *item = m_tree->currentItem();
    while (item != nullptr && item->parent() != nullptr) {
        item = item->parent();
    }
    return m_tree->indexOfTopLevelItem(item);
}

void StructureEditor::setValue(const QString &value)
{
    std::vector<Element> elements = elementsOf(context().info, value);
    m_wrapper = wrapperOf(context().info, value);
    if (valueOf(context().info, elements, m_wrapper) != this->value() ||
        m_tree->topLevelItemCount() == 0) {
        showElements(std::move(elements)); // otherwise the current element stays current
    }
}

/// All items are new, so the one in the place of the current item becomes current.
void StructureEditor::showElements(std::vector<Element> elements)
{
    const int index = qMax(0, currentIndex());
    {
        const QSignalBlocker blocker(m_tree); // the current item changes while the tree is filled
        m_tree->clear();
        for (Element &element : elements) {
            m_tree->addTopLevelItem(
                new ElementItem(context().info, std::move(element), m_lists == Lists::InTree));
        }
        m_tree->expandAll();
        m_tree->setCurrentItem(m_tree->topLevelItem(qMin(index, m_tree->topLevelItemCount() - 1)));
    }
    updateItems();
    showFields();
}

/// For edits of several elements, which are one step for the user.
void StructureEditor::replaceElements(std::vector<Element> elements)
{
    showElements(std::move(elements));
    report(value());
}

void StructureEditor::reportElements(Edit kind)
{
    updateItems();
    elementsShown();
    report(value(), kind);
}

void StructureEditor::updateItem(ElementItem *item)
{
    const QTreeWidgetItem *const parent =
        item->parent() != nullptr ? item->parent() : m_tree->invisibleRootItem();
    const QString remark = this->remark(item->element, item->info);
    item->setText(0, summary(item->element, item->info, parent->indexOfChild(item)));
    item->setToolTip(0, plainToolTip(remark.isEmpty() ? item->text(0) : remark)); // may be cut
    item->setIcon(0, remark.isEmpty() ? QIcon() : warningMark(palette()));
    for (int i = 0; i < item->childCount(); ++i) {
        updateItem(static_cast<ElementItem *>(item->child(i)));
    }
}

void StructureEditor::updateItems()
{
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i) {
        updateItem(static_cast<ElementItem *>(m_tree->topLevelItem(i)));
    }
}

/// Two texts are usually enough to recognize an element in the tree.
QString StructureEditor::summary(const Element &element, const ParameterInfo &list, int) const
{
    QStringList values;
    for (const ParameterInfo &member : list.members) {
        const bool isShown = member.type == Type::Text && !memberValue(element, member).isEmpty();
        if (isShown && values.size() < 2) {
            values << memberValue(element, member);
        }
    }
    return values.isEmpty() ? tr("(empty)") : values.join(u" \u2013 "_s);
}

// ---- The fields of the current element

void StructureEditor::showFields()
{
    const ParameterInfo *const list = current() == nullptr ? nullptr : &current()->info;
    // Elements of one list have the same fields, which get other values.
    if (list == nullptr || list != m_shownList) {
        for (const Field &field : m_fields) {
            delete field.label;
            delete field.editor;
        }
        m_fields.clear();
        m_shownList = list;
        makeFields();
    }
    updateFields();
    elementsShown();
}

/// A list inside the element is part of the tree, unless the editor shows lists as fields.
void StructureEditor::makeFields()
{
    const bool showsLists = m_lists == Lists::AsFields;
    for (int i = 0; m_shownList != nullptr && i < m_shownList->members.size(); ++i) {
        if (showsLists || m_shownList->members[i].type != Type::Structure) {
            addField(i);
        }
    }
    orderTabs();
}

void StructureEditor::updateFields()
{
    for (const Field &field : m_fields) {
        const ParameterInfo &member = m_shownList->members[field.member];
        const bool isShown = showsMember(current()->element, *m_shownList, member);
        field.editor->showValue(memberValue(current()->element, member));
        field.editor->setVisible(isShown);
        if (field.label != nullptr) {
            field.label->setVisible(isShown);
        }
    }
    arrangeLabels();
}

/// As in the panel: above the fields in a narrow form and of wide editors, else with one width.
void StructureEditor::arrangeLabels()
{
    int longest = 0;
    for (const Field &field : m_fields) {
        const bool isCounted = field.label != nullptr && !field.editor->isWide();
        if (isCounted && !field.editor->isHidden()) {
            longest = qMax(longest, fullWidth(*field.label));
        }
    }
    const int labelWidth = isNarrow(*this, width()) ? 0 : qMin(longest, width() / kLabelShare);
    m_form->setColumnMinimumWidth(0, labelWidth);
    int row = 0;
    for (const Field &field : m_fields) {
        place(field, row, labelWidth);
        row += 2;
    }
}

/// In two rows of the form. `labelWidth` 0: the label is above the field.
void StructureEditor::place(const Field &field, int row, int labelWidth)
{
    const bool isLeft = labelWidth > 0 && field.label != nullptr && !field.editor->isWide();
    m_form->removeWidget(field.editor);
    m_form->addWidget(field.editor, row + 1, isLeft ? 1 : 0, 1, isLeft ? 1 : 2);
    if (field.label != nullptr) {
        m_form->removeWidget(field.label);
        m_form->addWidget(field.label, isLeft ? row + 1 : row, 0, 1, isLeft ? 1 : 2,
                          isLeft ? Qt::AlignTop : Qt::AlignBottom);
        // On one line with the text of the control.
        field.label->setMinimumSize(isLeft ? labelWidth : 0,
                                    isLeft ? field.editor->focusProxy()->sizeHint().height() : 0);
        field.label->setMaximumWidth(isLeft ? labelWidth : QWIDGETSIZE_MAX);
    }
}

/// Fields that are made later would come after all others of the panel.
void StructureEditor::orderTabs()
{
    QWidget *last = m_lastButton;
    for (const Field &field : m_fields) {
        for (QWidget *const control : field.editor->findChildren<QWidget *>()) {
            // The list of a box has a window of its own.
            if ((control->focusPolicy() & Qt::TabFocus) != 0 && control->window() == window()) {
                setTabOrder(last, control);
                last = control;
            }
        }
    }
}

FieldEditor *StructureEditor::makeMember(const FieldContext &context)
{
    return makeEditor(context);
}

void StructureEditor::addField(int index)
{
    FieldContext inner = context();
    inner.info = m_shownList->members[index];
    inner.label = inner.info.label;
    inner.meaning = inner.info.meaning;
    Field field{makeMember(inner), nullptr, index};
    field.editor->setEdited([this, index](const QString &text, Edit kind) {
        ElementItem *const item = current();
        setMember(&item->element, item->info.members[index], text);
        updateFields();
        reportElements(kind);
    });
    field.editor->setParent(this);
    if (!field.editor->showsLabel()) {
        field.label = new QLabel(captionOf(inner.label), this);
        field.label->setBuddy(field.editor->focusProxy());
        field.label->setWordWrap(true);
        field.label->setToolTip(toolTipOf(inner));
    }
    m_fields.push_back(field);
}

/// Only the fields depend on the input: the tree shows what is saved.
void StructureEditor::refreshContext()
{
    for (const Field &field : m_fields) {
        field.editor->refreshContext();
    }
}

/// A hidden field is not used, so its value cannot be wrong.
ParameterProblem StructureEditor::problem() const
{
    for (const Field &field : m_fields) {
        const ParameterProblem problem = field.editor->problem();
        if (!problem.text.isEmpty() && !field.editor->isHidden()) {
            return {context().info.name, problem.text, problem.severity};
        }
    }
    return {};
}

// ---- Edits of the tree

/// Without a current element, the new one becomes the first of the list.
void StructureEditor::add(Where where)
{
    ElementItem *const item = current();
    const bool isInside = where == Where::Inside && item != nullptr;
    const ParameterInfo *const list = isInside          ? listIn(item->info)
                                      : item != nullptr ? &item->info
                                                        : &context().info;
    if (list == nullptr) {
        return;
    }
    auto *const added = new ElementItem(*list, makeElement(*list), m_lists == Lists::InTree);
    QTreeWidgetItem *const parent = isInside ? item
                                    : item != nullptr && item->parent() != nullptr
                                        ? item->parent()
                                        : m_tree->invisibleRootItem();
    const int at = isInside ? parent->childCount() : parent->indexOfChild(item) + 1;
    parent->insertChild(at, added);
    m_tree->expandItem(added);
    m_tree->setCurrentItem(added);
    reportElements();
}

void StructureEditor::removeCurrent()
{
    if (current() != nullptr) {
        delete current(); // removes itself from the tree, which makes a neighbour the current item
        showFields();
        reportElements();
    }
}

/// Only among its neighbours: an element stays inside the one that contains it.
void StructureEditor::moveCurrent(int by)
{
    ElementItem *const item = current();
    if (item == nullptr) {
        return;
    }
    QTreeWidgetItem *const parent =
        item->parent() != nullptr ? item->parent() : m_tree->invisibleRootItem();
    const int to = parent->indexOfChild(item) + by;
    if (to >= 0 && to < parent->childCount()) {
        const bool isExpanded = item->isExpanded(); // taking the item out loses it
        parent->takeChild(parent->indexOfChild(item));
        parent->insertChild(to, item);
        item->setExpanded(isExpanded);
        m_tree->setCurrentItem(item);
        reportElements();
    }
}

/// The keys do what the buttons do, for users without a mouse.
bool StructureEditor::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress) {
        return FieldEditor::eventFilter(watched, event);
    }
    const auto *const key = static_cast<const QKeyEvent *>(event);
    const bool isControl = key->modifiers().testFlag(Qt::ControlModifier);
    if (key->key() == Qt::Key_Insert) {
        add(isControl && m_tree->rootIsDecorated() ? Where::Inside : Where::After);
    } else if (key->key() == Qt::Key_Delete) {
        removeCurrent();
    } else if (isControl && key->key() == Qt::Key_Up) {
        moveCurrent(-1);
    } else if (isControl && key->key() == Qt::Key_Down) {
        moveCurrent(1);
    } else {
        return FieldEditor::eventFilter(watched, event);
    }
    return true;
}

} // namespace corvanta
