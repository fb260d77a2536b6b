#include "tests/panels/panel_support.h"

#include "corvanta/edit/translation.h"
#include "corvanta/main_ui.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>
#include <QMap>
#include <QToolButton>
#include <QTranslator>

#include <sstream>

using namespace Qt::StringLiterals;

namespace panels {

const corvanta::ActionRegistry &registry()
{
    static const auto loaded = [] {
        auto all = std::make_unique<corvanta::ActionRegistry>();
        corvanta::ActionRegistry::addSearchFolder(
            QFileInfo(QStringLiteral(CORVANTA_MODULE)).path());
        all->loadAll();
        return all;
    }();
    return *loaded;
}

QStringList moduleTypes()
{
    return registry().typeNames();
}

Action fromXml(const QByteArray &xml, GlobalParameters *global)
{
    const auto node = XMLNode::parse(xml);
    return node ? registry().create(*node, global) : nullptr;
}

QByteArray saved(ActionItem &action)
{
    std::wostringstream out;
    action.save(out, QString::fromLatin1(action.getTypeName()));
    return QString::fromStdWString(out.str()).toUtf8();
}

ActionParameters &parametersOf(const Action &action)
{
    return dynamic_cast<ActionParameters &>(*action);
}

QString valueOf(const Action &action, const QString &name)
{
    const ActionParameters &parameters = parametersOf(action);
    return parameters.parameterValue(parameters.indexOfParameter(name));
}

QByteArray example(const QString &type)
{
    static const QMap<QString, QByteArray> examples{
        {u"readExcel"_s,
         "<readExcel fileName='sales_2026.xlsx' sheetMode='1' sheetName='Q1' skipRows='2'/>"},
        {u"readExcelOld"_s, "<readExcelOld fileName='archive/sales_1998.xls'/>"},
        {u"readExcelSheets"_s, "<readExcelSheets fileName='sales_2026.xlsx'/>"},
        {u"readJSON"_s,
         "<readJSON fileName='orders.jsonl' outputFilenames='1'><Level initialPath='orders' "
         "subtagName=''><e name='id' path='id'/><e name='customer' path='customer/name'/></Level>"
         "<Level initialPath='lines' subtagName=''><e name='article' path='article'/><e "
         "name='price' path='price'/></Level></readJSON>"},
        {u"readXML"_s, "<readXML fileName='catalogue.xml'><Level initialPath='catalogue' "
                       "subtagName='book'><e name='title' path='title'/><e name='isbn' "
                       "path='@isbn'/></Level></readXML>"},
        {u"readParquet"_s,
         "<readParquet fileName='trips.parquet' columnSelection='1'><ColumnsToRead><s>date</s>"
         "<s>distance</s></ColumnsToRead></readParquet>"},
        {u"readStat"_s, "<readStat fileName='survey.sav' formatDates='1'/>"},
        {u"ReadXBF"_s, "<ReadXBF fileName='clients.dbf'/>"},
        {u"readCSV"_s, "<readCSV fileName='orders.csv' types='K,U,U,F'/>"},
        {u"writeCSV"_s, "<writeCSV fileName='orders.csv' separator=';'/>"},
        {u"writeExcel"_s,
         "<writeExcel mode='2' fileNameDestination='report.xlsx' sheetName='Totals' "
         "sheetMode='1' startRow='0' writeAllColumns='0'><ToWrite><s>country</s><s>amount</s>"
         "</ToWrite></writeExcel>"},
        {u"writeJSON"_s,
         "<writeJSON fileName='orders.json' writeAllRows='0' testCol='country' testValue='BE'>"
         "<Levels><Level><Item type='0' text='{'/><Item type='2'><s>country</s><s>city</s></Item>"
         "<Item type='0' text=',&quot;sales&quot;:['/><Item type='5' calledLevel='sales'/>"
         "<Item type='0' text=']}'/></Level><Level name='sales' partitionCol='country'>"
         "<Item type='0' text='{'/><Item type='2'><s>amount</s></Item><Item type='0' text='}'/>"
         "</Level></Levels></writeJSON>"},
        {u"writeXML"_s, "<writeXML fileName='orders.xml' humanReadable='1'/>"},
        {u"writeParquet"_s, "<writeParquet file='orders.parquet' codec='3' split='1' "
                            "splitVar='country'/>"},
        {u"writeSAS"_s,
         "<writeSAS fileName='orders.sas7bdat' autoWidth='0'><StringColDef><CD n='country' "
         "l='40' ol='32'/></StringColDef></writeSAS>"},
        {u"writeSASXPT"_s, "<writeSASXPT fileName='orders.xpt' version8='1' autoWidth='1'/>"},
        {u"writeDoc"_s,
         "<writeDoc output='wordFile' template='templateFile'><text><s>country</s><s>city</s>"
         "<s>title</s></text><image><s>photo</s></image></writeDoc>"},
        {u"writeDocTable"_s,
         "<writeDocTable template='report.docx' output='report_2026.docx'><v markerName='T1' "
         "colWidths='2000,4000' styleID='Report' includeHeaders='1'/><v markerName='T2' "
         "styleID='Report' includeHeaders='1'/></writeDocTable>"},
        {u"writeReport"_s,
         "<writeReport template='bar.pptx' output='sales_2026.pptx' nPinIn='1'><Chart type='0' "
         "name='data'><axis pinIdx='0'>country</axis><axis pinIdx='0'>amount</axis></Chart>"
         "</writeReport>"},
        {u"select"_s, "<select><columns><s>country</s><s>amount</s></columns>"
                      "<rename><s>amount=total</s></rename></select>"},
        {u"filter"_s, "<filter where='amount &gt; 10 and city is not null'/>"},
        {u"sort"_s, "<sort><keys><s>-amount</s><s>country</s></keys></sort>"},
        {u"cast"_s, "<cast onError='1'><types><s>amount=F</s></types></cast>"},
        {u"join"_s, "<join type='1'><keys><s>city=name</s></keys></join>"},
        {u"union"_s, "<union match='0' lastColumn='_FileNames'/>"},
        {u"mergeFiles"_s, "<mergeFiles fileName='month.parquet'><parts><s>day-*.parquet</s></parts>"
                          "</mergeFiles>"},
    };
    return examples.value(type, '<' + type.toLatin1() + "/>");
}

void unfold(const QWidget &panel)
{
    for (QToolButton *const heading : panel.findChildren<QToolButton *>(u"heading"_s)) {
        if (heading->property("isFolded").toBool()) {
            heading->click();
        }
    }
}

std::string nameOf(const QWidget *widget)
{
    const QWidget *named = widget;
    while (named != nullptr && named->objectName().isEmpty()) {
        named = named->parentWidget();
    }
    return std::string(widget->metaObject()->className()) + " in " +
           (named == nullptr ? std::string() : named->objectName().toStdString());
}

void setInputColumns(const QStringList &names)
{
    MainUI::EditorHooks hooks;
    hooks.inputColumns = [names](ActionItem *, int) {
        TableSchema schema;
        schema.names = names;
        return schema;
    };
    MainUI::setEditorHooks(hooks);
}

French::French()
{
    if (!corvanta::loadTranslation(QLocale(QLocale::French))) {
        qFatal("there is no French catalogue");
    }
}

French::~French()
{
    for (QTranslator *const each : QCoreApplication::instance()->findChildren<QTranslator *>()) {
        QCoreApplication::removeTranslator(each);
        delete each;
    }
}

QPalette paletteOf(Colors colors)
{
    if (colors == Colors::Light) {
        return {QColor(0xf4, 0xf4, 0xf4)};
    }
    QPalette dark(QColor(0x35, 0x36, 0x3a), QColor(0x2b, 0x2c, 0x30));
    dark.setColor(QPalette::Base, QColor(0x1f, 0x20, 0x23));
    dark.setColor(QPalette::AlternateBase, QColor(0x2b, 0x2c, 0x30));
    dark.setColor(QPalette::Highlight, QColor(0x3d, 0x7e, 0xd8));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::ToolTipBase, QColor(0x1f, 0x20, 0x23));
    dark.setColor(QPalette::ToolTipText, Qt::white);
    return dark;
}

} // namespace panels
