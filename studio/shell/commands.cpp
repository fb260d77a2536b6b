// The table of all commands, and the menus and tool bar that are made from it.
//
// A line of the table is all that a new command needs, apart from the function that it starts.
#include "studio/shell/commands.h"

#include "studio/shell/command_icons.h"
#include "studio/shell/preferences/settings.h"
#include "studio/widgets/part_action.h"

#include <QCoreApplication>
#include <QMenuBar>
#include <QSet>
#include <QToolBar>
#include <QWidget>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// What a command is, apart from its text.
enum Flag : unsigned {
    kPlain = 0,
    kCheckable = 1,
    kInToolBar = 2,
    kSubMenu = 4,        ///< not a command: a menu that others are in, or that is filled later
    kSeparatorAfter = 8, ///< in its menu
    kChecked = 16,       ///< at the start
    kOfGraph = 32,       ///< its shortcut means something else outside the canvas and the outline
};

struct CommandInfo
{
    const char *menu; ///< name of its menu
    const char *name;
    const char *text;
    const char *keys; ///< "" for none; several are separated by "; "
    const char *tip;  ///< for the status bar, the tool tip and the shortcut editor
    unsigned flags = kPlain;
};

constexpr CommandInfo kMenus[] = {
    {"", "file", QT_TRANSLATE_NOOP("Commands", "&File"), "", ""},
    {"", "edit", QT_TRANSLATE_NOOP("Commands", "&Edit"), "", ""},
    {"", "view", QT_TRANSLATE_NOOP("Commands", "&View"), "", ""},
    {"", "graph", QT_TRANSLATE_NOOP("Commands", "&Graph"), "", ""},
    {"", "run", QT_TRANSLATE_NOOP("Commands", "&Run"), "", ""},
    {"", "help", QT_TRANSLATE_NOOP("Commands", "&Help"), "", ""},
};

