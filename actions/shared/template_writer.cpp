// Copies a template to a document, part by part. At most one document is open at a time.
#include "actions/shared/template_writer.h"

#include "actions/shared/package_reasons.h"
#include "base/platform/files.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

bool TemplateWriter::hasOtherKind(const QString &document) const
{
    const QString extension = QFileInfo(m_templateName).suffix();
    return QFileInfo(document).suffix().compare(extension, Qt::CaseInsensitive) != 0;
}

/// The template stays open for all documents that are made from it.
bool TemplateWriter::openTemplate(const QString &name)
{
    m_templateName = name;
    m_template.reset();
    auto input = PackageInput::open(globalParameters(), name);
    if (!input) {
        return failTemplate(input.fault());
    }
    m_template = std::move(*input);
    return !m_template->reader().members().empty() ||
           failWith(TemplateProblem::EmptyTemplate, name);
}

/// An old or encrypted file is the most likely mistake, and its own reason helps most.
bool TemplateWriter::failTemplate(const Fault<zip::Error> &fault)
{
    const QFileInfo info(m_templateName);
    const bool isEmpty = info.isFile() && info.size() == 0;
    QString reason = isEmpty ? u"the file is empty"_s
                             : compoundFileReason(globalParameters(), m_templateName, u"template"_s,
                                                  u"Office"_s, u".doc, .ppt, .xls"_s);
    failWith(TemplateProblem::CannotReadTemplate, m_templateName,
             reason.isEmpty() ? fault.detail : reason);
    return isEmpty ? failWith(TemplateProblem::EmptyTemplate, m_templateName) : false;
}

/// Every Office package declares its content types; an OpenDocument file does not.
QString TemplateWriter::otherPackageReason() const
{
    const bool isOffice =
        std::ranges::any_of(m_template->reader().members(), [](const zip::Member &member) {
            return member.name.compare("[Content_Types].xml", Qt::CaseInsensitive) == 0;
        });
    return isOffice ? QString()
                    : u"it is not an Office package (.docx, .pptx, .xlsx); save a document of "
                      "another kind, such as OpenDocument, as one"_s;
}

void TemplateWriter::addOwnTemplateProblem(const QString &document, const QString &source,
                                           QVector<ParameterProblem> *found)
{
    if (platform::isSameFile(document, source)) {
        found->push_back(
            {u"output"_s,
             QCoreApplication::translate(
                 "Problems",
                 "the document '%1' would replace its own template: choose another output name")
                 .arg(document)});
    }
}

/// The document is written to a temporary file; commitDocument() gives it its name.
bool TemplateWriter::openDocument(const QString &name)
{
    closeDocument();
    m_documentName = name;
    // Whatever links and spellings lead to it.
    if (platform::isSameFile(name, m_templateName)) {
        return fail(
            u"ERROR: the document '%1' would replace its own template: choose another output name.\n"_s
                .arg(name),
            sourceOf(TemplateProblem::CannotCreate));
    }
    m_document = std::make_unique<PackageOutput>();
    const TargetFile::Options target{.action = getIdx(),
                                     .retryWrite = [this, name] { return askRetryWrite(name); }};
    if (!m_document->open(name, target)) {
        return failWith(TemplateProblem::CannotCreate, name, failureReason(m_document->target()));
    }
    m_members = std::make_unique<opc::MemberWriter>(m_document->writer());
    return true;
}

bool TemplateWriter::failWith(TemplateProblem problem, const QString &name, const QString &reason)
{
    const QString text = message(problem, name);
    const QString source = sourceOf(problem);
    const QString separator = reason.isEmpty() || source.isEmpty() ? QString() : u"; "_s;
    if (!text.trimmed().startsWith(u"WARNING")) {
        return fail(text, reason + separator + source);
    }
    if (runIsGood()) {
        warn(text);
    }
    return fail(u"ERROR: the document '%1' could not be completed and is not written.\n"_s.arg(
                    m_documentName),
                reason + separator + source);
}

/// The reason is taken before the document is closed, which forgets it.
bool TemplateWriter::commitDocument()
{
    const bool isFinished = static_cast<bool>(m_members->finish());
    m_members.reset();
    // Another action may have failed since; the document must then not appear.
    const bool done = isFinished && runIsGood() && m_document->commit();
    const QString reason = documentReason();
    m_document.reset();
    return done || failWith(TemplateProblem::CannotClose, m_documentName, reason);
}

/// Without a commit before, the temporary file is removed.
void TemplateWriter::closeDocument()
{
    // The members refer to the package.
    m_members.reset();
    m_document.reset();
}

void TemplateWriter::closeFiles()
{
    closeDocument();
    m_template.reset();
}

QString TemplateWriter::memberReasonOf(const Fault<opc::Error> &fault) const
{
    QString other =
        fault.code == opc::Error::NoMember && m_template ? otherPackageReason() : QString();
    if (!other.isEmpty()) {
        return other;
    }
    const SystemError error = m_template ? m_template->error() : SystemError();
    return memberReason(fault, u"template"_s, failureReason(m_templateName, FileUse::Read, error));
}

bool TemplateWriter::failPackage(const Fault<opc::Error> &fault, TemplateProblem reading)
{
    switch (fault.code) {
    case opc::Error::Stopped: // not a failure, so without a message
        return false;
    case opc::Error::WriteFailed:
        // The message of an action may not name the document.
        return failWith(TemplateProblem::CannotWrite, fault.detail,
                        u"the document '%1': %2"_s.arg(m_documentName, documentReason()));
    case opc::Error::NotAdded:
        return failWith(TemplateProblem::CannotAddMember, fault.detail);
    case opc::Error::NoMember:
    case opc::Error::Encrypted:
    case opc::Error::UnknownMethod:
    case opc::Error::BadHeader:
        // A part that is to be changed has one message for all faults.
        return failWith(reading == TemplateProblem::CannotCopyMember
                            ? TemplateProblem::CannotOpenMember
                            : reading,
                        fault.detail, memberReasonOf(fault));
    default:
        return failWith(reading, fault.detail, memberReasonOf(fault));
    }
}

} // namespace corvanta
