// Draws the panel of every action in light and dark colours: panel_pictures FOLDER [TYPE...]
//
// The pictures are for docs/pictures, and for people who change a panel. With --unfolded all groups
// are shown, with --scale N at N percent of the font size, with --width N in a dock of N pixels,
// with --language fr in French.
#include "corvanta/edit/translation.h"
#include "tests/panels/panel_support.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

/// The panels look files up in the background.
constexpr int kCheckMs = 150;
constexpr int kUnfoldedHeight = 2000; // of the picture, in pixels

/// Give the panel the size that it likes to have, as far as the options leave it.
void resizePanel(QWidget *panel, const QCommandLineParser &options)
{
    const QSize size = panel->sizeHint();
    const int width = options.value(u"width"_s).toInt();
    panel->resize(width == 0 ? size.width() : width,
                  options.isSet(u"unfolded"_s) ? kUnfoldedHeight : size.height());
}

/// Make the input files of the action, so that the picture shows no missing ones. A name of a
/// template of this project gives a copy of it.
void makeInputs(const panels::Action &action)
{
    const ActionParameters &parameters = panels::parametersOf(action);
    for (const ParameterInfo &info : parameters.parameters()) {
        if (info.file == ParameterInfo::File::Input) {
            const QString name = action->expandFile(panels::valueOf(action, info.name));
            QDir().mkpath(QFileInfo(name).path());
            const QString file = QFileInfo(name).fileName();
            for (const QString &templates : {u"examples/documents"_s, u"templates/office"_s}) {
                const QDir source(QStringLiteral(CORVANTA_SOURCE_DIR));
                QFile::copy(source.filePath(templates + u'/' + file), name);
            }
            QFile(name).open(QIODevice::Append); // empty unless it is a template
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
    }
    panel->adjustSize();
    resizePanel(panel.get(), options);
    panel->show();
    QTest::qWait(kCheckMs);
    resizePanel(panel.get(), options); // with the problems
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
                        {u"language"_s, u"Language of the panels."_s, u"code"_s, u"en"_s},
                        {u"width"_s, u"Width of the panels in pixels."_s, u"pixels"_s, u"0"_s},
                        {u"scale"_s, u"Size of the font in percent."_s, u"percent"_s, u"100"_s}});
    options.process(application);
    QFont font(u"DejaVu Sans"_s);
    font.setPointSizeF(9.0 * options.value(u"scale"_s).toInt() / 100);
    QApplication::setFont(font);
    corvanta::loadTranslation(QLocale(options.value(u"language"_s)));
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
