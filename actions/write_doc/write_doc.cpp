#include "actions/write_doc/write_doc.h"

#include "base/counted.h"
#include "base/nearest_name.h"
#include "base/platform/files.h"
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
        // (1) is for parts with texts, (2) for relationships and content types.
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
        // (5) is for parts with texts, (6) for all other members.
        return isTextPart(name) ? u"\nERROR: problem writing the output file(5)\n"_s
                                : u"\nERROR: problem writing the output file(6)\n"_s;
    case TemplateProblem::CannotClose:
        break;
    }
    return u"\nWARNING: problem closing the output file\n"_s;
}

QVector<TargetUse> ActionWriteDoc::targets() const
{
    return {{expandOutputFile(u"*"_s, QString()), TargetUse::Access::Create, true}};
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
    // A row is a document, so that a stop waits for one document at most.
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
    // Also after a failure: what the documents so far lack is useful to know.
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
    return *input >= 0 || fail(u"\nERROR: cannot find column '%1' on input pin\n"_s.arg(name),
                               missingColumnReason(name, columns.schema().names));
}

bool ActionWriteDoc::findColumns(const OneRow &columns)
{
    // Every missing column is reported, so that a user can correct all of them together.
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
    const QString source = row.text(m_run->templateColumn);
    // An empty name would be expanded to a folder, and its message would name that.
    if (source.isEmpty()) {
        return failNoName(TemplateProblem::CannotReadTemplate, u"template"_s);
    }
    const QString name = row.text(m_run->output);
    if (name.isEmpty()) {
        return failNoName(TemplateProblem::CannotCreate, u"document"_s);
    }
    const QString target = expandOutputFile(name, QString());
    return useTemplate(expandFile(source)) && checkName(target) && fillDocument(row, target);
}

bool ActionWriteDoc::failNoName(TemplateProblem problem, const QString &file)
{
    return fail(message(problem, QString()),
                u"the name of the %1 is empty: %2"_s.arg(file, placeOf(columnOf(problem))));
}

bool ActionWriteDoc::fillDocument(const OneRow &row, const QString &name)
{
    // What is wrong with the data of the row is found before the document is created.
    document::RowValues values;
    document::RowImages images;
    const bool done = addTexts(row, values) && addImages(row, values, images) &&
                      openDocument(name) && writeDocument(values, images);
    if (done && hasOtherKind(name)) {
        m_run->otherKinds.add([&] { return name; });
    }
    return done;
}

document::TemplateOptions ActionWriteDoc::templateOptions() const
{
    document::TemplateOptions options;
    // The name decides, and not the members: the message names the part that is missing.
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
    // Rows with one template usually follow each other, so only the last one is kept.
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
    const auto [first, isNew] = m_run->templates.emplace(digestOf(name), m_run->row);
    m_run->templateRow = first->second;
    m_run->rules.place = options.kind == document::DocumentKind::Word ? document::TextPlace::Word
                                                                      : document::TextPlace::Slide;
    noteMarkers();
    if (isNew) {
        reportLeftMarkers();
    }
    return true;
}

bool ActionWriteDoc::checkName(const QString &name)
{
    // Otherwise the later row would replace the document of the earlier one without a message.
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
    const auto place = [&] { return placeOf(column.name); };
    m_run->innerBreaks.add(counts.innerBreaks, place);
    return counts.replaced == 0 ||
           fail(
               u"ERROR: %1 has %2 that XML does not allow: remove such characters from the data.\n"_s
                   .arg(place(), counted(counts.replaced, u"character"_s)));
}

QString ActionWriteDoc::placeOf(const QString &column) const
{
    return u"row %1, column '%2'"_s.arg(QString::number(m_run->row), column);
}

QString ActionWriteDoc::rowReason(const QString &column) const
{
    return u"the name is in "_s + placeOf(column);
}

const QString &ActionWriteDoc::columnOf(TemplateProblem problem) const
{
    switch (problem) {
    case TemplateProblem::CannotReadTemplate:
    case TemplateProblem::EmptyTemplate:
    case TemplateProblem::CannotOpenMember:
    case TemplateProblem::CannotReadPart:
    case TemplateProblem::CannotCopyMember:
        return m_params.templateColumn;
    case TemplateProblem::CannotCreate:
    case TemplateProblem::CannotAddMember:
    case TemplateProblem::CannotWrite:
    case TemplateProblem::CannotClose:
        break;
    }
    return m_params.output;
}

QString ActionWriteDoc::sourceOf(TemplateProblem problem) const
{
    // Without a run, the user of a template has named it.
    return m_run ? rowReason(columnOf(problem)) : QString();
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
    return fail(
        u"\nERROR: cannot open the file '%1'\n"_s.arg(QString()),
        u"the name of the image for the marker '%%1%' is empty: %2"_s.arg(column, placeOf(column)));
}

bool ActionWriteDoc::addImage(const QString &file, size_t column, document::RowValues &values,
                              document::RowImages &images)
{
    // The file is read when the document is shown; only its size matters here, if at all.
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
    // The document gets its name here, and no later row can change it.
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

} // namespace corvanta
