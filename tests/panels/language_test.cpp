// Panels in another language: every text comes from the catalogue.
#include "panels/preview/preview_run.h"
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
                // An editable box suggests values, which may have a meaning.
                texts << (box->isEditable() ? box->itemData(i).toString() : box->itemText(i));
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

/// What the values of an action have, as its panel shows it.
QStringList problemsOf(const QByteArray &element)
{
    const panels::Action action = panels::fromXml(element);
    QStringList texts;
    for (const ParameterProblem &problem : panels::parametersOf(action).problems()) {
        texts << problem.text;
    }
    return texts;
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
            const bool isLabel = english[i].endsWith(u':') && !values.contains(english[i]);
            EXPECT_TRUE(!isLabel || translated[i].endsWith(u"\u00a0:"_s))
                << english[i].toStdString();
            const QString text = bare(english[i]);
            const bool isText = text.contains(word) && !text.contains(ofRun) &&
                                !same.contains(text) && !values.contains(text) && text != type;
            EXPECT_FALSE(isText && translated[i] == english[i]) << english[i].toStdString();
        }
    }
}

TEST(Languages, ProblemsOfValuesAreTranslated)
{
    // Each element has as many problems as the number before it.
    const std::pair<int, QByteArray> elements[] = {
        {7,
         "<readCSV fileName='a' separator=';;' types='X' encoding='none' decimal='x2' quote='12' "
         "ragged='cut'><dateFormat><s>day</s></dateFormat></readCSV>"},
        {3, "<writeCSV fileName='a' separator='' encoding='none' lineEnd='cr'/>"},
        {1, "<cast><types><s>a=X</s></types></cast>"},
        {1, "<select><rename><s>a</s></rename></select>"},
        {1, "<sort><kinds><s>a=number</s></kinds></sort>"},
        {1, "<filter where='(a = 1'/>"},
        {1, "<filter where='a = '/>"},
        {1, "<filter where='a is not'/>"},
        {1, "<filter where='a = 1 b'/>"},
        {1, "<filter where='a 1'/>"},
        {1, "<filter where='a = null'/>"},
        {1, "<filter where='a = 1x'/>"},
        {1, "<filter where='a = &quot;b'/>"},
        {1, "<filter where='a = ?'/>"},
        {2, "<readStat fileName='a' fileFormat='9' encoding='none'/>"},
        {1, "<mergeFiles fileName='a.xml'/>"},
        {1, "<mergeFiles fileName='a.csv'><parts><s>b.json</s></parts></mergeFiles>"},
        {1, "<readXML fileName='a' encoding='none'/>"},
        {1, "<readJSON fileName='a' types='X'/>"},
        {1, "<writeDocTable output='a'><v colWidths='-1'/></writeDocTable>"},
        {2, "<writeReport nPinIn='1'><Chart name='a'><axis pinIdx='3'>x</axis></Chart>"
            "<Chart name='a'/></writeReport>"},
    };
    for (const auto &[count, element] : elements) {
        const QStringList english = problemsOf(element);
        const panels::French french;
        const QStringList translated = problemsOf(element);
        EXPECT_EQ(english.size(), count) << element.toStdString();
        ASSERT_EQ(translated.size(), english.size()) << element.toStdString();
        for (qsizetype i = 0; i < english.size(); ++i) {
            EXPECT_NE(translated[i], english[i]);
        }
    }
}

TEST(Languages, MessagesOfRunsAreEnglish)
{
    const panels::French french;
    for (const QByteArray &element :
         {"<readCSV fileName='a' types='X'/>"_ba, "<readCSV fileName='a' quote='12'/>"_ba,
          "<readJSON fileName='a' types='X'><Level><e path='b'/></Level></readJSON>"_ba}) {
        const panels::Action action = panels::fromXml(element);
        const QString problem =
            corvanta::previewRows(corvanta::requestOf(*action), EngineRunner::PinOut, {})
                .problem.text;
        EXPECT_TRUE(problem.contains(" is not "_L1)) << problem.toStdString();
    }
}

TEST(Languages, AUnitHasTheFormForItsNumber)
{
    const auto suffixes = [] {
        const panels::Action action = panels::fromXml("<readExcel fileName='a' skipRows='0'/>");
        const panels::Panel panel(action->createPanel(nullptr));
        auto *const box = panel->findChild<QWidget *>(u"skipRows"_s)->findChild<QSpinBox *>();
        QStringList texts;
        for (const int rows : {0, 1, 2}) {
            box->setValue(rows);
            texts << box->text();
        }
        return texts;
    };
    EXPECT_EQ(suffixes(), QStringList({u"0 rows"_s, u"1 row"_s, u"2 rows"_s}));
    const panels::French french;
    EXPECT_EQ(suffixes(), QStringList({u"0 ligne"_s, u"1 ligne"_s, u"2 lignes"_s}));
}
