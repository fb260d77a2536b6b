// The values are copied into the fields at the start and back when the dialog is accepted.
#include "studio/shell/preferences/preferences.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QSpinBox>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

Preferences::Preferences(Settings &settings, QWidget *parent)
    : QDialog(parent)
    , m_settings(settings)
    , m_theme(new QComboBox(this))
    , m_fontPercent(new QSpinBox(this))
    , m_language(new QComboBox(this))
    , m_reopens(new QCheckBox(tr("&Open the files of the last session"), this))
{
    setObjectName(u"preferences"_s);
    setWindowTitle(tr("Preferences"));
    m_theme->setObjectName(u"preferencesTheme"_s);
    m_theme->addItems({tr("As the desktop"), tr("Light"), tr("Dark")}); // in the order of Theme
    m_theme->setCurrentIndex(static_cast<int>(settings.theme()));
    m_fontPercent->setObjectName(u"preferencesFont"_s);
    m_fontPercent->setRange(Settings::kMinFontPercent, Settings::kMaxFontPercent);
    m_fontPercent->setSingleStep(10);
    m_fontPercent->setSuffix(u" %"_s);
    m_fontPercent->setValue(settings.fontPercent());
    m_language->setObjectName(u"preferencesLanguage"_s);
    m_language->addItem(tr("As the desktop"), QString());
    // By their own names, for users who cannot read the current language.
    m_language->addItem(u"English"_s, u"en"_s);
    m_language->addItem(u"Français"_s, u"fr"_s);
    // A code that this version does not know is shown as that of the desktop.
    m_language->setCurrentIndex(qMax(0, m_language->findData(settings.language())));
    m_reopens->setObjectName(u"preferencesReopen"_s);
    m_reopens->setChecked(settings.reopensFiles());
    auto *const buttons =
        new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &Preferences::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *const form = new QFormLayout(this);
    form->addRow(tr("&Colours:"), m_theme);
    form->addRow(tr("&Text size:"), m_fontPercent);
    form->addRow(tr("&Language:"), m_language);
    form->addRow(QString(), new QLabel(tr("The next start uses another language."), this));
    form->addRow(m_reopens);
    form->addRow(buttons);
}

void Preferences::accept()
{
    m_settings.setTheme(static_cast<Theme>(m_theme->currentIndex()));
    m_settings.setFontPercent(m_fontPercent->value());
    m_settings.setLanguage(m_language->currentData().toString());
    m_settings.setReopensFiles(m_reopens->isChecked());
    QDialog::accept();
}

} // namespace corvanta::studio
