// Fills the levels and columns of a reader from its file, in the background.
//
// A file with several tables offers them; the user chooses one. The result is merged into the
// action as one step that can be undone: what exists is kept, what is new is added. Settings that
// new levels need are changed only if there were no levels.
// Threads: the GUI thread.
#pragma once
#include "panels/fill/file_fill.h"
#include "panels/panel_layout.h"

#include <QCoreApplication>

class QComboBox;

namespace corvanta {

class TaskRow;
struct MergedElements;

class AutoFill final : public PanelExtra
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::AutoFill)

public:
    explicit AutoFill(UpdateClassWidget *panel);

private:
    QWidget *makePicker();
    /// Read the file in the background; `table` as for fillFromFile().
    void read(int table);
    /// Let the user choose among the tables of the file.
    void offer(const QVector<InputTable> &tables);
    // Change the action, and say what was done.
    void apply(const FileFill &fill);
    void applyElements(const FileFill &fill);
    void applySettings(const FileFill &fill);
    static QString resultOf(const MergedElements &merged);
    // Of all values but the list of elements: set them in the action, or name their fields.
    void setSettings(const FileFill &fill);
    QStringList labelsOf(const FileFill &fill) const;
    /// Set a value, and make it one step together with those of setSettings().
    void reportEdit(int index, const QString &value);

    ActionParameters *m_parameters;
    const QVector<ParameterInfo> m_infos;
    int m_elements = -1; // the parameter with the levels; negative: the action has none
    TaskRow *m_row;
    QWidget *m_picker; // shown while there is a choice
    QComboBox *m_tables = nullptr;
};

} // namespace corvanta