constexpr CommandInfo kCommands[] = {
    {"file", "file.new", QT_TRANSLATE_NOOP("Commands", "&New"), "Ctrl+N",
     QT_TRANSLATE_NOOP("Commands", "Start an empty graph in a new tab"), kInToolBar},
    {"file", "file.open", QT_TRANSLATE_NOOP("Commands", "&Open..."), "Ctrl+O",
     QT_TRANSLATE_NOOP("Commands", "Open graph files"), kInToolBar},
    {"file", "file.recent", QT_TRANSLATE_NOOP("Commands", "Open &Recent"), "",
     QT_TRANSLATE_NOOP("Commands", "Open a graph of the last sessions"), kSubMenu},
    {"file", "file.start", QT_TRANSLATE_NOOP("Commands", "S&tart Page"), "",
     QT_TRANSLATE_NOOP("Commands", "Show recent files and examples"), kSeparatorAfter},
    {"file", "file.save", QT_TRANSLATE_NOOP("Commands", "&Save"), "Ctrl+S",
     QT_TRANSLATE_NOOP("Commands", "Save the graph"), kInToolBar},
    {"file", "file.saveAs", QT_TRANSLATE_NOOP("Commands", "Save &As..."), "Ctrl+Shift+S",
     QT_TRANSLATE_NOOP("Commands", "Save the graph in another file")},
    {"file", "file.saveAll", QT_TRANSLATE_NOOP("Commands", "Save A&ll"), "Ctrl+Alt+S",
     QT_TRANSLATE_NOOP("Commands", "Save all changed graphs")},
    {"file", "file.reload", QT_TRANSLATE_NOOP("Commands", "Reloa&d"), "",
     QT_TRANSLATE_NOOP("Commands",
                       "Read the graph from its file again, without the unsaved changes"),
     kSeparatorAfter},
    {"file", "file.export", QT_TRANSLATE_NOOP("Commands", "&Export"), "",
     QT_TRANSLATE_NOOP("Commands", "Save a picture or a script of the graph"), kSubMenu},
    {"file.export", "export.svg", QT_TRANSLATE_NOOP("Commands", "As &SVG..."), "",
     QT_TRANSLATE_NOOP("Commands", "Save the graph as a drawing")},
    {"file.export", "export.png", QT_TRANSLATE_NOOP("Commands", "As &PNG..."), "",
     QT_TRANSLATE_NOOP("Commands", "Save the graph as an image")},
    {"file.export", "export.pdf", QT_TRANSLATE_NOOP("Commands", "As P&DF..."), "",
     QT_TRANSLATE_NOOP("Commands", "Save the graph as a document"), kSeparatorAfter},
    {"file.export", "export.command", QT_TRANSLATE_NOOP("Commands", "&Copy as Command"),
     "Ctrl+Shift+C",
     QT_TRANSLATE_NOOP("Commands", "Save the graph and copy the command that runs it")},
    {"file.export", "export.script", QT_TRANSLATE_NOOP("Commands", "As Shell Sc&ript..."), "",
     QT_TRANSLATE_NOOP("Commands", "Save the graph and a script that runs it")},
    {"file", "file.close", QT_TRANSLATE_NOOP("Commands", "&Close"), "Ctrl+W",
     QT_TRANSLATE_NOOP("Commands", "Close the tab"), kSeparatorAfter},
    {"file", "file.quit", QT_TRANSLATE_NOOP("Commands", "&Quit"), "Ctrl+Q",
     QT_TRANSLATE_NOOP("Commands", "Close the window")},

    {"edit", "edit.undo", QT_TRANSLATE_NOOP("Commands", "&Undo"), "Ctrl+Z",
     QT_TRANSLATE_NOOP("Commands", "Take back the last change"), kInToolBar},
    {"edit", "edit.redo", QT_TRANSLATE_NOOP("Commands", "&Redo"), "Ctrl+Shift+Z; Ctrl+Y",
     QT_TRANSLATE_NOOP("Commands", "Make the change again that was taken back"),
     kInToolBar | kSeparatorAfter},
    {"edit", "edit.cut", QT_TRANSLATE_NOOP("Commands", "Cu&t"), "Ctrl+X",
     QT_TRANSLATE_NOOP("Commands", "Move the selected actions to the clipboard"), kOfGraph},
    {"edit", "edit.copy", QT_TRANSLATE_NOOP("Commands", "&Copy"), "Ctrl+C",
     QT_TRANSLATE_NOOP("Commands", "Copy the selected actions and the links between them"),
     kOfGraph},
    {"edit", "edit.paste", QT_TRANSLATE_NOOP("Commands", "&Paste"), "Ctrl+V",
     QT_TRANSLATE_NOOP("Commands", "Add the actions of the clipboard"), kOfGraph},
    {"edit", "edit.duplicate", QT_TRANSLATE_NOOP("Commands", "Dup&licate"), "Ctrl+D",
     QT_TRANSLATE_NOOP("Commands", "Add copies of the selected actions")},
    {"edit", "edit.delete", QT_TRANSLATE_NOOP("Commands", "&Delete"), "Del; Backspace",
     QT_TRANSLATE_NOOP("Commands", "Remove the selected actions and links"), kOfGraph},
    {"edit", "edit.deleteJoin", QT_TRANSLATE_NOOP("Commands", "Delete and &Join"), "Ctrl+Del",
     QT_TRANSLATE_NOOP("Commands", "Remove the selected actions and link those around them"),
     kOfGraph},
    {"edit", "edit.selectAll", QT_TRANSLATE_NOOP("Commands", "Select &All"), "Ctrl+A",
     QT_TRANSLATE_NOOP("Commands", "Select all actions"), kOfGraph | kSeparatorAfter},
    {"edit", "edit.rename", QT_TRANSLATE_NOOP("Commands", "Re&name"), "F2",
     QT_TRANSLATE_NOOP("Commands", "Change the name of the selected action"), kOfGraph},
    {"edit", "edit.comment", QT_TRANSLATE_NOOP("Commands", "C&omment"), "Shift+F2",
     QT_TRANSLATE_NOOP("Commands", "Change the comment of the selected action")},
    {"edit", "edit.variables", QT_TRANSLATE_NOOP("Commands", "&Variables"), "Ctrl+Shift+V",
     QT_TRANSLATE_NOOP("Commands", "Edit the variables of the graph"), kSeparatorAfter},
    {"edit", "edit.shortcuts", QT_TRANSLATE_NOOP("Commands", "&Shortcuts..."), "Ctrl+K, Ctrl+S",
     QT_TRANSLATE_NOOP("Commands", "List and change the shortcuts of all commands")},
    {"edit", "edit.preferences", QT_TRANSLATE_NOOP("Commands", "Pre&ferences..."), "Ctrl+,",
     QT_TRANSLATE_NOOP("Commands", "Colours, text size, language and session")},

    {"view", "view.zoomIn", QT_TRANSLATE_NOOP("Commands", "Zoom &In"),
     "Ctrl++; Ctrl+=", QT_TRANSLATE_NOOP("Commands", "Show the graph larger")},
    {"view", "view.zoomOut", QT_TRANSLATE_NOOP("Commands", "Zoom &Out"), "Ctrl+-",
     QT_TRANSLATE_NOOP("Commands", "Show the graph smaller")},
    {"view", "view.zoomReset", QT_TRANSLATE_NOOP("Commands", "&Actual Size"), "Ctrl+0",
     QT_TRANSLATE_NOOP("Commands", "Show the graph at 100 %")},
    {"view", "view.zoomFit", QT_TRANSLATE_NOOP("Commands", "&Fit Graph"), "Ctrl+9",
     QT_TRANSLATE_NOOP("Commands", "Show the whole graph"), kInToolBar},
    {"view", "view.overview", QT_TRANSLATE_NOOP("Commands", "Overvie&w"), "Ctrl+Shift+O",
     QT_TRANSLATE_NOOP("Commands", "Show the whole graph small in a corner"), kCheckable},
    {"view", "view.snap", QT_TRANSLATE_NOOP("Commands", "&Snap to Grid"), "",
     QT_TRANSLATE_NOOP("Commands", "Place actions on a grid"),
     kCheckable | kChecked | kSeparatorAfter},
    {"view", "view.larger", QT_TRANSLATE_NOOP("Commands", "&Larger Text"), "Ctrl+Alt++; Ctrl+Alt+=",
     QT_TRANSLATE_NOOP("Commands", "Make all texts of the window larger")},
    {"view", "view.smaller", QT_TRANSLATE_NOOP("Commands", "S&maller Text"), "Ctrl+Alt+-",
     QT_TRANSLATE_NOOP("Commands", "Make all texts of the window smaller")},
    {"view", "view.dark", QT_TRANSLATE_NOOP("Commands", "&Dark Colours"), "",
     QT_TRANSLATE_NOOP("Commands", "Light text on a dark background"),
     kCheckable | kSeparatorAfter},
    {"view", "view.docks", QT_TRANSLATE_NOOP("Commands", "&Panels"), "",
     QT_TRANSLATE_NOOP("Commands", "Show or hide parts of the window"), kSubMenu},
    {"view", "view.fullScreen", QT_TRANSLATE_NOOP("Commands", "F&ull Screen"), "F11",
     QT_TRANSLATE_NOOP("Commands", "Use the whole screen"), kCheckable | kSeparatorAfter},
    {"view", "view.canvas", QT_TRANSLATE_NOOP("Commands", "&Canvas"), "Ctrl+1",
     QT_TRANSLATE_NOOP("Commands", "Put the keyboard focus on the graph")},
    {"view", "view.palette", QT_TRANSLATE_NOOP("Commands", "Palett&e"), "Ctrl+2",
     QT_TRANSLATE_NOOP("Commands", "Search an action to add to the graph")},
    {"view", "view.properties", QT_TRANSLATE_NOOP("Commands", "P&roperties"), "Ctrl+3",
     QT_TRANSLATE_NOOP("Commands",
                       "Put the keyboard focus on the parameters of the selected action")},
    {"view", "view.outline", QT_TRANSLATE_NOOP("Commands", "Outli&ne"), "Ctrl+4",
     QT_TRANSLATE_NOOP("Commands", "Put the keyboard focus on the tree of actions and links")},
    {"view", "view.problems", QT_TRANSLATE_NOOP("Commands", "Pro&blems"), "Ctrl+5",
     QT_TRANSLATE_NOOP("Commands", "Put the keyboard focus on the list of problems")},
    {"view", "view.log", QT_TRANSLATE_NOOP("Commands", "Lo&g"), "Ctrl+6",
     QT_TRANSLATE_NOOP("Commands", "Put the keyboard focus on the log")},
    {"view", "view.data", QT_TRANSLATE_NOOP("Commands", "Da&ta"), "Ctrl+7",
     QT_TRANSLATE_NOOP("Commands", "Put the keyboard focus on the rows of the selected action"),
     kSeparatorAfter},
    {"view", "view.nextTab", QT_TRANSLATE_NOOP("Commands", "Ne&xt Tab"), "Ctrl+Tab; Ctrl+PgDown",
     QT_TRANSLATE_NOOP("Commands", "Show the next tab")},
    {"view", "view.previousTab", QT_TRANSLATE_NOOP("Commands", "Pre&vious Tab"),
     "Ctrl+Shift+Tab; Ctrl+PgUp", QT_TRANSLATE_NOOP("Commands", "Show the previous tab")},

    {"graph", "graph.add", QT_TRANSLATE_NOOP("Commands", "&Add Action..."), "Ctrl+Space",
     QT_TRANSLATE_NOOP(
         "Commands",
         "Search an action to add: after the selected action, or into the selected link")},
    {"graph", "graph.link", QT_TRANSLATE_NOOP("Commands", "&Link..."), "Ctrl+L",
     QT_TRANSLATE_NOOP(
         "Commands",
         "Link the selected action to another one, or two selected actions to each other")},
    {"graph", "graph.note", QT_TRANSLATE_NOOP("Commands", "Add &Note..."), "Ctrl+Alt+N",
     QT_TRANSLATE_NOOP("Commands", "Write a note on the canvas that belongs to no action")},
    {"graph", "graph.insert", QT_TRANSLATE_NOOP("Commands", "&Insert into Link"), "Ctrl+I",
     QT_TRANSLATE_NOOP("Commands", "Insert the selected action into the selected link"),
     kSeparatorAfter},
    {"graph", "graph.layout", QT_TRANSLATE_NOOP("Commands", "Lay &Out"), "Ctrl+Shift+L",
     QT_TRANSLATE_NOOP("Commands", "Arrange all actions from left to right"), kInToolBar},
    {"graph", "graph.align", QT_TRANSLATE_NOOP("Commands", "Ali&gn"), "",
     QT_TRANSLATE_NOOP("Commands", "Align the selected actions"), kSubMenu},
    {"graph.align", "align.left", QT_TRANSLATE_NOOP("Commands", "&Left Edges"), "Ctrl+Alt+Left",
     QT_TRANSLATE_NOOP("Commands", "Move the selected actions to the leftmost one")},
    {"graph.align", "align.center", QT_TRANSLATE_NOOP("Commands", "&Centres"), "",
     QT_TRANSLATE_NOOP("Commands", "Move the selected actions above each other")},
    {"graph.align", "align.right", QT_TRANSLATE_NOOP("Commands", "&Right Edges"), "Ctrl+Alt+Right",
     QT_TRANSLATE_NOOP("Commands", "Move the selected actions to the rightmost one"),
     kSeparatorAfter},
    {"graph.align", "align.top", QT_TRANSLATE_NOOP("Commands", "&Top Edges"), "Ctrl+Alt+Up",
     QT_TRANSLATE_NOOP("Commands", "Move the selected actions to the topmost one")},
    {"graph.align", "align.middle", QT_TRANSLATE_NOOP("Commands", "&Middles"), "",
     QT_TRANSLATE_NOOP("Commands", "Move the selected actions next to each other")},
    {"graph.align", "align.bottom", QT_TRANSLATE_NOOP("Commands", "&Bottom Edges"), "Ctrl+Alt+Down",
     QT_TRANSLATE_NOOP("Commands", "Move the selected actions to the lowest one"), kSeparatorAfter},
    {"graph.align", "align.columns", QT_TRANSLATE_NOOP("Commands", "Distribute &Horizontally"), "",
     QT_TRANSLATE_NOOP("Commands", "Make the horizontal distances of the selected actions equal")},
    {"graph.align", "align.rows", QT_TRANSLATE_NOOP("Commands", "Distribute &Vertically"), "",
     QT_TRANSLATE_NOOP("Commands", "Make the vertical distances of the selected actions equal")},

    {"run", "run.all", QT_TRANSLATE_NOOP("Commands", "&Run"), "F5",
     QT_TRANSLATE_NOOP("Commands", "Run the graph"), kInToolBar},
    {"run", "run.here", QT_TRANSLATE_NOOP("Commands", "Run up to &Here"), "Ctrl+F5",
     QT_TRANSLATE_NOOP("Commands", "Run the selected action and all actions that it depends on"),
     kInToolBar},
    {"run", "run.stop", QT_TRANSLATE_NOOP("Commands", "&Stop"), "Shift+F5",
     QT_TRANSLATE_NOOP("Commands", "Stop the run"), kInToolBar},
    {"run", "run.again", QT_TRANSLATE_NOOP("Commands", "Run A&gain"), "Ctrl+Shift+F5",
     QT_TRANSLATE_NOOP("Commands", "Repeat the last run, whole or up to an action"),
     kSeparatorAfter},
    {"run", "run.data", QT_TRANSLATE_NOOP("Commands", "Show &Data"), "F6",
     QT_TRANSLATE_NOOP("Commands", "Show the rows of the selected action")},

    {"help", "help.action", QT_TRANSLATE_NOOP("Commands", "&Help on the Action"), "F1",
     QT_TRANSLATE_NOOP("Commands", "Describe the selected action and its parameters")},
    {"help", "help.keys", QT_TRANSLATE_NOOP("Commands", "&Keyboard"), "Shift+F1",
     QT_TRANSLATE_NOOP("Commands", "List all shortcuts"), kSeparatorAfter},
    {"help", "help.about", QT_TRANSLATE_NOOP("Commands", "&About"), "",
     QT_TRANSLATE_NOOP("Commands", "Version and modules")},
};

