#include "tests/panels/panel_keys.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace panels {

std::vector<std::string> testedTypes()
{
    std::vector<std::string> types;
    for (const QString &type : moduleTypes()) {
        types.push_back(type.toStdString());
    }
    return types;
}

Panel shown(const Action &action)
{
    Panel panel(action->createPanel(nullptr));
    unfold(*panel);
    panel->resize(panel->sizeHint());
    panel->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(panel.get()));
    return panel;
}

void satisfy(ActionParameters &parameters, const ParameterInfo &info)
{
    for (const ParameterInfo::Condition &condition : info.conditions) {
        const int index = parameters.indexOfParameter(condition.parameter);
        const ParameterInfo other = parameters.parameters()[index];
        // Of those that are excluded only 0 and the empty text occur.
        QString value = condition.values.first();
        if (condition.isExcluded) {
            value = value == "1"_L1 ? u"0"_s : u"1"_s;
        }
        ASSERT_TRUE(parameters.setParameterValue(index, value));
        ASSERT_NE(parameters.parameterValue(index),
                  condition.isExcluded ? condition.values.first() : QString(u'?'));
        satisfy(parameters, other);
    }
}

QString enterValue(QWidget *field, const ParameterInfo &info, const QString &old)
{
    QWidget *const control = field->focusProxy();
    if (auto *const box = qobject_cast<QCheckBox *>(control)) {
        QTest::mouseClick(box, Qt::LeftButton, {}, {8, 8});
        return old == "0"_L1 ? u"1"_s : u"0"_s;
    }
    if (auto *const box = qobject_cast<QSpinBox *>(control)) {
        const int number = box->value() == box->maximum() ? box->value() - 1 : box->value() + 1;
        box->selectAll();
        QTest::keyClicks(box, QString::number(number));
        QTest::keyClick(box, Qt::Key_Return); // a number of pins is not taken before
        return QString::number(number);
    }
    if (auto *const box = qobject_cast<QComboBox *>(control);
        box != nullptr && !box->isEditable()) {
        QTest::keyClick(box, box->currentIndex() == 0 ? Qt::Key_Down : Qt::Key_Up);
        return box->currentData().toString();
    }
    if (info.type == ParameterInfo::Type::Structure) {
        QTest::keyClick(control, Qt::Key_Insert);
        return {}; // the form of a new element depends on the action
    }
    if (auto *const text = qobject_cast<QPlainTextEdit *>(control)) {
        text->selectAll();
        QTest::keyClicks(text, u"<q r='1'/>"_s);
        return u"<q r='1'/>"_s;
    }
    if (qobject_cast<QListWidget *>(control) != nullptr) {
        auto *const line = field->findChild<QLineEdit *>();
        QTest::keyClicks(line, u"a column"_s);
        QTest::keyClick(line, Qt::Key_Return);
        return old.isEmpty() ? u"a column"_s : old + u"\na column"_s;
    }
    auto *const line = field->findChild<QLineEdit *>();
    line->selectAll();
    QTest::keyClicks(line, u"12"_s);
    return u"12"_s;
}

} // namespace panels
