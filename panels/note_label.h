// A line of text below a field: why the field is disabled, what is wrong with its value, or an
// explanation.
//
// The text is wrapped, and its colour follows the palette. Threads: the GUI thread.
#pragma once
#include <QLabel>

namespace corvanta {

class NoteLabel final : public QLabel
{
public:
    /// A problem also has a mark, so that its colour is not the only sign.
    enum class Kind { Remark, Warning, Error };

    explicit NoteLabel(QWidget *parent = nullptr);
    /// Show plain text; an empty text hides the label.
    void setNote(Kind kind, const QString &text);
    /// The kind of the last setNote().
    Kind kind() const { return m_kind; }

protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    /// Take the colour of the kind from the palette of the parent.
    void updateColor();
    int markSize() const; // in logical pixels

    Kind m_kind = Kind::Remark;
};

} // namespace corvanta
