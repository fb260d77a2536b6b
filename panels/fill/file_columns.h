// Edits a list of columns of the file that the action reads.
//
// A button lists the columns of the file in the background; they are then offered on the left, and
// names that the file does not have are marked. The list is not changed by that: an empty list
// usually means all columns.
// Threads: the GUI thread.
#pragma once
#include "panels/column_picker.h"

namespace corvanta {

class TaskRow;

class FileColumnPicker final : public ListEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::FileColumnPicker)

public:
    explicit FileColumnPicker(const FieldContext &context);

private:
    void read();

    TaskRow *m_row;
};

} // namespace corvanta
