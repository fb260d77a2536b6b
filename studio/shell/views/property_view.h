// The properties of the selected actions: name, comment and panel of one action, or the parameters
// that several actions of one type have in common.
#pragma once
#include "corvanta/update_class_widget.h"

#include <QPointer>
#include <QWidget>

#include <optional>

class QFormLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QVBoxLayout;
struct ParameterInfo;

namespace corvanta::studio {

class FieldUndo;
class GraphDocument;

/// Every edit is a step of the document's undo stack. Threads: the GUI thread.
class PropertyView final : public QWidget
{
    Q_OBJECT

public:
    explicit PropertyView(QWidget *parent = nullptr);

    /// Show actions of a document, null for none. Call it with null before the document is
    /// destroyed: panels must not outlive their actions.
    void show(GraphDocument *document, const QStringList &ids);
    /// Whether the action is one of those that are shown.
    bool shows(const QString &id) const { return m_ids.contains(id); }
    /// Show the current values, for example after an undo.
    void refresh();
    /// Put the keyboard focus into the name or the comment.
    void editName();
    void editComment();
    /// The panel that is shown; null if there is none.
    UpdateClassWidget *panel() const { return m_panel; }

private:
    /// Destroy all fields and the panel.
    void clear();
    /// Show a sentence in place of fields.
    void showMessage(const QString &text);
    /// Show name, comment and panel of the only action.
    void showOne();
    /// Show the simple parameters of all actions, which must be of one type.
    void showSeveral();
    /// The name is changed when the field is left: letters of a name may be invalid.
    void addName(QFormLayout *form);
    /// The comment is changed with each letter, so that saving never misses some.
    void addComment(QFormLayout *form);
    /// An action of an unknown type has no panel; a sentence says so.
    void addPanel(QVBoxLayout *layout);
    /// A field for one parameter of all shown actions.
    QWidget *makeField(const ParameterInfo &info);
    QWidget *makeChoiceField(const ParameterInfo &info);
    QWidget *makeFlagField(const ParameterInfo &info);
    QWidget *makeTextField(const ParameterInfo &info);
    /// Rename the action, or say below the field why it is impossible.
    void rename();
    /// The value that all shown actions have; nothing if they differ.
    std::optional<QString> commonValue(const QString &parameter) const;
    /// Set a parameter of all shown actions, as one step.
    void setParameter(const QString &parameter, const QString &value);

    FieldUndo *m_fieldUndo;
    QPointer<GraphDocument> m_document;
    QStringList m_ids;
    QPointer<QWidget> m_page; // all fields; replaced with each selection
    QPointer<QLineEdit> m_name;
    QPointer<QLabel> m_nameProblem;
    QPointer<QPlainTextEdit> m_comment;
    QPointer<UpdateClassWidget> m_panel;
    int m_series = 1'000'000; // of edits of comments; those of panels count from 1
};

} // namespace corvanta::studio
