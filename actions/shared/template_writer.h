// Base of the actions that write documents from templates: what they all do alike with the files.
//
// A template is an Office package that stays unchanged. A document is a copy of it with some
// members changed; it gets its name only when it is complete, and never replaces its own template.
//
//     openTemplate()      its members are read through templateReader(), see opc::PackageCopy
//     openDocument()      members are written through document()
//     commitDocument()    the document gets its name
//
// One template serves any number of documents, one after the other. An action has its message for
// each problem, and is declared as `class ActionX : public ParamAction<ActionX, XParams,
// TemplateWriter>`. Threads: as ActionBase.
#pragma once
#include "codecs/opc/member_writer.h"
#include "corvanta/action_base.h"
#include "corvanta/failure_reason.h"
#include "io/package_file/package_file.h"

#include <memory>

namespace corvanta {

/// What can go wrong with the files. The name that goes with a problem is given in parentheses.
enum class TemplateProblem {
    CannotReadTemplate, ///< not there, not readable or not a package (the template)
    EmptyTemplate,      ///< a package without members, or an empty file (the template)
    CannotOpenMember,   ///< a member is missing, encrypted or of an unknown kind (the member)
    CannotReadPart,     ///< a part that is to be changed is damaged or not valid (the member)
    CannotCopyMember,   ///< a member that stays unchanged is damaged (the member)
    CannotCreate,       ///< the document or its temporary file (the document)
    CannotAddMember,    ///< the document has such a member already (the member)
    CannotWrite,        ///< a write that the user gave up (the member)
    CannotClose,        ///< the end of the document, or its renaming (the document)
};

class TemplateWriter : public ActionBase
{
protected:
    using ActionBase::ActionBase;

    /// The message for a problem; `name` is the one that TemplateProblem describes.
    virtual QString message(TemplateProblem problem, const QString &name) const = 0;
    /// Which row names the file with the problem, for the reason; empty if a parameter names it.
    virtual QString sourceOf(TemplateProblem) const { return {}; }

    // Everything below returns false after it has logged a failure.

    /// Open the template `name`, which is expanded already, in place of an earlier one.
    bool openTemplate(const QString &name);
    /// Valid as long as the template is open.
    zip::PackageReader &templateReader() { return m_template->reader(); }
    const QString &templateName() const { return m_templateName; }
    /// Why the open template is not an Office package, with the remedy; empty if it is one.
    QString otherPackageReason() const;
    /// For problems(): add that the document would replace its own template, if it would. Both
    /// names are expanded already.
    static void addOwnTemplateProblem(const QString &document, const QString &source,
                                      QVector<ParameterProblem> *found);

    /// Begin the document `name`, which is expanded already. The open template itself is refused.
    bool openDocument(const QString &name);
    /// Whether a document has another extension than its template, in any letter case. A document
    /// has the kind of its template, and Office programs refuse a file whose name says another one.
    bool hasOtherKind(const QString &document) const;
    /// Valid as long as the document is open.
    opc::MemberWriter &document() { return *m_members; }
    /// Why the last write to the document failed, in words and with the remedy.
    QString documentReason() const { return failureReason(m_document->target()); }
    /// Write the directory of the package and give the document its name, if the run is good.
    /// Closes the document in any case.
    bool commitDocument();
    /// Close both; a document that is not committed is removed. May be called twice.
    void closeFiles();

    /// Fail the run with the message for `problem`, and the reason if there is one. A message that
    /// is only a warning is followed by an error, because the document is incomplete.
    bool failWith(TemplateProblem problem, const QString &name, const QString &reason = {});
    /// Fail the run because of a fault of the template or the document. `reading` is the problem
    /// of a member that is damaged or not valid: CannotReadPart or CannotCopyMember. A run that was
    /// stopped gets no message.
    bool failPackage(const Fault<opc::Error> &fault, TemplateProblem reading);

    void finish() override { closeFiles(); }

private:
    void closeDocument();
    bool failTemplate(const Fault<zip::Error> &fault);
    QString memberReasonOf(const Fault<opc::Error> &fault) const;

    QString m_templateName;
    QString m_documentName;
    std::unique_ptr<PackageInput> m_template;
    std::unique_ptr<PackageOutput> m_document;
    std::unique_ptr<opc::MemberWriter> m_members; // of m_document
};

} // namespace corvanta
