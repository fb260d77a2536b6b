// The dialog of the preferences.
#pragma once
#include "studio/shell/preferences/settings.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QSpinBox;

namespace corvanta::studio {

/// Shows the settings and changes them when it is accepted. Threads: the GUI thread.
class Preferences final : public QDialog
{
    Q_OBJECT

public:
    /// `settings` must outlive the dialog.
    explicit Preferences(Settings &settings, QWidget *parent = nullptr);
    /// Save the values that are shown.
    void accept() override;

private:
    Settings &m_settings;
    QComboBox *m_theme;
    QSpinBox *m_fontPercent;
    QComboBox *m_language;
    QCheckBox *m_reopens;
};

} // namespace corvanta::studio
