// Edits a list of child elements with members, which may be lists again: levels with columns,
// charts with axes, widths of text columns.
//
// A tree shows the elements, and below it are the fields of the current one, made from the members
// that the parameter table declares. Attributes and elements that the table does not know are kept.
// Panels that need more than this have editors of their own. Threads: the GUI thread.
#pragma once
#include "panels/field_editor.h"

#include <QCoreApplication>

#include <vector>

class QFormLayout;
class QToolButton;
class QTreeWidget;

namespace corvanta {

class ElementItem;

class StructureEditor final : public FieldEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::StructureEditor)

public:
    explicit StructureEditor(const FieldContext &context);
    ~StructureEditor() override;
    bool isWide() const override { return true; }

protected:
    void setValue(const QString &value) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// All elements as XML, in the form of the parameter's value.
    QString value() const;
    /// The current element; null if there is none.
    ElementItem *current() const;
    /// Show the fields of the current element.
    void showFields();
    /// Add the field of member number `index` of the current element.
    void addField(int index);
    void orderTabs();
    /// Add an element after the current one, or inside it as its last child.
    enum class Where { After, Inside };
    void add(Where where);
    void removeCurrent();
    /// Move the current element among its siblings; negative: up.
    void moveCurrent(int by);

    QTreeWidget *m_tree;
    QFormLayout *m_form;
    QToolButton *m_addInside = nullptr;
    QToolButton *m_lastButton = nullptr;                    // Tab moves from it to the fields
    const QVector<ParameterInfo> *m_shownMembers = nullptr; // of the fields in m_form
    std::vector<FieldEditor *> m_fields; // by member; null: a list that the tree shows
};

} // namespace corvanta
