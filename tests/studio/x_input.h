// The keyboard and the mouse of an X server, as its users have them: the events come from the
// server (XTEST), to whatever program has the focus.
//
// The libraries are loaded at run time, so that building the tests needs no headers of X.
#pragma once
#include <QLibrary>
#include <QPoint>
#include <QString>

#include <memory>

namespace corvanta::test {

class XInput
{
public:
    /// Null if this program is not on an X server, or if it has no XTEST.
    static std::unique_ptr<XInput> connect();
    ~XInput();
    XInput(const XInput &) = delete;
    XInput &operator=(const XInput &) = delete;

    /// Press and release a key with modifiers. Only the keys that the tests use have a symbol.
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    /// A letter of the layout, with Shift if it needs that.
    void letter(QChar letter);
    /// In pixels of the screen.
    void moveTo(QPoint place);
    void button(bool isPressed);
    /// Whether a window has the focus; the server begins without one.
    bool hasFocus();

private:
    using Symbol = unsigned long;
    XInput();
    void symbol(Symbol symbol, bool isPressed);

    QLibrary m_x{QStringLiteral("X11"), 6};
    QLibrary m_test{QStringLiteral("Xtst"), 6};
    void *m_display = nullptr;
};

} // namespace corvanta::test
