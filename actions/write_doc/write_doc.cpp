#include "actions/write_doc/write_doc.h"

#include "base/platform/files.h"
#include "codecs/document/template_list.h"
#include "codecs/opc/markup_scan.h"
#include "corvanta/failure_reason.h"

#include <QCryptographicHash>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// The marker of a column as templates hold it: its name between percent signs, in UTF-8.
QByteArray markerOf(const QString &column)
{
    return '%' + column.toUtf8() + '%';
}

/// The names that only Word documents have.
bool isWordName(const QString &name)
{
    const QString suffix = QFileInfo(name).suffix().toLower();
    return suffix == u"docx" || suffix == u"docm" || suffix == u"dotx" || suffix == u"dotm";
}

/// Stands for the name of a file, so that the memory of a long run stays small. Equal names differ
/// in spelling, or are links to one file.
QByteArray digestOf(const QString &name)
{
    return QCryptographicHash::hash(platform::finalName(name).value_or(name).toUtf8(),
                                    QCryptographicHash::Md5);
}

/// The address of a linked file as the value of an attribute.
QByteArray linkTo(const QString &file)
{
    // A percent sign first: the others get one.
    QString address = file;
    address.replace(u'%', u"%25"_s).replace(u' ', u"%20"_s).replace(u'#', u"%23"_s);
    return opc::quotable(u"file:///"_s + address);
}

/// Whether a member has texts, as opposed to relationships, types and images.
bool isTextPart(const QString &member)
{
    return member.endsWith(u".xml") && !member.startsWith(u'[');
}

/// Every Office package declares its content types; an OpenDocument file does not.
bool isOfficePackage(const zip::PackageReader &reader)
{
    return std::ranges::any_of(reader.members(), [](const zip::Member &member) {
        return member.name.compare("[Content_Types].xml", Qt::CaseInsensitive) == 0;
    });
}

} // namespace

ActionWriteDoc::ActionWriteDoc(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kWriteDocEntry, saved, parameters)
{
}

QString ActionWriteDoc::message(TemplateProblem problem, const QString &name) const
{
    switch (problem) {
    case TemplateProblem::CannotReadTemplate:
        return u"\nERROR: cannot read Report Template file %1\n"_s.arg(name);
    case TemplateProblem::EmptyTemplate:
        return u"\nERROR: template file is empty.\n"_s;
    case TemplateProblem::CannotReadPart:
        return isTextPart(name)
                   ? u"\nERROR: problem reading '%1' in the template file(1)\n"_s.arg(name)
                   : u"\nERROR: problem reading '%1' in the template file(2)\n"_s.arg(name);
    case TemplateProblem::CannotOpenMember:
    case TemplateProblem::CannotCopyMember:
        return u"\nERROR: cannot open file '%1' in the zipfile for read"_s.arg(name);
    case TemplateProblem::CannotCreate:
        return u"\nERROR: Cannot write Ouput file '%1'.\n"_s.arg(name);
    case TemplateProblem::CannotAddMember:
        return u"\nERROR: cannot open file '%1' in the zipfile for write"_s.arg(name);
    case TemplateProblem::CannotWrite:
        return isTextPart(name) ? u"\nERROR: problem writing the output file(5)\n"_s
                                : u"\nERROR: problem writing the output file(6)\n"_s;
    case TemplateProblem::CannotClose:
        break;
    }
    return u"\nWARNING: problem closing the output file\n"_s;
}

bool ActionWriteDoc::templateMarks(const QString &file, QVector<TemplateMark> *marks)
{
    if (!openTemplate(file)) {
        return false;
    }
    if (!isOfficePackage(templateReader())) {
        return failWith(TemplateProblem::CannotReadTemplate, file,
                        u"it is not an Office package (.docx, .pptx, .xlsx); save a document of "
                        "another kind, such as OpenDocument, as one"_s);
    }
    const auto listed = document::listTemplate(templateReader());
    if (!listed) {
        return failPackage(listed.fault(), TemplateProblem::CannotReadPart);
    }
    for (const document::TemplateMarker &one : *listed) {
        QStringList remedies;
        if (one.runs > 1) {
            remedies << u"type it again in one go, or set joinRuns='1'"_s;
        } else if (one.isEscaped) {
            remedies << u"set joinRuns='1'"_s;
        }
        if (!one.isInBody) {
            remedies << u"set allParts='1'"_s;
        }
        marks->push_back({one.text, one.location, QString::fromUtf8(one.part), one.count, one.runs,
                          remedies.join(u"; "_s)});
    }
    closeFiles();
    return true;
}