// Properties of a QAction.
constexpr char kDefaultKeys[] = "defaultShortcut";
constexpr char kPart[] = "partOfWindow";

/// The table is constant, so its texts are only marked there and translated here.
QString translated(const char *text)
{
    return QCoreApplication::translate("Commands", text);
}

/// All sequences of "Ctrl+Y; F3".
QList<QKeySequence> sequences(const char *keys)
{
    return QKeySequence::listFromString(QString::fromLatin1(keys), QKeySequence::PortableText);
}

const CommandInfo &infoOf(const QAction &action)
{
    const auto *const found = std::ranges::find_if(kCommands, [&](const CommandInfo &info) {
        return action.objectName() == QLatin1StringView(info.name);
    });
    return *found; // every QAction is made from the table
}

QAction *makeAction(const CommandInfo &info, QWidget *window)
{
    auto *const action = new QAction(translated(info.text), window); // the window owns it
    // The settings and the parts of the window find the command by it.
    action->setObjectName(QLatin1StringView(info.name));
    action->setStatusTip(translated(info.tip));
    action->setCheckable((info.flags & kCheckable) != 0);
    action->setChecked((info.flags & kChecked) != 0);
    action->setShortcuts(sequences(info.keys));
    // Kept apart: shortcuts of the user replace those of the action.
    action->setProperty(kDefaultKeys, QVariant::fromValue(action->shortcut()));
    return action;
}

