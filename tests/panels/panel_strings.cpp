// Prints the texts of all parameter tables in a form that lupdate reads, for `./dev strings`.
//
//     QT_TRANSLATE_NOOP("Parameters", "File")
#include "tests/panels/panel_support.h"

#include <QApplication>
#include <QSet>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

/// Prints each text once.
class Printer
{
public:
    void print(const QString &text) { print("QT_TRANSLATE_NOOP", "Parameters", text); }
    /// A unit has a form for each kind of number.
    void printUnit(const QString &unit) { print("QT_TRANSLATE_N_NOOP", "Units", unit); }

    void print(const QVector<ParameterInfo> &infos)
    {
        for (const ParameterInfo &info : infos) {
            print(info.label.isEmpty() ? info.name : info.label);
            for (const QString &text :
                 QStringList{info.meaning, info.lowMeaning} + info.choices + info.explanations) {
                print(text);
            }
            printUnit(info.unit);
            print(info.members);
        }
    }

private:
    void print(const char *macro, const char *context, const QString &text)
    {
        const QString key = QLatin1StringView(context) + text;
        if (text.isEmpty() || m_printed.contains(key)) {
            return;
        }
        m_printed.insert(key);
        QString literal = text;
        literal.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s).replace(u'\n', u"\\n"_s);
        std::printf("%s(\"%s\", \"%s\")\n", macro, context, qUtf8Printable(literal));
    }

    QSet<QString> m_printed;
};

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    Printer printer;
    for (const QString &type : panels::moduleTypes()) {
        const panels::Action action = panels::fromXml('<' + type.toLatin1() + "/>");
        printer.print(action->getDescription());
        printer.print(panels::parametersOf(action).parameters());
    }
    return 0;
}
