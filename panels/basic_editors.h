// Editors for single values: a line, a number, a choice, a check box, a text of several lines.
//
// Threads: the GUI thread.
#pragma once
#include "panels/suggestion_field.h"

#include <QCoreApplication>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QSpinBox;

namespace corvanta {

class NoteLabel;

/// One line of text. Also for real numbers, which any locale writes with a point.
/// The default is shown as a placeholder, or `hint` where an empty text needs one. If the smallest
/// number has a meaning, the line is empty for it and shows the meaning.
class LineEditor : public FieldEditor
{
public:
    explicit LineEditor(const FieldContext &context, const QString &hint = {});

protected:
    void setValue(const QString &value) override;
    QLineEdit *line() const { return m_line; }

private:
    /// The value that the user means with `text`.
    QString valueOf(const QString &text) const;

    QLineEdit *m_line;
};

/// The printf format of decimal numbers, with an example of its effect below the line. A format
/// that FloatFormat does not allow is a problem instead; it is still passed to the action, because
/// the run reports it too.
class FloatFormatEditor final : public LineEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::FloatFormatEditor)

public:
    explicit FloatFormatEditor(const FieldContext &context);
    ParameterProblem problem() const override;

private:
    void showExample();

    NoteLabel *m_example;
};

/// A whole number in the range of int, with its unit. The smallest number is shown as its meaning,
/// if it has one. Numbers outside the range of the parameter cannot be entered.
class NumberEditor final : public FieldEditor
{
public:
    explicit NumberEditor(const FieldContext &context);

protected:
    void setValue(const QString &value) override;

private:
    /// In the form for the number: "1 row", "2 rows".
    void showUnit();

    QSpinBox *m_box;
};

/// One of several values, with an explanation of the chosen one. A text that is longer than the
/// box is shown below it. A saved value that is not a choice is kept and shown as a number.
class ChoiceEditor final : public FieldEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::ChoiceEditor)

public:
    explicit ChoiceEditor(const FieldContext &context);
    /// For a text that has one of `values`.
    ChoiceEditor(const FieldContext &context, std::span<const NamedValue> values);
    /// Long texts need the width of the label too.
    bool isWide() const override;

protected:
    void setValue(const QString &value) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    using Choices = QVector<std::pair<QString, QString>>; // values, with their texts

    ChoiceEditor(const FieldContext &context, const Choices &choices);
    /// Whether the text of the current choice does not fit in the box.
    bool isCut() const;
    void showExplanation();

    Choices m_choices;
    QComboBox *m_box;
    NoteLabel *m_explanation;
};

/// A check box with a label that is wrapped when it is long. A click on the label toggles the box.
class FlagEditor final : public FieldEditor
{
public:
    explicit FlagEditor(const FieldContext &context);
    bool showsLabel() const override { return true; }
    void setLabel(const QString &text) override;

protected:
    void setValue(const QString &value) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QCheckBox *m_box;
    QLabel *m_label;
};

/// A text of several lines. Tab moves to the next field, as everywhere else.
class TextEditor final : public FieldEditor
{
public:
    explicit TextEditor(const FieldContext &context);
    bool isWide() const override { return true; }

protected:
    void setValue(const QString &value) override;

private:
    QPlainTextEdit *m_text;
};

/// Let the wheel change `control` only while it has the focus. Otherwise a user who scrolls the
/// panel changes the values under the mouse pointer.
void ignoreWheelWithoutFocus(QWidget *control);

} // namespace corvanta
