// Panels in another language: every text comes from the catalogue.
#include "tests/panels/panel_support.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QSet>
#include <QSpinBox>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Everything that a panel says, in the order of its widgets.
QStringList textsOf(const QWidget &panel)
{
    QStringList texts;
    for (const QWidget *const widget : panel.findChildren<QWidget *>()) {
        texts << widget->toolTip() << widget->accessibleName() << widget->accessibleDescription();
        if (const auto *const label = qobject_cast<const QLabel *>(widget)) {
            texts << label->text();
        } else if (const auto *const button = qobject_cast<const QAbstractButton *>(widget)) {
            texts << button->text();
        } else if (const auto *const line = qobject_cast<const QLineEdit *>(widget)) {
            texts << line->placeholderText();
        } else if (const auto *const spin = qobject_cast<const QSpinBox *>(widget)) {
            texts << spin->suffix();
        } else if (const auto *const box = qobject_cast<const QComboBox *>(widget)) {
            for (int i = 0; i < box->count(); ++i) {
                texts << box->itemText(i);
            }
        }
    }
    return texts;
}

/// The texts of the catalogue that are the same in French.
QSet<QString> sameInFrench()
{
    QFile file(QStringLiteral(CORVANTA_SOURCE_DIR "/translations/corvanta_fr.ts"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&file);
    QSet<QString> texts;
    QString source;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && reader.name() == "source"_L1) {
            source = reader.readElementText();
        } else if (reader.isStartElement() && reader.name() == "translation"_L1 &&
                   reader.readElementText() == source) {
            texts << source;
        }
    }
    return texts;
}

/// A widget's text without what is added to the text of the catalogue.
QString bare(QString text)
{
    static const QRegularExpression name(u"^<p><b>.*</b></p><p>|</p>$|&(?!&)|:$|^ "_s);
    return text.remove(name).replace("&&"_L1, "&"_L1);
}

/// The values that the panel of a type shows.
QStringList valuesOf(const QString &type)
{
    const panels::Action action = panels::fromXml(panels::example(type));
    const ActionParameters &parameters = panels::parametersOf(action);
    QStringList values;
    for (const ParameterInfo &info : parameters.parameters()) {
        values << info.defaultValue << panels::valueOf(action, info.name);
    }
    return values;
}

/// The texts of a new panel for the type, in the current language.
QStringList textsOfType(const QString &type)
{
    const panels::Action action = panels::fromXml(panels::example(type));
    return textsOf(*panels::Panel(action->createPanel(nullptr)));
}

} // namespace

TEST(Languages, AFrenchPanelHasNoEnglishText)
{
    const QSet<QString> same = sameInFrench();
    static const QRegularExpression word(u"[A-Za-z]{3}"_s);
    static const QRegularExpression ofRun(u"^ERROR"_s); // messages of runs are those of the log
    for (const QString &type : panels::moduleTypes()) {
        const QStringList values = valuesOf(type);
        const QStringList english = textsOfType(type);
        const panels::French french;
        const QStringList translated = textsOfType(type);
        ASSERT_EQ(translated.size(), english.size()) << type.toStdString();
        for (qsizetype i = 0; i < english.size(); ++i) {
            const QString text = bare(english[i]);
            const bool isText = text.contains(word) && !text.contains(ofRun) &&
                                !same.contains(text) && !values.contains(text) && text != type;
            EXPECT_FALSE(isText && translated[i] == english[i]) << english[i].toStdString();
        }
    }
}
