// Edits a list of child elements with members, which may be lists again: levels with items, charts
// with axes, definitions of variables.
//
// A tree shows the elements, and below it are the fields of the current one, made from the members
// that the parameter table declares. Attributes and elements that the table does not know are kept.
// Editors of single structures derive from this class: see panels/structures. Threads: the GUI
// thread.
#pragma once
#include "panels/field_editor.h"
#include "panels/structures/element.h"

#include <QCoreApplication>

#include <vector>

class QGridLayout;
class QLabel;
class QToolButton;
class QTreeWidget;
class QTreeWidgetItem;
class QVBoxLayout;

namespace corvanta {

class ElementItem;

class StructureEditor : public FieldEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::StructureEditor)

public:
    explicit StructureEditor(const FieldContext &context);
    ~StructureEditor() override;
    ParameterProblem problem() const override;
    void refreshContext() override;
    bool isWide() const override { return true; }

protected:
    /// Where the lists inside an element are shown: as nodes of the tree, or as fields.
    enum class Lists { InTree, AsFields };
    struct Texts
    {
        QString addAfter;  ///< name of the button that adds an element to the same list
        QString addInside; ///< the same for the list in the current element
        QString empty;     ///< what it means that there is no element
    };
    StructureEditor(const FieldContext &context, Lists lists, const Texts &texts);

    // What an editor of one structure can replace. `list` declares the members of the element.

    /// The field of a member; by default the editor for its type.
    virtual FieldEditor *makeMember(const FieldContext &context);
    /// The text by which a user recognises an element; `index` counts among its siblings, from 0.
    virtual QString summary(const Element &element, const ParameterInfo &list, int index) const;
    /// Why an element needs attention; empty: it does not.
    virtual QString remark(const Element & /*element*/, const ParameterInfo & /*list*/) const
    {
        return {};
    }
    /// Whether the current element uses the member; by default, whether its conditions hold.
    virtual bool showsMember(const Element &element, const ParameterInfo &list,
                             const ParameterInfo &member) const
    {
        return isUsed(element, list, member);
    }
    /// An element that the user adds.
    virtual Element makeElement(const ParameterInfo &list) const { return newElement(list); }
    /// The elements have changed, or another one is current.
    virtual void elementsShown() {}

    /// All elements, with those inside them.
    std::vector<Element> elements() const;
    /// Number of the first-level element that is current or holds the current one; -1: none.
    int currentIndex() const;
    /// The current element; null if there is none.
    const Element *currentElement() const;
    /// Replace all elements as an edit by the user. The current element stays current.
    void replaceElements(std::vector<Element> elements);
    /// Show the summaries and remarks again.
    void updateItems();
    /// Tree and buttons, then the fields; derived editors add widgets.
    QVBoxLayout *column() const { return m_column; }

    void setValue(const QString &value) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// A field and the label before or above it.
    struct Field
    {
        FieldEditor *editor = nullptr;
        QLabel *label = nullptr; // null: the editor shows it
        int member = 0;
    };

    QString value() const { return valueOf(context().info, elements(), m_wrapper); }
    ElementItem *current() const;
    void showElements(std::vector<Element> elements);
    void addButtons(QVBoxLayout *buttons, const Texts &texts);
    void updateItem(ElementItem *item);
    /// Show the fields of the current element.
    void showFields();
    void makeFields();
    /// Add the field of member number `index` of the current element.
    void addField(int index);
    /// Hide the fields of members that the current element does not use.
    void updateFields();
    /// Put the labels of the fields where there is room for them.
    void arrangeLabels();
    void place(const Field &field, int row, int labelWidth);
    void orderTabs();
    /// Show and report the elements after an edit.
    void reportElements(Edit kind = Edit::Step);
    /// Add an element after the current one, or inside it as its last child.
    enum class Where { After, Inside };
    void add(Where where);
    void removeCurrent();
    /// Move the current element among its siblings; negative: up.
    void moveCurrent(int by);

    Lists m_lists;
    Element m_wrapper; // of the value
    QTreeWidget *m_tree;
    QGridLayout *m_form;
    QVBoxLayout *m_column;
    QToolButton *m_lastButton = nullptr;        // Tab moves from it to the fields
    const ParameterInfo *m_shownList = nullptr; // that m_fields belong to
    std::vector<Field> m_fields;
};

} // namespace corvanta
