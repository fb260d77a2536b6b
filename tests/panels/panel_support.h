// What the tests of the panels and the program that draws them share: the actions of the module,
// example values and palettes.
#pragma once
#include "corvanta/action_item.h"
#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"
#include "corvanta/update_class_widget.h"

#include <QPalette>

#include <memory>

namespace panels {

using Action = std::unique_ptr<ActionItem>;
using Panel = std::unique_ptr<UpdateClassWidget>;

/// The actions of the module, loaded by the first call.
const corvanta::ActionRegistry &registry();
/// The type names of the actions of the module, without those of the host.
QStringList moduleTypes();
/// The action that a saved element describes.
Action fromXml(const QByteArray &xml, GlobalParameters *global = nullptr);
/// What the action saves.
QByteArray saved(ActionItem &action);
ActionParameters &parametersOf(const Action &action);
/// By the name of the parameter.
QString valueOf(const Action &action, const QString &name);

/// An element with typical values for the type, as a user would have it.
QByteArray example(const QString &type);

/// Show the fields of all groups.
void unfold(const QWidget &panel);

/// The class of a widget and the name of the field that it is in, for messages.
std::string nameOf(const QWidget *widget);

/// Let every panel see these columns on all input pins; none: unknown.
void setInputColumns(const QStringList &names);

/// The palette of the Fusion style with light or dark colours.
enum class Colors { Light, Dark };
QPalette paletteOf(Colors colors);

/// Shows the panels that are made during its life in French.
class French
{
public:
    French();
    ~French();
    Q_DISABLE_COPY_MOVE(French)
};

} // namespace panels
