// LibreOffice gets a copy of the workbook in a temporary folder and converts it there. The result
// replaces the workbook only if it is a package whose members are intact and whose sheets have the
// same names. MS-Excel saves the workbook itself, by a script.
#include "actions/write_excel/spreadsheet_program.h"

#include "base/platform/process.h"
#include "codecs/xlsx/fixed_parts.h"
#include "codecs/xlsx/workbook_part.h"
#include "corvanta/main_ui.h"
#include "io/package_file/package_file.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

// A program that takes longer is killed; isRunning() is called between slices.
constexpr int kStartMs = 30'000;
constexpr int kRunMs = 180'000;
constexpr int kSliceMs = 50;

/// Run a program to its end. Returns false when it did not start, failed, or was killed.
bool runProgram(const QString &program, const QStringList &arguments,
                const std::function<bool()> &isRunning)
{
    QProcess process;
    // Its own group, so that programs that it starts can be killed with it.
    platform::makeGroup(process);
    process.start(program, arguments);
    if (!process.waitForStarted(kStartMs)) {
        return false;
    }
    platform::addToJob(process, MainUI::getJobHandle());
    // Its output is not read, so a full pipe must not block it.
    process.closeReadChannel(QProcess::StandardOutput);
    process.closeReadChannel(QProcess::StandardError);
    process.closeWriteChannel();
    QElapsedTimer clock;
    clock.start();
    while (!process.waitForFinished(kSliceMs)) {
        if (process.state() == QProcess::NotRunning) {
            break;
        }
        if (clock.elapsed() > kRunMs || !isRunning()) {
            platform::killWithChildren(process);
            return false;
        }
    }
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

#ifdef Q_OS_WIN

/// Create the script unless it exists.
bool createScript(const QString &name)
{
    static const char kScript[] =
        "If WScript.Arguments.Count < 1 Then\r\n"
        "  WScript.Echo \"Please specify the excel file. Usage: corvanta_xlsx_update "
        "<xlsx_source_file>\"\r\n"
        "  WScript.Quit\r\n"
        "End If\r\n"
        "Dim application, workbook\r\n"
        "Set application = CreateObject(\"Excel.Application\")\r\n"
        "Set workbook = application.Workbooks.Open(WScript.Arguments.Item(0))\r\n"
        "application.DisplayAlerts = False\r\n"
        "workbook.Save\r\n"
        "application.Quit\r\n";
    QFile script(name);
    return script.exists() || (script.open(QIODevice::WriteOnly) &&
                               script.write(kScript) == qint64(sizeof kScript - 1));
}

#else

bool writeWhole(const QString &name, const QByteArray &content)
{
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
}

/// The setting that lets the program calculate all formulas of a workbook that it opens.
constexpr char kSettings[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                             "<oor:items xmlns:oor=\"http://openoffice.org/2001/registry\">"
                             "<item oor:path=\"/org.openoffice.Office.Calc/Formula/Load\">"
                             "<prop oor:name=\"OOXMLRecalcMode\" "
                             "oor:op=\"fuse\"><value>0</value></prop></item></oor:items>\n";

/// Create a separate profile: the user's open programs are not affected, and the program calculates
/// every formula when it opens a workbook.
bool createProfile(const QDir &profile)
{
    // The file name is the one that the program reads at its start.
    return profile.mkpath(u"user"_s) &&
           writeWhole(profile.filePath(u"user/registrymodifications.xcu"_s), kSettings);
}

/// The names of a workbook's sheets; std::nullopt when it cannot be read or a member is damaged.
std::optional<QStringList> intactSheetNames(const QString &file)
{
    const auto input = PackageInput::open(nullptr, file);
    if (!input) {
        return std::nullopt;
    }
    zip::PackageReader &reader = (*input)->reader();
    // Reading a member verifies its checksum.
    for (const zip::Member &member : reader.members()) {
        if (!reader.readRaw(member)) {
            return std::nullopt;
        }
    }
    const auto text = reader.readWhole(xlsx::kWorkbookPart);
    const auto workbook =
        text ? xlsx::readWorkbook(*text) : Fault<opc::Error>{opc::Error::NoMember};
    return workbook ? std::optional<QStringList>(workbook->sheetNames()) : std::nullopt;
}

/// Path of the program; empty when none is installed.
QString findProgram()
{
    const QString program = QStandardPaths::findExecutable(u"soffice"_s);
    return program.isEmpty() ? QStandardPaths::findExecutable(u"libreoffice"_s) : program;
}

/// The arguments to convert a workbook into a file of the same name in `outFolder`.
QStringList conversion(const QString &workbook, const QString &outFolder, const QString &profile,
                       bool hasMacros)
{
    // A workbook with macros keeps them only in its own format.
    const QString filter =
        hasMacros ? u"xlsm:Calc MS Excel 2007 VBA XML"_s : u"xlsx:Calc MS Excel 2007 XML"_s;
    return {u"-env:UserInstallation="_s + QUrl::fromLocalFile(profile).toString(),
            u"--headless"_s,
            u"--norestore"_s,
            u"--convert-to"_s,
            filter,
            u"--outdir"_s,
            outFolder,
            workbook};
}

/// Replace `file` by a copy of `result`.
bool replaceBy(const QString &file, const QString &result, int action)
{
    // A copy, because the temporary folder may be on another file system.
    QFile source(result);
    TargetFile target;
    if (!source.open(QIODevice::ReadOnly) || !target.open(file, {action})) {
        return false;
    }
    constexpr qint64 kPieceBytes = 1 << 20;
    // Without commit() the target discards what was written.
    while (!source.atEnd()) {
        const QByteArray piece = source.read(kPieceBytes);
        if (piece.isEmpty() || !target.write(piece.constData(), piece.size())) {
            return false;
        }
    }
    return bool(target.commit());
}

#endif

} // namespace

#ifdef Q_OS_WIN

bool recalculateWorkbook(const QString &file, const QString &scriptFolder, int,
                         const std::function<bool()> &isRunning)
{
    const QString script = QDir(scriptFolder).filePath(u"corvanta_xlsx_update.vbs"_s);
    const auto native = [](QString path) { return path.replace(u'/', u'\\'); };
    return createScript(script) &&
           runProgram(u"cscript"_s, {u"//B"_s, u"//NoLogo"_s, native(script), native(file)},
                      isRunning);
}

#else

bool recalculateWorkbook(const QString &file, const QString &, int action,
                         const std::function<bool()> &isRunning)
{
    const QString program = findProgram();
    // Removed with everything in it when the function returns.
    const QTemporaryDir folder;
    if (program.isEmpty() || !folder.isValid()) {
        return false;
    }
    const bool hasMacros = file.endsWith(u".xlsm"_s, Qt::CaseInsensitive);
    const QString name = hasMacros ? u"book.xlsm"_s : u"book.xlsx"_s;
    const QString profile = folder.filePath(u"profile"_s);
    const QString copy = folder.filePath(name);
    const QString outFolder = folder.filePath(u"out"_s);
    const QString result = outFolder + u'/' + name;
    const auto written = intactSheetNames(file);
    if (!written || !createProfile(QDir(profile)) || !QFile::copy(file, copy)) {
        return false;
    }
    // The program can exit with 0 without a result, or with one that lacks sheets.
    return runProgram(program, conversion(copy, outFolder, profile, hasMacros), isRunning) &&
           intactSheetNames(result) == written && replaceBy(file, result, action);
}

#endif

} // namespace corvanta
