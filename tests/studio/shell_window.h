// A window of the editor for tests, with a graph, settings of its own and answers to questions.
#pragma once
#include "corvanta/action_registry.h"
#include "studio/canvas/canvas_view.h"
#include "studio/shell/commands.h"
#include "studio/shell/document_tab.h"
#include "studio/shell/main_window.h"
#include "studio/shell/preferences/settings.h"
#include "studio/shell/workspace.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace corvanta::studio::test {

using namespace Qt::StringLiterals;

inline const ActionRegistry &registry()
{
    static const auto loaded = [] {
        auto all = std::make_unique<ActionRegistry>();
        all->loadAll();
        return all;
    }();
    return *loaded;
}

inline constexpr char kGraph[] = "<graph version='4.12'>\n"
                                 "  <variable name='year' value='2026'/>\n"
                                 "  <action id='table'><readCSV fileName='orders.csv'/></action>\n"
                                 "  <action id='sort'><sort><keys><s>a</s></keys></sort></action>\n"
                                 "  <action id='book'><writeCSV fileName='out.csv'/></action>\n"
                                 "  <link from='table:0' to='sort:0'/>\n"
                                 "  <link from='sort:0' to='book:0'/>\n"
                                 "</graph>\n";

/// A window with settings of its own.
class Shell : public testing::Test
{
protected:
    QString path(const QString &name) const { return folder.filePath(name); }
    QString write(const QString &name, const QByteArray &text) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
        return file.fileName();
    }
    MainWindow &window()
    {
        if (shown == nullptr) {
            shown = std::make_unique<MainWindow>(registry(), settings);
            shown->show();
            EXPECT_TRUE(QTest::qWaitForWindowExposed(shown.get()));
        }
        return *shown;
    }
    /// The document of the graph above.
    GraphDocument &open()
    {
        EXPECT_TRUE(window().workspace()->open(write(u"a.graph"_s, kGraph)));
        return document();
    }
    GraphDocument &document() { return *window().workspace()->current()->document(); }
    CanvasView &canvas() { return *window().workspace()->current()->canvas(); }
    template <class Widget> Widget &child(const char *name)
    {
        auto *const found = window().findChild<Widget *>(QLatin1StringView(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }
    void trigger(const char *name) { window().commands()[QLatin1StringView(name)]->trigger(); }

    QTemporaryDir folder;
    Settings settings{folder.filePath(u"studio.ini"_s)};
    std::unique_ptr<MainWindow> shown;
};

/// Answers the next message box by the button with this text, without "&".
inline void answer(const QString &text)
{
    auto *const timer = new QTimer(qApp); // deletes itself
    QObject::connect(timer, &QTimer::timeout, timer, [timer, text] {
        auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (box == nullptr) {
            return;
        }
        timer->stop(); // the next box may come before it is deleted
        timer->deleteLater();
        for (QAbstractButton *const button : box->buttons()) {
            if (button->text().remove(u'&') == text) {
                button->click();
                return;
            }
        }
        box->reject();
        FAIL() << "no button " << text.toStdString();
    });
    timer->start(5);
}

/// Answers the next file dialog by this name.
inline void chooseFile(const QString &name)
{
    auto *const timer = new QTimer(qApp); // deletes itself
    QObject::connect(timer, &QTimer::timeout, timer, [timer, name] {
        auto *const dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (dialog != nullptr) {
            timer->stop();
            timer->deleteLater();
            dialog->selectFile(name);
            static_cast<QDialog *>(dialog)->accept();
        }
    });
    timer->start(5);
}

} // namespace corvanta::studio::test
