// The program corvanta-studio: edits and runs graph files.
//
//     corvanta-studio [GRAPH...]
#include "corvanta/action_registry.h"
#include "corvanta/edit/translation.h"
#include "studio/shell/main_window.h"
#include "studio/shell/preferences/appearance.h"
#include "studio/shell/preferences/settings.h"
#include "studio/shell/workspace.h"

#include <QApplication>
#include <QLocale>
#include <QTimer>

#include <clocale>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace corvanta;
using namespace corvanta::studio;

namespace {

constexpr char kHelp[] =
    "corvanta-studio [GRAPH...]\n\n"
    "Opens an editor of data-flow graphs with these graph files. Without one it opens those of the "
    "last session.\n\n"
    "  --help, -h     this text\n"
    "  --version      print the version\n\n"
    "Exit status: 0 done, 2 bad usage or no display.\n";

/// Installed while the application object opens the display. Qt gives its reasons as warnings, then
/// a fatal message, after which it would abort; the user gets a remedy and no core dump.
void reportDisplay(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type == QtFatalMsg) {
        std::fputs("corvanta-studio: no display; start it in a desktop session, or with 'ssh -X'\n",
                   stderr);
        std::_Exit(2); // as abort(): no destructors
    }
    std::fprintf(stderr, "%s\n", qUtf8Printable(qFormatLogMessage(type, context, text)));
}

/// Prints what the options ask for; these need no screen. Returns the exit status, or nothing if
/// the window is to be opened.
std::optional<int> printOnly(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        const QByteArray word(argv[i]);
        if (word == "--help" || word == "-h") {
            std::fputs(kHelp, stdout);
            return 0;
        }
        if (word == "--version") {
            std::puts("corvanta-studio " CORVANTA_VERSION);
            return 0;
        }
        // Options of Qt have one dash; the application object removes them.
        if (word.startsWith("--")) {
            std::fprintf(stderr, "corvanta-studio: unknown option '%s'\n", word.constData());
            return 2;
        }
    }
    return std::nullopt;
}

/// Recovered graphs first: they replace their saved versions.
void openFiles(Workspace *workspace, const Settings &settings)
{
    const QStringList files = QCoreApplication::arguments().mid(1);
    if (files.isEmpty() && settings.reopensFiles()) {
        workspace->reopenFiles();
    }
    for (const QString &file : files) {
        workspace->open(file);
    }
    workspace->offerRecovery();
}

} // namespace

int main(int argc, char **argv)
{
    if (const auto status = printOnly(argc, argv)) {
        return *status;
    }
    qInstallMessageHandler(reportDisplay);
    const QApplication application(argc, argv);
    qInstallMessageHandler(nullptr);
    // The application object takes the locale from the environment; numbers in files must not
    // follow it.
    std::setlocale(LC_NUMERIC, "C"); // NOLINT(concurrency-mt-unsafe): no other thread runs yet
    QApplication::setApplicationName(u"corvanta-studio"_s);
    QApplication::setApplicationVersion(QStringLiteral(CORVANTA_VERSION));
    QApplication::setDesktopFileName(u"corvanta-studio"_s);
    Settings settings;
    loadTranslation(settings.language().isEmpty() ? QLocale() : QLocale(settings.language()));
    applyAppearance(settings.theme(), settings.fontPercent());
    ActionRegistry registry;
    registry.loadAll();
    MainWindow window(registry, settings);
    window.show();
    // When the window is there: questions need it.
    QTimer::singleShot(0, &window, [&] { openFiles(window.workspace(), settings); });
    return QApplication::exec();
}
