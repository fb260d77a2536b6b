#include "corvanta/edit/shown_text.h"

#include <QColor>
#include <QCoreApplication>
#include <QFont>
#include <QGuiApplication>
#include <QPalette>
#include <QTextDocument>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

struct CellTexts
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::CellTexts)
};

// A cell may hold a whole document.
constexpr qsizetype kShownUnits = 200;
constexpr qsizetype kToolTipUnits = 2000;

/// A text on one line, with signs for line ends.
QString oneLine(QStringView text)
{
    QString line = text.left(kShownUnits).toString();
    line.replace(u"\r\n"_s, u"\u21b5"_s).replace(u'\n', u'\u21b5').replace(u'\r', u'\u21b5');
    return text.size() > kShownUnits ? line + u'\u2026' : line;
}

/// Between the colours of texts and of the background, readable on both dark and light ones.
QColor quietColor()
{
    const QPalette palette = QGuiApplication::palette();
    const QColor text = palette.color(QPalette::Text);
    const QColor base = palette.color(QPalette::Base);
    constexpr int kPartOfText = 7; // of 10
    const auto mix = [](int a, int b) { return (kPartOfText * a + (10 - kPartOfText) * b) / 10; };
    return {mix(text.red(), base.red()), mix(text.green(), base.green()),
            mix(text.blue(), base.blue())};
}

QString shownText(QStringView text)
{
    return text.isNull() ? CellTexts::tr("missing") : text.isEmpty() ? u"\"\""_s : oneLine(text);
}

QFont italic()
{
    QFont font;
    font.setItalic(true);
    return font;
}

/// Digits of equal value are below each other.
Qt::Alignment alignmentOf(const MetaInfo &type)
{
    const bool isNumber = type.type() != MetaInfo::Unknown;
    return (isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
}

} // namespace

QString plainToolTip(const QString &text)
{
    return text.isEmpty() ? QString() : Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal);
}

/// In words, because users need not know the letters of the types.
QString columnTypeText(const MetaInfo &type)
{
    switch (type.type()) {
    case MetaInfo::Float:
        return CellTexts::tr("number");
    case MetaInfo::Key:
        return CellTexts::tr("key");
    case MetaInfo::Unknown:
        break;
    }
    return CellTexts::tr("text");
}

/// A missing cell and a text that reads "missing" differ in font and colour.
QVariant cellData(QStringView text, const MetaInfo &type, int role)
{
    switch (role) {
    case Qt::DisplayRole:
        return shownText(text);
    case Qt::ToolTipRole:
        return plainToolTip(text.left(kToolTipUnits).toString());
    case Qt::FontRole:
        return text.isEmpty() ? italic() : QVariant();
    case Qt::ForegroundRole:
        return text.isEmpty() ? quietColor() : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant(alignmentOf(type));
    default:
        return {};
    }
}

/// The type has a line of its own, so that the column stays as narrow as its name.
QVariant headerData(const TableSchema &columns, int section, Qt::Orientation orientation, int role)
{
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole) {
        return {};
    }
    if (orientation == Qt::Vertical) {
        return section + 1;
    }
    const QString text =
        columns.names.at(section) + u'\n' + columnTypeText(columns.types.at(section));
    return role == Qt::ToolTipRole ? plainToolTip(text) : text;
}

} // namespace corvanta