/// Text without the mnemonic, or the meaning of a button of a part, and the shortcut.
void updateToolTip(QAction *action)
{
    const bool isOfPart = action->property(kPart).isValid();
    showShortcut(action, isOfPart ? action->statusTip() : action->text().remove(u'&'));
}

} // namespace

Commands::Commands(QWidget *window, Settings &settings)
    : QObject(window)
    , m_settings(settings)
{
    for (const CommandInfo &info : kCommands) {
        // It has no shortcut and starts nothing.
        if ((info.flags & kSubMenu) != 0) {
            continue;
        }
        QAction *const action = makeAction(info, window);
        // One that the user has set replaces all of the table.
        if (const auto keys = settings.shortcut(action->objectName())) {
            action->setShortcut(*keys);
        }
        updateToolTip(action);
        if ((info.flags & kOfGraph) != 0) {
            // Keys such as Delete belong to a text field while it has the focus.
            action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        } else {
            // Also without a menu bar, for example in full screen.
            window->addAction(action);
        }
        m_actions.push_back(action);
        m_byName[action->objectName()] = action;
    }
}

QVector<QAction *> Commands::actionsWith(unsigned flag) const
{
    QVector<QAction *> found;
    std::copy_if(m_actions.begin(), m_actions.end(), std::back_inserter(found),
                 [flag](const QAction *action) { return (infoOf(*action).flags & flag) != 0; });
    return found;
}

