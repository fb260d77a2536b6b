// The layout of a panel: which parameters are in which group, in which order, with which editor.
//
//     const PanelLayout layout{
//         {QT_TRANSLATE_NOOP("Panels", "Source"), {"fileName", "fileNameFromPin"}},
//         {QT_TRANSLATE_NOOP("Panels", "Rows"), {"writeAllRows", {"testCol",
//         editor<ColumnField>}}},
//     };
//
// Labels, meanings, choices, units and conditions come from the parameter table. A parameter that
// no group names is at the end of the last group, "Advanced", so that none is missing.
#pragma once
#include "corvanta/update_class_widget.h"
#include "panels/field_editor.h"

#include <vector>

namespace corvanta {

/// One field.
struct PanelField
{
    PanelField(const char *name, MakeEditor editor = nullptr) // NOLINT(google-explicit-constructor)
        : PanelField(QString::fromLatin1(name), editor)
    {
    }
    explicit PanelField(QString name, MakeEditor editor = nullptr)
        : parameter(std::move(name))
        , make(editor)
    {
    }

    QString parameter; ///< name
    MakeEditor make;   ///< null: the editor for the type of the parameter
};

/// A widget of a panel that edits no parameter of its own, such as a preview.
class PanelExtra : public QWidget
{
public:
    /// `panel` outlives the widget.
    explicit PanelExtra(UpdateClassWidget *panel)
        : m_panel(panel)
    {
    }
    /// The parameters, or what the host knows about the input, may have changed. Called after each
    /// edit and refresh; must return immediately.
    virtual void parametersChanged() {}

protected:
    UpdateClassWidget *panel() const { return m_panel; }
    ActionItem *action() const { return m_panel->action(); }

private:
    UpdateClassWidget *m_panel;
};

using MakeExtra = PanelExtra *(*)(UpdateClassWidget *panel);

/// A MakeExtra for the class `Extra`.
template <class Extra> PanelExtra *extra(UpdateClassWidget *panel)
{
    return new Extra(panel);
}

/// One group, in the order of its fields.
struct PanelGroup
{
    enum class Fold { Open, Folded };

    const char *title; ///< in English; translated in the context "Panels"
    std::vector<PanelField> fields;
    Fold fold = Fold::Open;    ///< when the panel opens
    MakeExtra extra = nullptr; ///< makes a widget above the fields; null: none
};

using PanelLayout = std::vector<PanelGroup>;

/// Title of the group with the parameters that most users never need, which starts folded.
inline constexpr const char *kAdvancedGroup = QT_TRANSLATE_NOOP("Panels", "Advanced");

} // namespace corvanta
