// The members of structures: the keys of a user reach each of them.
#include "tests/panels/panel_keys.h"

#include <QApplication>
#include <QLineEdit>
#include <QTableWidget>
#include <QTest>
#include <QTreeWidget>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using panels::Action;
using panels::Panel;

namespace {

using Type = ParameterInfo::Type;

class Members : public testing::TestWithParam<std::string>
{
protected:
    static QString type() { return QString::fromStdString(GetParam()); }
};

/// Type into the first cell that takes a text. Returns false if there is none.
bool typeIntoCell(QTableWidget *table)
{
    if (table->rowCount() == 0) {
        QTest::keyClick(table, Qt::Key_Insert);
    }
    for (int column = 0; table->rowCount() > 0 && column < table->columnCount(); ++column) {
        table->setCurrentCell(0, column);
        QTest::keyClick(table, Qt::Key_F2);
        auto *const line = qobject_cast<QLineEdit *>(QApplication::focusWidget());
        if (line != nullptr && table->isAncestorOf(line)) {
            line->selectAll();
            QTest::keyClicks(line, u"12"_s);
            QTest::keyClick(line, Qt::Key_Return);
            QApplication::processEvents(); // the table takes the text later
            return true;
        }
    }
    return false;
}

/// Edit a member of the current element. Returns false if no key can.
bool enterMember(QWidget *editor, const ParameterInfo &member)
{
    if (auto *const table = editor->findChild<QTableWidget *>()) {
        return typeIntoCell(table);
    }
    if (member.type != Type::Structure) {
        panels::enterValue(editor, member, u"0"_s);
        return true;
    }
    auto *const line = editor->findChild<QLineEdit *>();
    if (line != nullptr) {
        line->selectAll();
        QTest::keyClicks(line, u"12"_s);
    }
    return line != nullptr;
}

QVector<ParameterInfo> allMembers(const ParameterInfo &structure)
{
    QVector<ParameterInfo> all;
    for (const ParameterInfo &member : structure.members) {
        all << member << allMembers(member);
    }
    return all;
}

/// Edit the members that the field of a structure shows now, except `done`, to which they are
/// added. Each edit must change the parameter.
void enterMembers(const Action &action, QWidget *field, const ParameterInfo &structure,
                  QStringList *done)
{
    for (const ParameterInfo &member : allMembers(structure)) {
        auto *const editor = field->findChild<QWidget *>(member.name);
        if (done->contains(member.name) || editor == nullptr || !editor->isVisible() ||
            !editor->isEnabled()) {
            continue;
        }
        const QString old = panels::valueOf(action, structure.name);
        if (enterMember(editor, member)) {
            EXPECT_NE(panels::valueOf(action, structure.name), old) << member.name.toStdString();
            *done << member.name;
        }
    }
}

} // namespace

TEST_P(Members, AreEditedByTheirFields)
{
    for (const ParameterInfo &info :
         panels::parametersOf(panels::fromXml(panels::example(type()))).parameters()) {
        if (info.type != Type::Structure) {
            continue;
        }
        const Action action = panels::fromXml(panels::example(type()));
        panels::satisfy(panels::parametersOf(action), info);
        const Panel panel = panels::shown(action);
        QWidget *const field = panel->findChild<QWidget *>(info.name);
        QTest::keyClick(field->focusProxy(), Qt::Key_Insert);
        QStringList done;
        if (auto *const tree = field->findChild<QTreeWidget *>()) {
            // An edit may make the nodes again.
            for (QTreeWidgetItemIterator at(tree); *at != nullptr; ++at) {
                tree->setCurrentItem(*at);
                enterMembers(action, field, info, &done);
                ASSERT_NE(tree->currentItem(), nullptr) << info.name.toStdString();
                at = QTreeWidgetItemIterator(tree->currentItem());
            }
        } else if (auto *const table = field->findChild<QTableWidget *>()) {
            done << QStringList(typeIntoCell(table) ? 1 : 0, info.name);
        }
        EXPECT_FALSE(done.isEmpty()) << info.name.toStdString();
        const Action copy = panels::fromXml(panels::saved(*action));
        EXPECT_EQ(panels::valueOf(copy, info.name), panels::valueOf(action, info.name));
    }
}

INSTANTIATE_TEST_SUITE_P(All, Members, testing::ValuesIn([] {
                             std::vector<std::string> types;
                             for (const QString &type : panels::moduleTypes()) {
                                 types.push_back(type.toStdString());
                             }
                             return types;
                         }()),
                         [](const auto &info) { return info.param; });