void Commands::updateIcons(const QPalette &palette)
{
    // The icons have the colour of the texts, which differs between themes.
    for (QAction *const action : actionsWith(kInToolBar)) {
        action->setIcon(commandIcon(action->objectName(), palette));
    }
}

void Commands::addGraphShortcuts(QWidget *widget) const
{
    widget->addActions(actionsWith(kOfGraph));
}

QAction *Commands::operator[](const QString &name) const
{
    // Names are constants of the program.
    return m_byName.at(name);
}

void Commands::fill(QMenuBar *bar)
{
    for (const CommandInfo &info : kMenus) {
        m_menus[QLatin1StringView(info.name)] = bar->addMenu(translated(info.text));
    }
    for (const CommandInfo &info : kCommands) {
        // Known already: the table has a submenu above its commands.
        QMenu *const menu = m_menus.at(QLatin1StringView(info.menu));
        if ((info.flags & kSubMenu) != 0) {
            QMenu *const inner = menu->addMenu(translated(info.text));
            inner->menuAction()->setStatusTip(translated(info.tip));
            m_menus[QLatin1StringView(info.name)] = inner;
        } else {
            menu->addAction((*this)[QLatin1StringView(info.name)]);
        }
        if ((info.flags & kSeparatorAfter) != 0) {
            menu->addSeparator();
        }
    }
    // Tests find menus by name.
    for (const auto &[name, menu] : m_menus) {
        menu->setObjectName(u"menu."_s + name);
    }
}

