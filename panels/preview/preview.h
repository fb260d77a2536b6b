// Shows the first rows of a reader's output and, next to them, the beginning of its file.
//
// Both follow the edits of the parameters a moment later. They are read in the background; a newer
// edit stops what is being read. Nothing is read while the preview is hidden.
// Threads: the GUI thread.
#pragma once
#include "corvanta/edit/worker.h"
#include "panels/panel_layout.h"
#include "panels/preview/preview_run.h"
#include "panels/preview/raw_text.h"

#include <QCoreApplication>

class QBoxLayout;
class QPlainTextEdit;
class QTableView;

namespace corvanta {

class RowsModel;

class Preview final : public PanelExtra
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::Preview)

public:
    /// The action declares its parameters and has an output pin.
    explicit Preview(UpdateClassWidget *panel);
    void parametersChanged() override;

    /// From the last edit to the update.
    static constexpr int kDelayMs = 400;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    // Called once, by the constructor.
    QLayout *makeRows();
    QLayout *makeText();

    /// Read in the background, unless what is shown was read from the same graph.
    void read();
    void showRows(const PreviewRows &preview);
    /// Make the first columns as wide as their cells.
    void fitColumns();
    void showText(const RawText &raw);
    void setNote(const Note &note) { m_note->setNote(note.kind, note.text); }

    Worker m_worker;
    QTimer m_delay;
    QByteArray m_shownGraph; // that was read, or is being read
    NoteLabel *m_note;
    QBoxLayout *m_sides; // a splitter would cut notes of several lines
    RowsModel *m_rows;
    QTableView *m_table;
    NoteLabel *m_caption; // of the text
    QPlainTextEdit *m_text;
};

/// The group for the layout of a reader, folded at first.
PanelGroup previewGroup();

} // namespace corvanta
