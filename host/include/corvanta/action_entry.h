// The registration of an action: everything that a host, a palette or a command asks about it
// before it runs.
//
// Each action defines one ActionEntry in its own folder. The catalogue of a plug-in is an array of
// pointers to entries; lists of types, icons and file extensions are derived from it.
#pragma once
#include "corvanta/file_format.h"

#include <new>
#include <span>

class ActionItem;
class GlobalParameters;
class QWidget;
class UpdateClassWidget;
class XMLNode;

namespace corvanta {

/// All texts are constants in UTF-8 (type name, paths and lists of words: ASCII); the words of a
/// list are separated by blanks. An entry is a constant: any thread may read it.
struct ActionEntry
{
    /// A maxPinsIn that no graph reaches, for actions with any number of input pins.
    static constexpr int kManyPins = 1000;
    static constexpr int kPinsIn = -1; ///< maxPinsIn that equals pinsIn

    const char *typeName = "";    ///< also the name of the element that holds the parameters
    const char *description = ""; ///< one line for the palette
    const char *helpPage = "";    ///< key of the help page; empty: none
    const char *icon = "";        ///< resource path of an SVG or PNG image
    /// Written as the `version` of a saved action. Raise it when a default changes, and set the old
    /// default in adjustDefaults() for lower versions, so that saved graphs keep their meaning.
    double saveVersion = 1.0;
    const char *fileTypes = ""; ///< extensions that file dialogs offer; empty: the host's default
    const char *tags = "";      ///< category of the palette; empty: the host's default
    const char *keywords = "";  ///< words that the search of the palette finds
    int pinsIn = 1;             ///< input pins of a new action
    int pinsOut = 1;            ///< output pins; 0 for an action that only writes files
    int maxPinsIn = kPinsIn;    ///< input pins that a graph may link

    /// Null when there is no memory. The caller owns the action.
    ActionItem *(*makeAction)(const XMLNode &saved, GlobalParameters *parameters) = nullptr;
    /// The caller owns the panel, which must not outlive `action`.
    UpdateClassWidget *(*makePanel)(QWidget *parent, ActionItem *action) = nullptr;
    /// The files that `convert`, `head` and `schema` use the action for; empty: none.
    std::span<const FileFormat> formats = {};
};

/// For ActionEntry::makeAction: makes an `Action`, whose constructor takes the same arguments.
template <class Action> ActionItem *makeAction(const XMLNode &saved, GlobalParameters *parameters)
{
    return new (std::nothrow) Action(saved, parameters);
}

/// For ActionEntry::makePanel: makes a `Panel`. `parent` owns it unless it is null.
template <class Panel> UpdateClassWidget *makePanel(QWidget *parent, ActionItem *action)
{
    return new Panel(parent, action);
}

} // namespace corvanta
