// A file with the wrong name is common: the reason for a refusal is found from the content, so that
// the message can say what the file is and which action reads it.
#include "actions/workbook/open_workbook.h"

#include "codecs/opc/file_kind.h"
#include "io/input/whole_input.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Whether the content is a workbook that the other action reads.
bool isOtherFormat(const WorkbookFormat &format, opc::FileKind kind)
{
    const bool isLegacy = kind == opc::FileKind::Compound || kind == opc::FileKind::Records;
    return QLatin1StringView(format.kind) == ".xlsx workbook"_L1 ? isLegacy
                                                                 : kind == opc::FileKind::Package;
}

/// What a file is that is not a workbook of the format, from its content, and what to do with it.
QString describeContent(const WorkbookFormat &format, const Fault<sheet::WorkbookError> &fault,
                        opc::FileKind kind, ByteSource &source)
{
    if (isOtherFormat(format, kind)) {
        // Documents of other programs are packages and compound files too.
        const auto other = format.makeOther(source);
        if (!other && other.fault().code == sheet::WorkbookError::NotAWorkbook) {
            return other.fault().detail;
        }
        return u"its content is that of an %1, whatever its name says; read it with %2 or give it "
               "the right extension"_s.arg(QLatin1StringView(format.otherKind),
                                           QLatin1StringView(format.otherAction));
    }
    if (kind == opc::FileKind::Html || kind == opc::FileKind::Text || kind == opc::FileKind::Xml ||
        kind == opc::FileKind::XmlSpreadsheet) {
        return u"its content is %1, whatever its name says; give it the right extension, or open "
               "it in a spreadsheet program and save it as a workbook"_s.arg(opc::describe(kind));
    }
    const bool isExamined = kind == opc::FileKind::Package || kind == opc::FileKind::Compound;
    return isExamined ? fault.detail : u"its content is %1"_s.arg(opc::describe(kind));
}

/// Why the file is not opened, from its content, which may differ from its name.
Fault<WorkbookOpenError> refusal(const WorkbookFormat &format,
                                 const Fault<sheet::WorkbookError> &fault, ByteSource &source)
{
    if (fault.code == sheet::WorkbookError::ReadFailed) {
        return {fault.code, describe(fault, source)};
    }
    // A file of the other kind can look like a damaged workbook: some have packages inside.
    const opc::FileKind kind = opc::fileKind(source);
    if (kind == opc::FileKind::Encrypted && fault.code == sheet::WorkbookError::NotAWorkbook) {
        return {sheet::WorkbookError::Encrypted,
                u"it is %1; save it without a password"_s.arg(opc::describe(kind))};
    }
    if (fault.code != sheet::WorkbookError::NotAWorkbook && !isOtherFormat(format, kind)) {
        return {fault.code, describe(fault, source)};
    }
    return {sheet::WorkbookError::NotAWorkbook, describeContent(format, fault, kind, source)};
}

} // namespace

QString describe(const Fault<sheet::WorkbookError> &fault, const ByteSource &source)
{
    QString reason = readFailure(source);
    if (!reason.isEmpty()) {
        return reason;
    }
    return fault.offset < 0 ? fault.detail
                            : u"%1 (at byte %2)"_s.arg(fault.detail, QString::number(fault.offset));
}

bool failWorkbook(ActionBase &action, const WorkbookFormat &format, const QString &name,
                  sheet::WorkbookError error, const QString &reason)
{
    switch (error) {
    case sheet::WorkbookError::NotAWorkbook:
        return action.fail(
            u"Error: The file '%1' is not an %2\n"_s.arg(name, QLatin1StringView(format.kind)),
            reason);
    case sheet::WorkbookError::Encrypted:
        return action.fail(u"Error: The workbook '%1' is encrypted\n"_s.arg(name), reason);
    case sheet::WorkbookError::Unsupported:
        return action.fail(u"Error: The workbook '%1' is not supported\n"_s.arg(name), reason);
    case sheet::WorkbookError::Damaged:
        return action.fail(u"Error: The workbook '%1' is damaged\n"_s.arg(name), reason);
    case sheet::WorkbookError::TooLarge:
        return action.fail(u"Error: The workbook '%1' is too large\n"_s.arg(name), reason);
    case sheet::WorkbookError::ReadFailed:
    case sheet::WorkbookError::Stopped: // then the action logs nothing
        break;
    }
    return action.fail(u"Error: cannot read the workbook '%1'\n"_s.arg(name), reason);
}

Result<OpenWorkbook, WorkbookOpenError> openWorkbook(const ActionBase &action,
                                                     const WorkbookFormat &format,
                                                     const QString &name, InputFile::Report report)
{
    auto input = std::make_unique<RunInput>(action.globalParameters(), action.control(), name,
                                            false, report);
    if (!input->file.isOpen()) {
        return Fault<WorkbookOpenError>{std::nullopt, input->file.reason()};
    }
    // The directory of a package is at its end.
    auto source = randomAccess(std::move(input));
    if (!source) {
        return Fault<WorkbookOpenError>{sheet::WorkbookError::ReadFailed, source.fault().detail};
    }
    auto reader = format.makeReader(**source);
    if (!reader) {
        return refusal(format, reader.fault(), **source);
    }
    return OpenWorkbook{&format, *std::move(source), *std::move(reader)};
}

} // namespace corvanta