void Commands::fill(QToolBar *bar) const
{
    // The menu of the command before.
    QString group;
    for (QAction *const action : actionsWith(kInToolBar)) {
        const CommandInfo &info = infoOf(*action);
        if (!group.isEmpty() && group != QLatin1StringView(info.menu)) {
            bar->addSeparator();
        }
        group = QLatin1StringView(info.menu);
        bar->addAction(action);
    }
}

void Commands::fillContextMenu(QMenu *menu) const
{
    // An empty name is a separator. Only what depends on the item that was clicked is here.
    for (const char *const name :
         {"graph.add", "graph.note", "graph.link", "graph.insert", "", "run.here", "run.data", "",
          "edit.rename", "edit.comment", "", "edit.cut", "edit.copy", "edit.paste",
          "edit.duplicate", "edit.delete", "edit.deleteJoin", "", "help.action"}) {
        if (*name == 0) {
            menu->addSeparator();
        } else {
            menu->addAction((*this)[QLatin1StringView(name)]);
        }
    }
}

QMenu *Commands::menu(const QString &name) const
{
    const auto found = m_menus.find(name);
    return found == m_menus.end() ? nullptr : found->second;
}

void Commands::adopt(const QWidget &part, const QString &title)
{
    // Those that Qt makes, for example to clear a field, have no status tip.
    for (QAction *const action : part.findChildren<QAction *>()) {
        if (action->statusTip().isEmpty()) {
            continue;
        }
        action->setProperty(kDefaultKeys, QVariant::fromValue(action->shortcut()));
        action->setProperty(kPart, title);
        if (const auto keys = m_settings.shortcut(action->objectName())) {
            action->setShortcut(*keys);
            updateToolTip(action);
        }
        m_ofParts.push_back(action);
    }
}

QVector<QAction *> Commands::ofParts() const
{
    QVector<QAction *> all;
    QSet<QString> names;
    for (const QPointer<QAction> &action : m_ofParts) {
        // Graphs that were closed have taken their parts with them.
        if (action != nullptr && !names.contains(action->objectName())) {
            names.insert(action->objectName());
            all.push_back(action);
        }
    }
    return all;
}

QString Commands::partOf(const QAction &action)
{
    return action.property(kPart).toString();
}

QKeySequence Commands::defaultShortcut(const QAction &action)
{
    // Not from the table, whose texts would have to be parsed again.
    return action.property(kDefaultKeys).value<QKeySequence>();
}

void Commands::setShortcut(QAction *action, const QKeySequence &keys)
{
    const bool isDefault = keys == defaultShortcut(*action);
    // A later version may have another default, which the user then gets.
    m_settings.setShortcut(action->objectName(), isDefault ? std::nullopt : std::optional(keys));
    if (partOf(*action).isEmpty()) {
        // Some commands of the table have a second default.
        action->setShortcuts(isDefault ? sequences(infoOf(*action).keys) : QList{keys});
        updateToolTip(action);
        return;
    }
    for (const QPointer<QAction> &same : std::as_const(m_ofParts)) {
        if (same != nullptr && same->objectName() == action->objectName()) {
            same->setShortcut(keys);
            updateToolTip(same);
        }
    }
}

QAction *Commands::findConflict(const QAction *action, const QKeySequence &keys) const
{
    // Keys of one part, or of two that share a widget, as the canvas has keys and commands.
    const auto meets = [&](const QAction *other) {
        const QObjectList owners = action->associatedObjects();
        return partOf(*other) == partOf(*action) ||
               std::ranges::any_of(other->associatedObjects(),
                                   [&](QObject *owner) { return owners.contains(owner); });
    };
    const QVector<QAction *> others = m_actions + ofParts();
    const auto found = std::find_if(others.begin(), others.end(), [&](const QAction *other) {
        // Many commands have no keys, which is not a conflict.
        return other->objectName() != action->objectName() && !keys.isEmpty() &&
               other->shortcuts().contains(keys) && meets(other);
    });
    return found == others.end() ? nullptr : *found;
}

} // namespace corvanta::studio