void ActionWriteDoc::start()
{
    // The place of the texts follows from each template, see useTemplate().
    m_run = std::make_unique<Run>();
    m_run->rules.breaksAtLineEnds = m_params.processCR;
    m_run->rules.breaksAtBackslashN = m_params.processLF;
    m_run->rules.closesText = m_params.strictMarkup;
}

bool ActionWriteDoc::step()
{
    while (!yieldRequested()) {
        const OneRow *const row = getNextRowFromInPin(0);
        if (row == nullptr) {
            return false;
        }
        m_run->row += 1;
        // The columns of a row are those of the first one.
        if ((m_run->row == 1 && !findColumns(*row)) || !writeRow(*row)) {
            return false;
        }
    }
    return true;
}

void ActionWriteDoc::finish()
{
    if (m_run && m_run->row > 0) {
        reportTexts();
        reportMarkers();
    } else if (m_run && runIsGood()) {
        warn(u"Warning: no document is written: the input has no rows.\n"_s);
    }
    // The run refers to the open template, so it ends first.
    m_run.reset();
    closeFiles();
}

bool ActionWriteDoc::findColumn(const OneRow &columns, const QString &name, int *input)
{
    *input = columns.getIndexOfColumn(name);
    return *input >= 0 || fail(u"\nERROR: cannot find column '%1' on input pin\n"_s.arg(name));
}

bool ActionWriteDoc::findColumns(const OneRow &columns)
{
    // A user corrects all columns at once: every missing one is reported, not only the first one.
    bool done = findColumn(columns, m_params.output, &m_run->output);
    done = findColumn(columns, m_params.templateColumn, &m_run->templateColumn) && done;
    for (const QString &name : m_params.textColumns) {
        m_run->texts.push_back({name});
        done = findColumn(columns, name, &m_run->texts.back().input) && done;
    }
    for (const QString &name : m_params.imageColumns) {
        m_run->images.push_back({name});
        done = findColumn(columns, name, &m_run->images.back().input) && done;
    }
    return done;
}

bool ActionWriteDoc::writeRow(const OneRow &row)
{
    const QString name = expandOutputFile(row.text(m_run->output), QString());
    const QString source = expandFile(row.text(m_run->templateColumn));
    return useTemplate(source) && checkName(name) && fillDocument(row, name);
}

void ActionWriteDoc::noteKind(const QString &name)
{
    if (hasOtherKind(name)) {
        m_run->otherKinds.add([&] { return name; });
    }
}

bool ActionWriteDoc::fillDocument(const OneRow &row, const QString &name)
{
    noteKind(name);
    document::RowValues values;
    document::RowImages images;
    return addTexts(row, values) && addImages(row, values, images) && openDocument(name) &&
           writeDocument(values, images);
}

document::TemplateOptions ActionWriteDoc::templateOptions() const
{
    document::TemplateOptions options;
    options.kind = isWordName(templateName()) ? document::DocumentKind::Word
                                              : document::DocumentKind::Presentation;
    for (const Column &column : m_run->texts) {
        options.markers.texts.push_back(markerOf(column.name));
    }
    for (const Column &column : m_run->images) {
        options.markers.images.push_back(markerOf(column.name));
    }
    options.linksImages = !m_params.inlineImg;
    options.joinsRuns = m_params.joinRuns;
    options.allParts = m_params.allParts;
    options.fitsImages = m_params.fitImages;
    return options;
}

