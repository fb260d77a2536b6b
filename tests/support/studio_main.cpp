// The program of a test of the editor: widgets without a screen, and settings of its own.
#include <QApplication>
#include <QStandardPaths>
#include <QStyleFactory>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    // Dialogs that tests can see.
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QStandardPaths::setTestModeEnabled(true);
    const QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    // Programs that run at the same time must not share recovery files.
    QApplication::setApplicationName(
        QStringLiteral("corvanta-test-%1").arg(QApplication::applicationPid()));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
