// Draws the editor for docs/pictures: studio_pictures FOLDER
//
// The example of the elements after a run, in light and dark colours and at 200 percent, and the
// start page.
#include "corvanta/action_registry.h"
#include "corvanta/edit/translation.h"
#include "studio/canvas/canvas_view.h"
#include "studio/run/run_controller.h"
#include "studio/shell/commands.h"
#include "studio/shell/document_tab.h"
#include "studio/shell/main_window.h"
#include "studio/shell/preferences/appearance.h"
#include "studio/shell/workspace.h"

#include <QApplication>
#include <QDir>
#include <QLocale>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace corvanta;
using namespace corvanta::studio;

namespace {

constexpr int kSettleMs = 700; // problems and rows are found in the background

/// A window with files of its own.
class Session
{
public:
    explicit Session(const ActionRegistry &registry)
        : m_settings(m_folder.filePath(u"studio.ini"_s))
        , m_window(registry, m_settings)
    {
        // Large texts need a large window, as on a sharp screen.
        m_window.resize(QSize(133, 84) * QFontMetrics(QApplication::font()).height() * 0.64);
        m_window.show();
    }

    void openExample()
    {
        const QDir examples(QStringLiteral(CORVANTA_SOURCE_DIR "/examples"));
        for (const QString &name : {u"main.graph"_s, u"elements.csv"_s}) {
            QFile::copy(examples.filePath(name), m_folder.filePath(name));
        }
        m_window.workspace()->open(m_folder.filePath(u"main.graph"_s));
        m_tab = m_window.workspace()->current();
    }
    void run()
    {
        m_tab->runs()->runAll();
        while (m_tab->runs()->isRunning()) {
            QTest::qWait(10);
        }
        m_tab->canvas()->select({u"table"_s});
        m_window.commands()[u"run.data"_s]->trigger();
    }
    bool save(const QString &file)
    {
        QTest::qWait(kSettleMs);
        const QImage image = m_window.grab().toImage();
        return image.convertToFormat(QImage::Format_RGB888).save(file, "PNG");
    }

private:
    QTemporaryDir m_folder;
    Settings m_settings;
    MainWindow m_window;
    DocumentTab *m_tab = nullptr;
};

bool draw(const ActionRegistry &registry, Theme theme, int percent, const QString &file)
{
    applyAppearance(theme, percent);
    Session session(registry);
    session.openExample();
    session.run();
    return session.save(file);
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    QFont font(u"DejaVu Sans"_s);
    font.setPointSizeF(9);
    QApplication::setFont(font);
    loadTranslation(QLocale(QLocale::English));
    ActionRegistry registry;
    registry.loadAll();
    const QDir folder(QApplication::arguments().value(1));
    bool isDone = draw(registry, Theme::Light, 100, folder.filePath(u"studio_light.png"_s)) &&
                  draw(registry, Theme::Dark, 100, folder.filePath(u"studio_dark.png"_s)) &&
                  draw(registry, Theme::Light, 200, folder.filePath(u"studio_200.png"_s));
    applyAppearance(Theme::Light, 100);
    isDone = isDone && Session(registry).save(folder.filePath(u"studio_start.png"_s));
    if (!isDone) {
        std::fputs("studio_pictures: a picture cannot be written\n", stderr);
    }
    return isDone ? 0 : 1;
}
