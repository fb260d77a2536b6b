#include "panels/folding_group.h"

#include "panels/field_editor.h"
#include "panels/glyphs.h"
#include "panels/note_label.h"

#include <QAbstractButton>
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr int kIndent = 20;             // of the fields: the arrow of the heading is left of them
constexpr int kMaxLabelCharacters = 48; // in two lines next to a field

QFrame *makeRule()
{
    auto *const rule = new QFrame;
    rule->setFrameShape(QFrame::HLine);
    rule->setFrameShadow(QFrame::Plain);
    rule->setForegroundRole(QPalette::Mid);
    return rule;
}

/// Wide editors and long labels need the whole width.
bool canBeLeft(const QLabel *label, const FieldEditor &editor)
{
    return label != nullptr && !editor.isWide() && label->text().size() <= kMaxLabelCharacters;
}

} // namespace

FoldingGroup::FoldingGroup(const QString &title, QWidget *parent)
    : QWidget(parent)
    , m_headingRow(new QHBoxLayout)
    , m_heading(new QToolButton)
    , m_status(new NoteLabel)
    , m_content(new QWidget)
    , m_grid(new QGridLayout(m_content))
{
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addWidget(makeRule());
    column->addLayout(m_headingRow);
    column->addWidget(m_content);
    m_headingRow->addWidget(m_heading, 0, Qt::AlignLeft);
    m_headingRow->addWidget(m_status, 1);
    m_headingRow->addStretch(0);
    m_grid->setContentsMargins(kIndent, 2, 0, 8);
    m_grid->setColumnStretch(1, 1);
    m_grid->setHorizontalSpacing(10);
    m_grid->setVerticalSpacing(6);

    // Screen readers read the name; the ampersand marks the mnemonic.
    QString name = title;
    m_heading->setText(title);
    m_heading->setAccessibleName(name.remove(u'&'));
    m_heading->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_heading->setAutoRaise(true);
    m_heading->setObjectName(u"heading"_s);
    m_heading->setFocusPolicy(Qt::StrongFocus); // tool buttons are skipped by Tab otherwise
    connect(m_heading, &QToolButton::clicked, this, [this] { setFolded(!m_isFolded); });
    updateHeading();
}

void FoldingGroup::addField(QLabel *label, FieldEditor *editor, NoteLabel *note,
                            QAbstractButton *reset)
{
    // No field changes its size when the button appears.
    QSizePolicy policy = reset->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    reset->setSizePolicy(policy);
    m_fields.push_back({label, editor, note, reset, m_grid->rowCount()});
    place(m_fields.back(), 0);
}

void FoldingGroup::place(const Field &field, int labelWidth)
{
    const auto &[label, editor, note, reset, row] = field;
    const bool isLeft = labelWidth > 0 && canBeLeft(label, *editor);
    const bool isAbove = label != nullptr && !isLeft;
    for (QWidget *const widget : std::initializer_list<QWidget *>{label, editor, note, reset}) {
        if (widget != nullptr) {
            m_grid->removeWidget(widget);
        }
    }
    // Tab follows the order of these calls, and the button may be above the editor.
    m_grid->addWidget(reset, isAbove ? row : row + 1, 2, Qt::AlignTop);
    // A check box shows its label itself and needs the whole width, as lists do.
    const int column = isLeft ? 1 : 0;
    m_grid->addWidget(editor, row + 1, column, 1, (isAbove ? 3 : 2) - column,
                      label == nullptr ? Qt::AlignVCenter : Qt::Alignment());
    m_grid->addWidget(note, row + 2, column, 1, 2 - column);
    if (isAbove) {
        label->setMinimumSize(0, 0);
        label->setMaximumWidth(QWIDGETSIZE_MAX);
        m_grid->addWidget(label, row, 0, 1, 2, Qt::AlignBottom);
    } else if (isLeft) {
        // On one line with the text of the control.
        label->setMinimumHeight(editor->focusProxy()->sizeHint().height());
        label->setFixedWidth(labelWidth);
        m_grid->addWidget(label, row + 1, 0, Qt::AlignTop);
    }
}

void FoldingGroup::addWidget(QWidget *widget)
{
    m_widgets.push_back(widget);
    m_grid->addWidget(widget, m_grid->rowCount(), 0, 1, 3);
}

void FoldingGroup::setLabelWidth(int width)
{
    m_grid->setColumnMinimumWidth(0, width);
    for (const Field &field : m_fields) {
        place(field, width);
    }
}

int FoldingGroup::longestLabel() const
{
    int width = 0;
    for (const Field &field : m_fields) {
        if (canBeLeft(field.label, *field.editor)) {
            width = qMax(width, fullWidth(*field.label));
        }
    }
    return width;
}

int FoldingGroup::minimumWidth(int labelWidth) const
{
    const int gap = m_grid->horizontalSpacing();
    int width = 0;
    for (const QWidget *const widget : m_widgets) {
        width = qMax(width, widget->minimumSizeHint().width());
    }
    for (const auto &[label, editor, note, reset, row] : m_fields) {
        const bool isLeft = labelWidth > 0 && canBeLeft(label, *editor);
        const int room = gap + reset->sizeHint().width();
        int own = editor->minimumSizeHint().width();
        if (isLeft) {
            own += labelWidth + gap + room;
        } else {
            own =
                label == nullptr ? own + room : qMax(own, label->minimumSizeHint().width() + room);
        }
        width = qMax(width, own);
    }
    return qMax(m_headingRow->minimumSize().width(), kIndent + width);
}

void FoldingGroup::setFolded(bool isFolded)
{
    m_isFolded = isFolded;
    updateHeading();
    m_toggled();
}

void FoldingGroup::setStatus(const QString &text, bool isProblem)
{
    m_status->setNote(isProblem ? NoteLabel::Kind::Error : NoteLabel::Kind::Remark, text);
}

void FoldingGroup::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    // The glyph has a colour of the palette, and the heading its own font.
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        updateHeading();
    }
}

void FoldingGroup::updateHeading()
{
    QFont bold = font();
    bold.setBold(true);
    m_heading->setFont(bold);
    constexpr int iconPixels = 16;
    const int size = scaledToFont(iconPixels, fontMetrics());
    m_heading->setIconSize({size, size});
    m_heading->setIcon(glyphIcon(m_isFolded ? Glyph::Folded : Glyph::Unfolded,
                                 palette().color(QPalette::WindowText)));
    m_heading->setAccessibleDescription(m_isFolded ? tr("Shows the fields of this group")
                                                   : tr("Hides the fields of this group"));
    m_heading->setProperty("isFolded", m_isFolded); // for tests, in any language
    m_content->setVisible(!m_isFolded);
}

} // namespace corvanta
