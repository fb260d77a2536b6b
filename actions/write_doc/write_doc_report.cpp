// What writeDoc says about templates and their markers: for "check --template", when a run first
// uses a template, and at the end of the run.
#include "actions/write_doc/write_doc.h"
#include "base/counted.h"
#include "codecs/encoding/hex_digit.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Templates whose markers a run names; the others are only counted.
constexpr size_t kMaxReportedTemplates = 10;
constexpr qsizetype kMaxReportedMarkers = 10;

/// What to do so that a run with these parameters finds the marker; empty if it does.
QString remedyFor(const document::TemplateMarker &marker, bool joinRuns, bool allParts)
{
    // No parameter helps, as only targets of pictures are replaced.
    if (marker.isLink) {
        return u"put it into a text: addresses of links are not changed"_s;
    }
    QStringList remedies;
    if (marker.runs > 1 && !joinRuns) {
        remedies << u"type it again in one go, or set joinRuns='1'"_s;
    } else if (marker.isEscaped && !joinRuns) {
        remedies << u"set joinRuns='1'"_s;
    }
    if (!marker.isInBody && !allParts) {
        remedies << u"set allParts='1'"_s;
    }
    return remedies.join(u"; "_s);
}

/// Texts such as "5%, at most 10%" or "10%ige ... 5%" look like a marker, too, as do the encoded
/// characters in the address of a picture or a link: "%C3%BCber".
bool isLikelyMarker(const document::TemplateMarker &marker)
{
    const QString &text = marker.text;
    const bool isEncoded = (marker.isPicture || marker.isLink) &&
                           hexDigit(text[1].unicode()) >= 0 && hexDigit(text[2].unicode()) >= 0;
    return (text[1].isLetter() || text[1] == u'_') && !isEncoded && !marker.isNumeric;
}

} // namespace

bool ActionWriteDoc::templateMarks(const QString &file, QVector<TemplateMark> *marks)
{
    if (!openTemplate(file)) {
        return false;
    }
    // Other packages have no markers, and an empty list would hide the mistake.
    if (const QString reason = otherPackageReason(); !reason.isEmpty()) {
        return failWith(TemplateProblem::CannotReadTemplate, file, reason);
    }
    const auto listed = document::listTemplate(templateReader());
    if (!listed) {
        return failPackage(listed.fault(), TemplateProblem::CannotReadPart);
    }
    for (const document::TemplateMarker &one : *listed) {
        // Most addresses with percent signs have encoded characters only.
        if (one.isLink && !isLikelyMarker(one)) {
            continue;
        }
        marks->push_back({one.text, one.location, QString::fromUtf8(one.part), one.count, one.runs,
                          remedyFor(one, false, false)});
    }
    closeFiles();
    return true;
}

void ActionWriteDoc::noteMarkers()
{
    const document::DocumentTemplate &source = *m_run->source;
    for (size_t i = 0; i < m_run->texts.size(); ++i) {
        m_run->texts[i].isFound |= source.hasText(i) || source.hasAttribute(i);
    }
    for (size_t i = 0; i < m_run->images.size(); ++i) {
        m_run->images[i].isFound |= source.hasImage(i);
    }
}

QString ActionWriteDoc::whyLeft(const document::TemplateMarker &marker)
{
    std::vector<Column> &columns = marker.isPicture ? m_run->images : m_run->texts;
    const auto column = std::find_if(columns.begin(), columns.end(), [&](const Column &one) {
        return marker.text == u'%' + one.name + u'%';
    });
    // A column with this name: the user expects it to be filled.
    if (column != columns.end()) {
        QString remedy = remedyFor(marker, m_params.joinRuns, m_params.allParts);
        column->isLeft |= !remedy.isEmpty();
        return remedy;
    }
    return isLikelyMarker(marker) && !marker.isLink
               ? u"no column of this name in '%1'"_s.arg(marker.isPicture ? u"image"_s : u"text"_s)
               : QString();
}

void ActionWriteDoc::reportLeftMarkers()
{
    // A part that cannot be read has its own message, or is copied unchanged.
    const auto listed = document::listTemplate(templateReader());
    qint64 count = 0;
    QStringList names;
    for (const document::TemplateMarker &marker :
         listed ? *listed : std::vector<document::TemplateMarker>()) {
        if (const QString why = whyLeft(marker); !why.isEmpty()) {
            count += marker.count;
            names << u"'%1' in %2 (%3)"_s.arg(marker.text, marker.location, why);
        }
    }
    // Most templates have nothing to report.
    if (count == 0) {
        return;
    }
    // Each row may have a template of its own; the log must stay readable.
    if (m_run->templates.size() > kMaxReportedTemplates) {
        m_run->moreTemplates.add([&] { return templateName(); });
        return;
    }
    // The count in the message is that of all markers.
    if (names.size() > kMaxReportedMarkers) {
        names = names.first(kMaxReportedMarkers) << u"..."_s;
    }
    warn(u"Warning: %1 of the template '%2' %4 left in the documents: %3.\n"_s.arg(
        counted(count, u"marker"_s), templateName(), names.join(u", "_s), isOrAre(count)));
}

void ActionWriteDoc::reportTexts()
{
    if (m_run->otherKinds.any()) {
        warn(
            u"Warning: %1 %3 a name that does not end like that of the template, first '%2': Office programs may refuse to open it.\n"_s
                .arg(counted(m_run->otherKinds.count(), u"document"_s), m_run->otherKinds.first(),
                     hasOrHave(m_run->otherKinds.count())));
    }
    // The default keeps the form that saved graphs expect; the parameter is the standard one.
    if (m_run->innerBreaks.any()) {
        warn(
            u"Warning: some programs do not show %1 inside text elements, first in %2: set strictMarkup='1'.\n"_s
                .arg(counted(m_run->innerBreaks.count(), u"line break"_s),
                     m_run->innerBreaks.first()));
    }
}

void ActionWriteDoc::reportMarkers()
{
    if (m_run->moreTemplates.any()) {
        warn(
            u"Warning: %1 %3 markers that are left in the documents, first '%2': \"corvanta check --template\" lists the markers of a template.\n"_s
                .arg(counted(m_run->moreTemplates.count(), u"more template"_s),
                     m_run->moreTemplates.first(), hasOrHave(m_run->moreTemplates.count())));
    }
    QStringList missing;
    for (const std::vector<Column> *list : {&m_run->texts, &m_run->images}) {
        for (const Column &column : *list) {
            // A marker that is left has its own warning already.
            if (!column.isFound && !column.isLeft) {
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
