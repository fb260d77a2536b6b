// Edits the name of a file: a line with a mark, a button for the file dialog, and a menu. A written
// file has a button that opens it.
//
// The mark shows whether the file exists, and nothing while that is not known. The menu chooses a
// member of an archive and inserts variables of the graph. A file that is dropped on the field
// becomes its value. Names are contracted: relative to the folder of the graph, as they are saved.
// Threads: the GUI thread.
#pragma once
#include "corvanta/edit/worker.h"
#include "panels/field_editor.h"

#include <QCoreApplication>

class QAction;
class QLineEdit;
class QMenu;
class QMimeData;
class QToolButton;

namespace corvanta {

class FileField final : public FieldEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::FileField)

public:
    explicit FileField(const FieldContext &context);
    void showProblem(const ParameterProblem &problem) override;

protected:
    void setValue(const QString &value) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    bool isInput() const { return context().info.file == ParameterInfo::File::Input; }
    QWidget *makeMenuButton();
    /// Called each time the menu opens.
    void fillMenu(QMenu *menu);
    // Actions of the button and its menu. Dialogs block until the user has answered.
    void browse();
    void chooseMember();
    /// Insert `${name}` at the cursor.
    void insertVariable(const QString &name);
    /// Make the file `name`, as a dialog returns it, the value. Ignores a null name.
    void take(const QString &name);
    /// Show the file in the program that the desktop has for it, if it exists.
    void open();
    /// What is known about the file.
    enum class State { Unknown, Exists, Missing };

    /// The name to open; null if it is not known before a run.
    QString fullName() const;
    /// Look the file up in the background, then show the mark and call `shown`.
    void lookUp(std::function<void()> shown = {});
    void setState(State state, int files);
    void showMark();

    QLineEdit *m_line;
    QAction *m_mark;               // at the end of the line
    QToolButton *m_open = nullptr; // only for a file that is written
    Worker m_worker;
    State m_state = State::Unknown;
    int m_files = 0;           // that have such a name
    bool m_hasProblem = false; // see showProblem()
};

} // namespace corvanta
