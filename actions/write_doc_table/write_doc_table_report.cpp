// What writeDocTable says about a template and the places of the tables in it.
#include "actions/write_doc_table/write_doc_table.h"
#include "base/counted.h"
#include "codecs/document/document_part.h"
#include "codecs/document/document_parts.h"
#include "codecs/document/template_list.h"
#include "codecs/opc/marker_search.h"
#include "codecs/opc/markup_scan.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

/// Found before a run, which would fail only after it has started to read its input.
QVector<ParameterProblem> ActionWriteDocTable::problems() const
{
    QVector<ParameterProblem> found;
    std::vector<QByteArray> markers;
    for (int pin = 0; pin < tableCount(); ++pin) {
        const QByteArray marker = markerOf(tableOf(pin));
        if (std::find(markers.begin(), markers.end(), marker) != markers.end()) {
            found.push_back(
                {u"v"_s,
                 QCoreApplication::translate("Problems", "the marker '%1' of input pin %2 already "
                                                         "exists: all markers must be different")
                     .arg(QString::fromUtf8(marker), QString::number(pin + 1))});
        }
        markers.push_back(marker);
        QStringList invalid;
        // The columns are known at run time only; invalid widths are invalid for any number.
        document::columnWidths(tableOf(pin).colWidths, 0, &invalid);
        if (!invalid.isEmpty()) {
            found.push_back(
                {u"v"_s,
                 QCoreApplication::translate(
                     "Problems",
                     "the width '%1' of the table on input pin %2 is not allowed; allowed: a whole "
                     "number from 1 to 31680")
                     .arg(invalid.front(), QString::number(pin + 1))});
        }
    }
    addTemplateProblems(markers, &found);
    addOwnTemplateProblem(expandOutputFile(m_params.output, {}), expandFile(m_params.templateName),
                          &found);
    return found;
}

std::optional<QStringList> ActionWriteDocTable::templateMarkers() const
{
    const auto source = PackageInput::open(globalParameters(), expandFile(m_params.templateName));
    const auto markers = source ? document::listTemplate((*source)->reader())
                                : Result<std::vector<document::TemplateMarker>, opc::Error>(
                                      Fault{opc::Error::Unreadable});
    if (!markers) {
        return std::nullopt;
    }
    QStringList names;
    for (const document::TemplateMarker &marker : *markers) {
        // Tables replace texts of the body, so that other markers must not be offered.
        const bool isFound = marker.isInBody && !marker.isPicture && !marker.isLink &&
                             (marker.runs == 1 || m_params.joinRuns);
        if (isFound && marker.text.size() > 2) {
            names << marker.text.sliced(1).chopped(1); // without percent signs
        }
    }
    names.removeDuplicates();
    return names;
}

std::optional<QStringList> ActionWriteDocTable::templateStyles() const
{
    const auto source = PackageInput::open(globalParameters(), expandFile(m_params.templateName));
    if (!source) {
        return std::nullopt;
    }
    opc::PackageCopy package((*source)->reader(), [] { return true; });
    const auto part = package.read(document::stylesPart(package));
    if (!part) {
        return std::nullopt;
    }
    QStringList styles{QLatin1StringView(document::kTableGridStyle)};
    styles += document::tableStyles(*part);
    styles.removeDuplicates();
    return styles;
}

void ActionWriteDocTable::addTemplateProblems(const std::vector<QByteArray> &markers,
                                              QVector<ParameterProblem> *found) const
{
    const QString name = expandFile(m_params.templateName);
    // A missing file is found without this.
    if (m_params.templateName.isEmpty() || !QFileInfo(name).isFile()) {
        return;
    }
    const auto source = PackageInput::open(globalParameters(), name);
    if (!source) {
        found->push_back({u"template"_s, QCoreApplication::translate(
                                             "Problems", "cannot read the template '%1': %2")
                                             .arg(name, source.fault().detail)});
        return;
    }
    opc::PackageCopy package((*source)->reader(), [] { return true; });
    const auto body = package.read(document::bodyPart(package));
    const auto styles = package.read(document::stylesPart(package));
    for (const auto *const part : {&body, &styles}) {
        if (!*part || !opc::isUtf8Text(**part)) {
            found->push_back(
                {u"template"_s,
                 QCoreApplication::translate("Problems", "'%1' is not a Word document with styles")
                     .arg(name)});
            return;
        }
    }
    const QByteArray searched = searchedBody(*body, markers);
    for (const QString &text :
         missingStyles(*styles) +
             missingMarkers(searched, markers, findPlaces(searched, markers))) {
        found->push_back({u"v"_s, text, ParameterProblem::Severity::Warning});
    }
}

/// Word processors split a marker into several runs when part of it is edited later.
QByteArray ActionWriteDocTable::searchedBody(const QByteArray &body,
                                             const std::vector<QByteArray> &markers) const
{
    const QByteArray part = document::withTablePrefix(body);
    return m_params.joinRuns ? opc::joinMarkers(part, document::escapedMarkers(markers)) : part;
}

std::vector<document::TablePlace>
ActionWriteDocTable::findPlaces(const QByteArray &body,
                                const std::vector<QByteArray> &markers) const
{
    const auto forms = document::markerForms(markers, m_params.joinRuns);
    auto places = m_params.strictMarkup ? document::findParagraphPlaces(body, forms)
                                        : document::findTablePlaces(body, forms);
    for (document::TablePlace &place : places) {
        // The escaped forms follow the plain ones in the same order, so both mean one table.
        place.table %= static_cast<int>(markers.size());
    }
    return places;
}

