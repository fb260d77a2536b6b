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

} // namespace

FoldingGroup::FoldingGroup(const QString &title, QWidget *parent)
    : QWidget(parent)
    , m_heading(new QToolButton)
    , m_status(new NoteLabel)
    , m_content(new QWidget)
    , m_grid(new QGridLayout(m_content))
{
    auto *const column = new QVBoxLayout(this);
    auto *const row = new QHBoxLayout;
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addWidget(makeRule());
    column->addLayout(row);
    column->addWidget(m_content);
    row->addWidget(m_heading, 0, Qt::AlignLeft);
    row->addWidget(m_status, 1);
    row->addStretch(0);
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
    int row = m_grid->rowCount();
    m_grid->addWidget(reset, row, 2, Qt::AlignTop);
    // No field changes its size when the button appears.
    QSizePolicy policy = reset->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    reset->setSizePolicy(policy);
    // A check box shows its label itself and needs the whole width, as lists do.
    if (label == nullptr) {
        m_grid->addWidget(editor, row, 0, 1, 2, Qt::AlignVCenter);
        m_grid->addWidget(note, row + 1, 0, 1, 2);
    } else if (hasLabelAbove(*label, *editor)) {
        m_grid->addWidget(label, row++, 0, 1, 2);
        m_grid->addWidget(editor, row, 0, 1, 3);
        m_grid->addWidget(note, row + 1, 0, 1, 2);
    } else {
        // On one line with the text of the control.
        label->setMinimumHeight(editor->focusProxy()->sizeHint().height());
        m_grid->addWidget(label, row, 0, Qt::AlignTop);
        m_grid->addWidget(editor, row, 1);
        m_grid->addWidget(note, row + 1, 1);
    }
}

/// A long label next to a field would make the fields of the whole group narrow.
bool FoldingGroup::hasLabelAbove(const QLabel &label, const FieldEditor &editor)
{
    return editor.isWide() || label.text().size() > kMaxLabelCharacters;
}

void FoldingGroup::addWidget(QWidget *widget)
{
    m_grid->addWidget(widget, m_grid->rowCount(), 0, 1, 3);
}

void FoldingGroup::setLabelWidth(int width)
{
    m_grid->setColumnMinimumWidth(0, width);
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
