// What readers call the parts of a template: "body", "header 1", "slide 3".
//
// For lists of markers and chart tags. Of workbooks only the charts of sheets have a location.
// Threads: pure functions once constructed.
#pragma once
#include "codecs/opc/package_copy.h"

#include <QByteArray>
#include <QString>

#include <map>

namespace corvanta::document {

class PartLocations
{
public:
    /// Reads the relationships of the package. Parts that cannot be read are left out.
    explicit PartLocations(zip::PackageReader &source);

    /// The location of a part with texts; empty for any other part. Slides have the number of their
    /// place in the presentation.
    QString of(const QByteArray &part) const;
    /// The location of the first part that refers to `target`, for example to a chart; empty if
    /// there is none.
    QString ofReference(const QByteArray &target) const;
    /// The name of the first sheet that shows a chart; empty if there is none.
    QString sheetOf(const QByteArray &chart) const;
    /// See bodyPart().
    const QByteArray &body() const { return m_body; }

private:
    /// Whether a part has content controls that show texts of other parts: word processors put
    /// those texts into the controls when they open the document (ECMA-376 part 1, 17.5.2.6).
    static bool showsData(opc::PackageCopy &package, const QByteArray &part);
    void addReferences(opc::PackageCopy &package, const QByteArray &part, const QString &location);
    void addSheets(opc::PackageCopy &package);
    void addCharts(opc::PackageCopy &package, const QByteArray &sheet, const QString &name);

    QByteArray m_body;
    bool m_showsData = false; // content controls show texts of parts of OtherPart::Kind::Data
    std::map<QByteArray, int> m_slides;         // places of the slides, from 1
    std::map<QByteArray, QString> m_references; // locations by target
    std::map<QByteArray, QString> m_sheets;     // names by chart
};

} // namespace corvanta::document
