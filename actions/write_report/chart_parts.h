// The charts of an Office template: where they are, and which tags they have.
#pragma once
#include "codecs/charts/chart_tags.h"
#include "codecs/opc/error.h"
#include "codecs/zip/package_reader.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

namespace corvanta {

/// The folder of the chart parts in documents of this extension, with a "/" at its end; empty for
/// other files. The case of letters does not count.
QByteArray chartFolderOf(const QString &fileName);

/// A member of a template with tags, and its content.
struct ChartPart
{
    QByteArray member;
    QByteArray text;
    std::vector<charts::ChartTag> tags; // of `text`; copies of it share its bytes
};

/// What a template has for charts.
struct TemplateCharts
{
    std::vector<ChartPart> parts; // in the order of the package
    /// Members whose text is not UTF-8: their tags are not found.
    QStringList otherEncodings;
    /// False if the package is of another kind than its extension says.
    bool isOfKind = false;
};

/// Read the parts in `folder`, see chartFolderOf(). The detail of a fault is the member. Errors:
/// those of a member; Malformed, TooLarge.
Result<TemplateCharts, opc::Error> readCharts(zip::PackageReader &reader, const QByteArray &folder);

} // namespace corvanta
