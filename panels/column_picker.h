// Editors for the names of columns: of one column, and of a list of columns in order.
//
// Both offer the columns of input pin 0 as far as the host knows them, and keep names that are not
// among them: the input may get these columns later. Threads: the GUI thread.
#pragma once
#include "panels/suggestion_field.h"

#include <QCoreApplication>
#include <QStringList>

#include <vector>

class QLineEdit;
class QListWidget;
class QToolButton;

namespace corvanta {

/// The name of one input column: a list to choose from, in which any other name can be typed. A
/// name that the input does not have is a warning.
class ColumnField final : public SuggestionField
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::ColumnField)

public:
    explicit ColumnField(const FieldContext &context);
    ParameterProblem problem() const override;
    void refreshContext() override;
};

/// A list of texts in order. Texts may be empty and may be equal.
///
/// On the left are the texts that can be added, with a line that searches them and also adds any
/// other text; on the right is the list. Without texts to add, only the list and the line are
/// shown.
class ListEditor : public FieldEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::ListEditor)

public:
    /// `hint` says in the empty line what to type.
    explicit ListEditor(const FieldContext &context,
                        QString hint = tr("Type a text and press Enter to add it"));
    bool isWide() const override { return true; }

protected:
    void setValue(const QString &value) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    /// The offered text that a text of the list names: itself, unless an editor adds signs to it.
    virtual QString offeredOf(const QString &text) const { return text; }
    /// The text that is added for an offered one. If it is longer, its end is then edited in place.
    virtual QString addedText(const QString &offered) const { return offered; }
    /// Offer these texts on the left.
    void setOffered(const QStringList &texts);
    /// The texts of the list, in order.
    QStringList chosen() const;
    /// Mark the texts of the list that name no offered one, unless nothing is offered.
    void markUnknown();
    const QStringList &offered() const { return m_offered; }
    /// What the texts of the list name and is not offered; none if nothing is.
    QStringList unknown() const;

private:
    void setUpLists();
    /// What the texts of the list name, in order.
    QStringList named() const;
    /// Fill the left list.
    void showOffered();
    /// Insert texts after the current line of the list.
    void add(const QStringList &texts);
    /// Open an editor in the current line, with everything from `start` selected.
    void editCurrent(qsizetype start);
    /// Add the selected texts of the left list.
    void addSelected();
    /// Add the text of the search line, or the only offered text that matches it.
    void addTyped();
    void removeSelected();
    /// Move the current line by `by` positions; negative: up. Does nothing at the ends.
    void moveCurrent(int by);
    /// Report the list after an edit. Called more than once for some edits; the panel ignores an
    /// equal value.
    void reportList();

    QString m_hint;
    QStringList m_offered;
    QLineEdit *m_search;
    QListWidget *m_left;                  // offered and not in the list
    QListWidget *m_list;                  // the value
    std::vector<QWidget *> m_needOffered; // hidden when nothing is offered
    QToolButton *m_removeLine = nullptr;  // shown when nothing is offered
};

/// A list of input columns.
class ColumnPicker : public ListEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::ColumnPicker)

public:
    explicit ColumnPicker(const FieldContext &context);
    ParameterProblem problem() const override;
    void refreshContext() override;
};

/// A list of columns to sort by: NAME, or -NAME for descending.
class SortKeyPicker final : public ColumnPicker
{
public:
    using ColumnPicker::ColumnPicker;

protected:
    QString offeredOf(const QString &text) const override;
};

/// A list of columns with what belongs to them: NAME, or NAME=TEXT.
class ColumnPairPicker : public ColumnPicker
{
public:
    using ColumnPicker::ColumnPicker;

protected:
    QString offeredOf(const QString &text) const override;
};

/// A list of NAME=TEXT: a column that is added gets a text, which the user can type over at once.
class ColumnTextPicker final : public ColumnPairPicker
{
public:
    /// `text` is what a column gets; empty: its own name.
    ColumnTextPicker(const FieldContext &context, QString text);

protected:
    QString addedText(const QString &offered) const override;

private:
    QString m_text;
};

} // namespace corvanta
