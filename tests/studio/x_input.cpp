// Calls of Xlib by name. Numbers of symbols are those of X11/keysymdef.h.
#include "tests/studio/x_input.h"

#include <QGuiApplication>
#include <QMap>

namespace corvanta::test {

namespace {

constexpr unsigned long kShift = 0xffe1;
constexpr unsigned long kControl = 0xffe3;
constexpr unsigned long kAlt = 0xffe9;

/// Call a function of a library.
template <class Result = int, class... Arguments>
Result call(QLibrary &library, const char *name, Arguments... arguments)
{
    const auto function = reinterpret_cast<Result (*)(Arguments...)>(library.resolve(name));
    return function(arguments...);
}

unsigned long symbolOf(Qt::Key key)
{
    static const QMap<int, unsigned long> symbols{{Qt::Key_Return, 0xff0d},
                                                  {Qt::Key_Tab, 0xff09},
                                                  {Qt::Key_Escape, 0xff1b},
                                                  {Qt::Key_F5, 0xffc2},
                                                  {Qt::Key_Delete, 0xffff}};
    // The others have the numbers of their small letters.
    return symbols.value(key, QChar(key).toLower().unicode());
}

} // namespace

XInput::XInput() = default;

std::unique_ptr<XInput> XInput::connect()
{
    std::unique_ptr<XInput> input(new XInput);
    if (QGuiApplication::platformName() != QLatin1String("xcb") || !input->m_x.load() ||
        !input->m_test.load()) {
        return nullptr;
    }
    input->m_display = call<void *>(input->m_x, "XOpenDisplay", static_cast<char *>(nullptr));
    return input->m_display == nullptr ? nullptr : std::move(input);
}

XInput::~XInput()
{
    if (m_display != nullptr) {
        call(m_x, "XCloseDisplay", m_display);
    }
}

void XInput::symbol(Symbol symbol, bool isPressed)
{
    const auto code = call<unsigned char>(m_x, "XKeysymToKeycode", m_display, symbol);
    call(m_test, "XTestFakeKeyEvent", m_display, static_cast<unsigned>(code), int(isPressed), 0UL);
    call(m_x, "XSync", m_display, 0);
}

void XInput::key(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    const std::pair<Qt::KeyboardModifier, Symbol> all[] = {
        {Qt::ShiftModifier, kShift}, {Qt::ControlModifier, kControl}, {Qt::AltModifier, kAlt}};
    for (const bool isPressed : {true, false}) {
        for (const auto &[modifier, number] : all) {
            if (modifiers.testFlag(modifier)) {
                symbol(number, isPressed);
            }
        }
        if (isPressed) {
            symbol(symbolOf(key), true);
            symbol(symbolOf(key), false);
        }
    }
}

void XInput::letter(QChar letter)
{
    const Symbol wanted = letter.unicode();
    const auto code = call<unsigned char>(m_x, "XKeysymToKeycode", m_display, wanted);
    const auto plain = call<Symbol>(m_x, "XkbKeycodeToKeysym", m_display, code, 0, 0);
    const bool isShifted = plain != wanted;
    if (isShifted) {
        symbol(kShift, true);
    }
    symbol(wanted, true);
    symbol(wanted, false);
    if (isShifted) {
        symbol(kShift, false);
    }
}

void XInput::moveTo(QPoint place)
{
    call(m_test, "XTestFakeMotionEvent", m_display, -1, place.x(), place.y(), 0UL);
    call(m_x, "XSync", m_display, 0);
}

void XInput::button(bool isPressed)
{
    call(m_test, "XTestFakeButtonEvent", m_display, 1U, int(isPressed), 0UL);
    call(m_x, "XSync", m_display, 0);
}

bool XInput::hasFocus()
{
    Symbol window = 0;
    int revert = 0;
    call(m_x, "XGetInputFocus", m_display, &window, &revert);
    const auto root = call<Symbol>(m_x, "XDefaultRootWindow", m_display);
    return window > 1 && window != root; // 0 and 1: none
}

} // namespace corvanta::test
