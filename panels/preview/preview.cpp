#include "panels/preview/preview.h"

#include "corvanta/action_item.h"
#include "panels/field_editor.h"
#include "panels/preview/rows_model.h"

#include <QHeaderView>
#include <QPlainTextEdit>
#include <QTableView>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr int kVisibleLines = 9;      // of each side
constexpr int kFittedColumns = 50;    // more would take too long
constexpr int kMaxColumnWidth = 240;  // at first, in pixels
constexpr int kSideBySideWidth = 700; // a narrower preview shows the text below the rows

/// The file that is read, expanded; empty if it comes from an input pin.
QString fileOf(const ActionParameters &parameters)
{
    return parameters.inputs().value(0);
}

/// Not every reader has this parameter.
QString encodingOf(const ActionParameters &parameters)
{
    const int index = parameters.indexOfParameter(u"encoding"_s);
    return index < 0 ? QString() : parameters.parameterValue(index);
}

/// The caption is close to its content, so that it is clear what it describes.
QLayout *withCaption(NoteLabel *caption, QWidget *content)
{
    auto *const column = new QVBoxLayout;
    column->setSpacing(2);
    column->addWidget(caption);
    column->addWidget(content, 1);
    return column;
}

} // namespace

PanelGroup previewGroup()
{
    return {QT_TRANSLATE_NOOP("Panels", "Preview"), {}, PanelGroup::Fold::Folded, extra<Preview>};
}

Preview::Preview(UpdateClassWidget *panel)
    : PanelExtra(panel)
    , m_note(new NoteLabel)
    , m_sides(new QBoxLayout(QBoxLayout::TopToBottom, this))
    , m_rows(new RowsModel(this))
    , m_table(new QTableView)
    , m_caption(new NoteLabel)
    , m_text(new QPlainTextEdit)
{
    m_sides->setContentsMargins(0, 0, 0, 0);
    m_sides->addLayout(makeRows(), 1);
    m_sides->addLayout(makeText(), 1);
    m_delay.setSingleShot(true);
    m_delay.setInterval(kDelayMs);
    connect(&m_delay, &QTimer::timeout, this, [this] { read(); });
}

/// Tab leaves the table, because its cells cannot be edited.
QLayout *Preview::makeRows()
{
    m_table->setModel(m_rows);
    m_table->setObjectName(u"previewRows"_s);
    m_table->setAccessibleName(tr("First rows"));
    m_table->setAccessibleDescription(tr("The first rows of the output, with names and types"));
    m_table->setTabKeyNavigation(false);
    m_table->setWordWrap(false);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_table->verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() + 4);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_table->setMinimumHeight(fontMetrics().lineSpacing() * kVisibleLines);
    return withCaption(m_note, m_table);
}

/// Long lines scroll: a wrapped line would look like several records.
QLayout *Preview::makeText()
{
    m_text->setObjectName(u"previewText"_s);
    m_text->setReadOnly(true);
    m_text->setTabChangesFocus(true);
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_text->setFont(fixedFont(font()));
    m_text->setAccessibleName(tr("Beginning of the file"));
    m_text->setAccessibleDescription(tr("The beginning of the file, as text or as bytes"));
    m_text->setMinimumHeight(fontMetrics().lineSpacing() * kVisibleLines);
    return withCaption(m_caption, m_text);
}

/// A hidden preview reads nothing; showEvent() makes up for it.
void Preview::parametersChanged()
{
    if (isVisible()) {
        m_delay.start();
    }
}

void Preview::showEvent(QShowEvent *event)
{
    PanelExtra::showEvent(event);
    m_shownGraph.clear(); // the file may have changed
    m_delay.start(0);
}

/// The result would not be seen.
void Preview::hideEvent(QHideEvent *event)
{
    PanelExtra::hideEvent(event);
    m_delay.stop();
    m_worker.stop();
}

void Preview::resizeEvent(QResizeEvent *event)
{
    PanelExtra::resizeEvent(event);
    m_sides->setDirection(width() < kSideBySideWidth ? QBoxLayout::TopToBottom
                                                     : QBoxLayout::LeftToRight);
}

/// The same graph gives the same rows, so it is not run again.
void Preview::read()
{
    m_delay.setInterval(kDelayMs); // showEvent() sets another one
    const PreviewRequest request = requestOf(*action());
    const QByteArray graph = request.graph.toXml();
    if (graph == m_shownGraph) {
        return;
    }
    m_shownGraph = graph;
    const auto &parameters = dynamic_cast<const ActionParameters &>(*action());
    const QString file = fileOf(parameters);
    setNote({NoteLabel::Kind::Remark, tr("Reading\u2026")});
    m_worker.start(
        [this, request, file,
         encoding = encodingOf(parameters)](const std::stop_token &stop) -> Worker::Show {
            const RawText raw = file.isEmpty() ? RawText() : beginningOf(file, encoding);
            // The run would wait for a pipe, and take bytes from it.
            const PreviewRows rows =
                raw.isPipe ? PreviewRows{{}, {}, {NoteLabel::Kind::Error, raw.problem}}
                           : previewRows(request, EngineRunner::PinOut, stop);
            return [this, raw, rows] {
                showText(raw);
                showRows(rows);
            };
        },
        [this](const QString &reason) {
            setNote({NoteLabel::Kind::Error, reason});
        });
}

void Preview::showRows(const PreviewRows &preview)
{
    m_rows->setRows(preview.columns, preview.rows);
    fitColumns();
    const auto count = static_cast<int>(preview.rows.size());
    const bool isCut = count == EngineRunner::kPreviewRows;
    setNote(!preview.problem.text.isEmpty() ? preview.problem
            : isCut ? Note{NoteLabel::Kind::Remark, tr("The first %n rows", nullptr, count)}
                    : Note{NoteLabel::Kind::Remark, tr("Rows: %1").arg(count)});
}

void Preview::fitColumns()
{
    for (int i = 0; i < qMin(kFittedColumns, m_rows->columnCount({})); ++i) {
        m_table->resizeColumnToContents(i);
        m_table->setColumnWidth(i, qMin(kMaxColumnWidth, m_table->columnWidth(i)));
    }
}

/// Shown even when the run fails: the text helps to find the cause.
void Preview::showText(const RawText &raw)
{
    m_text->setPlainText(raw.text);
    if (!raw.problem.isEmpty()) {
        m_caption->setNote(NoteLabel::Kind::Error, raw.problem);
    } else if (raw.name.isEmpty()) {
        m_caption->setNote(NoteLabel::Kind::Remark,
                           tr("The input pin gives the file, or it has no name"));
    } else {
        m_caption->setNote(
            NoteLabel::Kind::Remark,
            (raw.form == RawForm::Bytes ? tr("The first bytes of %1") : tr("The beginning of %1"))
                .arg(raw.name));
    }
}

} // namespace corvanta