bool ActionWriteDoc::useTemplate(const QString &name)
{
    if (m_run->source && name == templateName()) {
        return true;
    }
    m_run->source.reset(); // refers to the open template
    if (!openTemplate(name)) {
        return false;
    }
    const document::TemplateOptions options = templateOptions();
    auto read =
        document::DocumentTemplate::read(templateReader(), options, [this] { return runIsGood(); });
    if (!read) {
        return failPackage(read.fault(), TemplateProblem::CannotReadPart);
    }
    m_run->source = std::move(*read);
    m_run->templateRow = m_run->templates.emplace(digestOf(name), m_run->row).first->second;
    m_run->rules.place = options.kind == document::DocumentKind::Word ? document::TextPlace::Word
                                                                      : document::TextPlace::Slide;
    noteMarkers(name);
    return true;
}

void ActionWriteDoc::noteMarkers(const QString &name)
{
    const document::DocumentTemplate &source = *m_run->source;
    for (size_t i = 0; i < m_run->texts.size(); ++i) {
        m_run->texts[i].isFound |= source.hasText(i) || source.hasAttribute(i);
    }
    for (size_t i = 0; i < m_run->images.size(); ++i) {
        m_run->images[i].isFound |= source.hasImage(i);
    }
    // Markers that runs divide stay as they are; only their first place is named.
    for (const document::LeftMarker &left : source.splitMarkers()) {
        Column &column = m_run->texts[static_cast<size_t>(left.column)];
        column.isSplit = true;
        m_run->split.add([&] {
            return u"'%%1%' in the part '%2' of '%3'"_s.arg(column.name,
                                                            QString::fromUtf8(left.part), name);
        });
    }
}

bool ActionWriteDoc::checkName(const QString &name)
{
    const QByteArray digest = digestOf(name);
    const auto [earlier, isNew] = m_run->written.emplace(digest, m_run->row);
    if (!isNew) {
        return fail(u"ERROR: the rows %1 and %2 have the same output document '%3'.\n"_s.arg(
            QString::number(earlier->second), QString::number(m_run->row), name));
    }
    // openDocument() refuses the current template.
    const auto used = m_run->templates.find(digest);
    if (used != m_run->templates.end() && used->second != m_run->templateRow) {
        return fail(
            u"ERROR: the document '%1' of row %2 would replace the template of row %3: choose another output name.\n"_s
                .arg(name, QString::number(m_run->row), QString::number(used->second)));
    }
    return true;
}

bool ActionWriteDoc::addTexts(const OneRow &row, document::RowValues &values)
{
    const size_t count = m_run->texts.size();
    values.texts.resize(count);
    values.attributes.resize(count);
    // A text can be in an element and in an attribute, where quotes and line ends need escapes.
    document::TextRules attribute = m_run->rules;
    attribute.place = document::TextPlace::Attribute;
    for (size_t i = 0; i < count; ++i) {
        const QStringView text = row.textView(m_run->texts[i].input);
        document::TextCounts counts;
        if (m_run->source->hasAttribute(i)) {
            values.attributes[i] = document::documentText(text, attribute, &counts);
        }
        if (m_run->source->hasText(i)) {
            counts = {}; // the same characters are not counted twice
            values.texts[i] = document::documentText(text, m_run->rules, &counts);
        }
        if (counts.any() && !checkCounts(counts, m_run->texts[i])) {
            return false;
        }
    }
    return true;
}

bool ActionWriteDoc::checkCounts(const document::TextCounts &counts, const Column &column)
{
    const auto place = [&] {
        return u"row %1, column '%2'"_s.arg(QString::number(m_run->row), column.name);
    };
    m_run->innerBreaks.add(counts.innerBreaks, place);
    return counts.replaced == 0 ||
           fail(
               u"ERROR: %1 has %2 characters that XML does not allow: remove them from the data.\n"_s
                   .arg(place(), QString::number(counts.replaced)));
}

QString ActionWriteDoc::rowReason(const QString &column) const
{
    return u"the name is in row %1, column '%2'"_s.arg(QString::number(m_run->row), column);
}

bool ActionWriteDoc::addImages(const OneRow &row, document::RowValues &values,
                               document::RowImages &images)
{
    const size_t count = m_run->images.size();
    values.targets.resize(count);
    values.sizes.resize(count);
    images.resize(m_params.inlineImg ? count : 0);
    for (size_t i = 0; i < count; ++i) {
        // Files without a placeholder are not needed.
        if (!m_run->source->hasImage(i)) {
            continue;
        }
        const QString name = row.text(m_run->images[i].input);
        const bool done = name.isEmpty() ? failNoImage(m_run->images[i].name)
                                         : addImage(expandFile(name), i, values, images);
        if (!done) {
            return false;
        }
    }
    return true;
}

