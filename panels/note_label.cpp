#include "panels/note_label.h"

#include "panels/colors.h"
#include "panels/glyphs.h"

#include <QEvent>
#include <QPainter>

namespace corvanta {

namespace {

constexpr int kMarkPixels = 14; // at the usual size of the font
constexpr int kMarkGap = 4;

QColor colorOf(NoteLabel::Kind kind, const QPalette &palette)
{
    switch (kind) {
    case NoteLabel::Kind::Warning:
        return warningColor(palette);
    case NoteLabel::Kind::Error:
        return errorColor(palette);
    case NoteLabel::Kind::Remark:
        break;
    }
    return remarkColor(palette);
}

} // namespace

NoteLabel::NoteLabel(QWidget *parent)
    : QLabel(parent)
{
    setWordWrap(true);
    setTextFormat(Qt::PlainText); // notes contain names from files
    setVisible(false);
    // Without it, a long word (a path) would widen the panel.
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

/// The mark of a problem is left of the text, which makes room for it.
void NoteLabel::setNote(Kind kind, const QString &text)
{
    m_kind = kind;
    setText(text);
    setVisible(!text.isEmpty()); // an empty line would leave a gap
    setContentsMargins(kind == Kind::Remark ? 0 : markSize() + kMarkGap, 0, 0, 0);
    updateColor();
}

void NoteLabel::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        updateColor();
    }
}

int NoteLabel::markSize() const
{
    return scaledToFont(kMarkPixels, fontMetrics());
}

void NoteLabel::updateColor()
{
    // The parent's palette: the own one already has the colour.
    const QPalette base = parentWidget() != nullptr ? parentWidget()->palette() : QPalette();
    const QColor color = colorOf(m_kind, base);
    if (palette().color(QPalette::WindowText) != color) { // setPalette() calls changeEvent()
        QPalette changed = base;
        changed.setColor(QPalette::WindowText, color);
        setPalette(changed);
    }
}

void NoteLabel::paintEvent(QPaintEvent *event)
{
    QLabel::paintEvent(event);
    if (m_kind != Kind::Remark) {
        // The contents margin leaves room for the mark, next to the first line.
        QPainter painter(this);
        const int top = qMax(0, (fontMetrics().height() - markSize()) / 2);
        painter.drawPixmap(0, top,
                           glyphPixmap(Glyph::Warning, palette().color(QPalette::WindowText),
                                       markSize(), devicePixelRatioF()));
    }
}

} // namespace corvanta
