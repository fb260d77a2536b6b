// Draws the panel of every action in light and dark colours: panel_pictures FOLDER [TYPE...]
//
// The pictures are for docs/pictures, and for people who change a panel. With --unfolded all groups
// are shown, with --scale N at N percent of the font size.
#include "tests/panels/panel_support.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QStyleFactory>
#include <QTemporaryDir>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

/// Make the input files of the action, so that the picture shows no missing ones.
void makeInputs(const panels::Action &action)
{
    const ActionParameters &parameters = panels::parametersOf(action);
    for (const ParameterInfo &info : parameters.parameters()) {
        if (info.file == ParameterInfo::File::Input) {
            const QString name = action->expandFile(panels::valueOf(action, info.name));
            QDir().mkpath(QFileInfo(name).path());
            QFile(name).open(QIODevice::WriteOnly);
        }
    }
}

bool draw(const QString &type, panels::Colors colors, const QCommandLineParser &options)
{
    QApplication::setPalette(panels::paletteOf(colors));
    const QTemporaryDir folder;
    GlobalParameters global;
    global.setGraphDir(folder.path());
    const panels::Action action = panels::fromXml(panels::example(type), &global);
    makeInputs(action);
    const panels::Panel panel(action->createPanel(nullptr));
    if (options.isSet(u"unfolded"_s)) {
        panels::unfold(*panel);
        panel->resize(panel->sizeHint().width(), 2000);
    } else {
        panel->adjustSize();
        panel->resize(panel->sizeHint());
    }
    panel->show();
    QApplication::processEvents();
    const QString suffix = colors == panels::Colors::Light ? u"light"_s : u"dark"_s;
    const QString name = u"%1_%2.png"_s.arg(type, suffix);
    return panel->grab()
        .toImage()
        .convertToFormat(QImage::Format_RGB888)
        .save(QDir(options.positionalArguments().at(0)).filePath(name), "PNG");
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    QCommandLineParser options;
    options.addOptions({{u"unfolded"_s, u"Show all groups."_s},
                        {u"scale"_s, u"Size of the font in percent."_s, u"percent"_s, u"100"_s}});
    options.process(application);
    QFont font(u"DejaVu Sans"_s);
    font.setPointSizeF(9.0 * options.value(u"scale"_s).toInt() / 100);
    QApplication::setFont(font);
    QStringList types = options.positionalArguments().mid(1);
    panels::setInputColumns({u"country"_s, u"city"_s, u"date"_s, u"amount"_s, u"comment"_s,
                             u"wordFile"_s, u"templateFile"_s, u"photo"_s});
    for (const QString &type : types.isEmpty() ? panels::moduleTypes() : types) {
        if (!draw(type, panels::Colors::Light, options) ||
            !draw(type, panels::Colors::Dark, options)) {
            std::fprintf(stderr, "%s: the picture cannot be written\n", qPrintable(type));
            return 1;
        }
    }
    return 0;
}