bool ActionWriteDoc::failNoImage(const QString &column)
{
    return fail(u"\nERROR: cannot open the file '%1'\n"_s.arg(QString()),
                u"the name of the image for the marker '%%1%' is empty: row %2, column '%1'"_s.arg(
                    column, QString::number(m_run->row)));
}

bool ActionWriteDoc::addImage(const QString &file, size_t column, document::RowValues &values,
                              document::RowImages &images)
{
    if (!m_params.inlineImg) {
        values.targets[column] = linkTo(file);
        values.sizes[column] =
            m_params.fitImages ? ImageStore::infoOf(file) : document::ImageInfo();
        return true;
    }
    const auto image = m_run->store.image(file);
    if (image) {
        images[column] = *image;
        values.sizes[column] = (*image)->info;
        return true;
    }
    return failImage(file, image.fault().code, rowReason(m_run->images[column].name));
}

bool ActionWriteDoc::failImage(const QString &file, const ImageFault &fault, const QString &row)
{
    switch (fault.error) {
    case ImageError::NotAnImage:
        return fail(
            u"ERROR: the file '%1' is not a PNG, JPEG, GIF, BMP, TIFF, EMF, WMF or SVG image.\n"_s
                .arg(file),
            row);
    case ImageError::TooLarge:
        return fail(u"ERROR: the image file '%1' is too large for a document.\n"_s.arg(file), row);
    case ImageError::CannotRead:
        break;
    }
    return fail(u"\nERROR: cannot open the file '%1'\n"_s.arg(file),
                u"%1; %2"_s.arg(failureReason(file, FileUse::Read, fault.reason), row));
}

bool ActionWriteDoc::writeDocument(const document::RowValues &values,
                                   const document::RowImages &images)
{
    const auto written = m_run->source->write(document(), values, images);
    return written ? commitDocument() : failDocument(written.fault());
}

bool ActionWriteDoc::failDocument(const Fault<opc::Error> &fault)
{
    // The content types are read for the first document only, when its members are written already.
    const bool isOfTypes = fault.detail.startsWith(u'[');
    // A text is first refused as a write, then as a member that is not complete.
    if (fault.code == opc::Error::WriteFailed && isTextPart(fault.detail) && runIsGood()) {
        warn(u"\nWARNING: problem writing the output file (3)\n"_s);
    }
    return failPackage(fault, isOfTypes ? TemplateProblem::CannotReadPart
                                        : TemplateProblem::CannotCopyMember);
}

void ActionWriteDoc::reportTexts()
{
    if (m_run->otherKinds.any()) {
        warn(
            u"Warning: the names of %1 documents do not end like those of their templates, first '%2': Office programs may refuse to open them.\n"_s
                .arg(QString::number(m_run->otherKinds.count()), m_run->otherKinds.first()));
    }
    if (m_run->innerBreaks.any()) {
        warn(
            u"Warning: %1 line breaks are inside text elements, where some programs do not show them, first in %2: set strictMarkup='1'.\n"_s
                .arg(QString::number(m_run->innerBreaks.count()), m_run->innerBreaks.first()));
    }
}

void ActionWriteDoc::reportMarkers()
{
    if (m_run->split.any()) {
        warn(
            u"Warning: %1 markers are divided into several runs and stay in the documents, first %2: type each marker again in one go, or set joinRuns='1'.\n"_s
                .arg(QString::number(m_run->split.count()), m_run->split.first()));
    }
    QStringList missing;
    for (const std::vector<Column> *list : {&m_run->texts, &m_run->images}) {
        for (const Column &column : *list) {
            if (!column.isFound && !column.isSplit) {
                missing << u"'%%1%'"_s.arg(column.name);
            }
        }
    }
    // Only of a good run: a failed one may not have come to the template with the marker.
    if (!missing.isEmpty() && runIsGood()) {
        warn(u"Warning: no template has a marker for %1 of the columns: %2.\n"_s.arg(
            QString::number(missing.size()), missing.join(u", "_s)));
    }
}

} // namespace corvanta