/// Word processors open such a document without a message.
QStringList ActionWriteDocTable::missingStyles(QByteArray styles) const
{
    document::addTableGrid(&styles); // as a run does
    QStringList texts;
    for (int pin = 0; pin < tableCount(); ++pin) {
        const DocTable table = tableOf(pin);
        if (!document::definesStyle(styles, table.styleID)) {
            texts << QCoreApplication::translate(
                         "Problems",
                         "the template has no style '%1': the table at '%%2%' has no format")
                         .arg(table.styleID, table.markerName);
        }
    }
    return texts;
}

QStringList ActionWriteDocTable::missingMarkers(const QByteArray &body,
                                                const std::vector<QByteArray> &markers,
                                                const std::vector<document::TablePlace> &places)
{
    QStringList texts;
    const auto split = opc::findSplitMarkers(body, document::escapedMarkers(markers));
    for (size_t i = 0; i < markers.size(); ++i) {
        const auto isOfTable = [&](const document::TablePlace &p) { return p.table == int(i); };
        const auto isMarker = [&](const opc::SplitMarker &s) { return s.marker == int(i); };
        const QString marker = QString::fromUtf8(markers[i]);
        if (std::any_of(split.begin(), split.end(), isMarker)) {
            texts << QCoreApplication::translate(
                         "Problems", "the marker '%1' is divided into several runs and stays in "
                                     "the document: type it again in one go, or set joinRuns='1'")
                         .arg(marker);
        } else if (std::none_of(places.begin(), places.end(), isOfTable)) {
            texts
                << QCoreApplication::translate(
                       "Problems",
                       "the template has no marker '%1': the table on input pin %2 is not written")
                       .arg(marker, QString::number(i + 1));
        }
    }
    return texts;
}

void ActionWriteDocTable::warnEach(const QStringList &texts)
{
    for (const QString &text : texts) {
        warn(u"Warning: %1.\n"_s.arg(text));
    }
}

void ActionWriteDocTable::reportTexts()
{
    if (m_run->innerBreaks.any()) {
        warn(
            u"Warning: some programs do not show %1 inside text elements, first in %2: set strictMarkup='1'.\n"_s
                .arg(counted(m_run->innerBreaks.count(), u"line break"_s),
                     m_run->innerBreaks.first()));
    }
}

/// Such a marker is inside a tag, for example in an attribute.
void ActionWriteDocTable::reportLeft(const QByteArray &body,
                                     const std::vector<document::TablePlace> &places)
{
    Occurrences left;
    auto place = places.begin(); // both lists are in the order of the text
    for (const opc::MarkerHit &hit : opc::findMarkers(body, m_run->markers)) {
        place =
            std::find_if(place, places.end(), [&](const auto &p) { return p.resume >= hit.end; });
        if (place == places.end() || place->resume != hit.end) {
            left.add(
                [&] { return QString::fromUtf8(m_run->markers[static_cast<size_t>(hit.marker)]); });
        }
    }
    if (left.any()) {
        warn(
            u"Warning: %1 outside of texts, where no table can be, %3 left in the document, first '%2'.\n"_s
                .arg(counted(left.count(), u"marker"_s), left.first(), isOrAre(left.count())));
    }
}

void ActionWriteDocTable::reportOtherParts()
{
    // A part that cannot be read is copied unchanged.
    const auto listed = document::listTemplate(templateReader());
    Occurrences left;
    for (const document::TemplateMarker &one :
         listed ? *listed : std::vector<document::TemplateMarker>()) {
        const auto &markers = m_run->markers;
        const bool isMarker =
            std::find(markers.begin(), markers.end(), one.text.toUtf8()) != markers.end();
        if (isMarker && !one.isInBody) {
            left.add(one.count, [&] { return u"'%1' in %2"_s.arg(one.text, one.location); });
        }
    }
    if (left.any()) {
        warn(
            u"Warning: %1 %3 left in the document, first %2: tables are only possible in the body.\n"_s
                .arg(counted(left.count(), u"marker"_s), left.first(), isOrAre(left.count())));
    }
}

void ActionWriteDocTable::reportPlaces(const std::vector<document::TablePlace> &places)
{
    Occurrences dropped;
    Occurrences inText;
    for (const document::TablePlace &place : places) {
        const auto marker = [&] {
            return QString::fromUtf8(m_run->markers[static_cast<size_t>(place.table)]);
        };
        if (place.dropped > 0) {
            dropped.add(marker);
        }
        if (place.isInText) {
            inText.add(marker);
        }
    }
    if (dropped.any()) {
        warn(
            u"Warning: the text before %1 in the same paragraph is dropped, first that before '%2': put markers into paragraphs of their own, or set strictMarkup='1'.\n"_s
                .arg(counted(dropped.count(), u"marker"_s), dropped.first()));
    }
    if (inText.any()) {
        warn(
            u"Warning: some programs do not show %1 inside the text of a formatted paragraph, first that at '%2': set strictMarkup='1'.\n"_s
                .arg(counted(inText.count(), u"table"_s), inText.first()));
    }
}

} // namespace corvanta
