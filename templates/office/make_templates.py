#!/usr/bin/python3
"""Makes the templates that writeReport offers under names such as ">bar.xlsx": make_templates.py [FOLDER]

Each template has charts with sample data; the name of the series is the tag. The data is in the chart itself, as in the documents that
writeReport makes, so there is no embedded workbook. The same script always gives the same bytes.
"""
import pathlib
import sys
import zipfile
from xml.sax.saxutils import escape

FONT = "Calibri"
DARK, GREY, LINE = "22313F", "5F6B76", "DDE2E7"
PALETTE = ["2F6690", "E08E45", "5B9279", "C8553D", "8E6C9E", "3A9CA6", "D4B13F", "6C7A89", "9CBF5B", "B56576", "4D5D9E", "A98467"]

DRAWING = "http://schemas.openxmlformats.org/drawingml/2006"
RELATIONS = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
PACKAGE = "http://schemas.openxmlformats.org/package/2006"
DOCUMENT = "application/vnd.openxmlformats-officedocument"
HEAD = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
NAMESPACES = f'xmlns:a="{DRAWING}/main" xmlns:r="{RELATIONS}"'

NUMBERS = escape('[>=10000]#,##0;[<=-10000]-#,##0;General')  # with separators where they help

# Kind: title, titles of the axes, sample data.
CHARTS = {
    "bar": ("Values by category", ("Category", "Value"),
            [("North", 42), ("East", 35), ("South", 57), ("West", 28), ("Centre", 48)]),
    "line": ("Development over time", ("Period", "Value"),
             [("Jan", 21), ("Feb", 24), ("Mar", 23), ("Apr", 30), ("May", 34), ("Jun", 33), ("Jul", 39), ("Aug", 44)]),
    "pie": ("Share of the total", None, [("North", 42), ("East", 23), ("South", 18), ("West", 11), ("Other", 6)]),
}


# ---- Charts

def fill(color):
    return f'<a:solidFill><a:srgbClr val="{color}"/></a:solidFill>'


def outline(color, width=9525):
    return f'<a:ln w="{width}" cap="rnd">{fill(color)}<a:round/></a:ln>'


def font(size, color, bold=0):
    return f'sz="{size}" b="{bold}">{fill(color)}<a:latin typeface="{FONT}"/>'


def text_style(size, color, bold=0, rotation=""):
    return (f'<c:txPr><a:bodyPr{rotation}/><a:lstStyle/><a:p><a:pPr><a:defRPr {font(size, color, bold)}</a:defRPr></a:pPr>'
            '<a:endParaRPr lang="en-US"/></a:p></c:txPr>')


def title(text, size, color, bold=0, rotation=""):
    return (f'<c:title><c:tx><c:rich><a:bodyPr{rotation}/><a:lstStyle/><a:p><a:pPr><a:defRPr {font(size, color, bold)}</a:defRPr></a:pPr>'
            f'<a:r><a:rPr lang="en-US" {font(size, color, bold)}</a:rPr><a:t>{escape(text)}</a:t></a:r></a:p></c:rich></c:tx>'
            '<c:overlay val="0"/></c:title>')


def literal(kind, values):
    points = "".join(f'<c:pt idx="{i}"><c:v>{escape(str(value))}</c:v></c:pt>' for i, value in enumerate(values))
    return f'<c:{kind}Lit><c:ptCount val="{len(values)}"/>{points}</c:{kind}Lit>'


def series(kind, tag, data, scale):
    name = f'<c:idx val="0"/><c:order val="0"/><c:tx><c:v>[[KOBData {tag}]]</c:v></c:tx>'
    values = f'<c:cat>{literal("str", [d[0] for d in data])}</c:cat><c:val>{literal("num", [d[1] for d in data])}</c:val>'
    if kind == "bar":
        look = f'<c:spPr>{fill(PALETTE[0])}</c:spPr><c:invertIfNegative val="0"/>'
    elif kind == "line":
        marker = f'<c:marker><c:symbol val="circle"/><c:size val="7"/><c:spPr>{fill("FFFFFF")}{outline(PALETTE[0], 22225)}</c:spPr></c:marker>'
        look = f'<c:spPr>{outline(PALETTE[0], 31750)}</c:spPr>{marker}'
        values += '<c:smooth val="0"/>'
    else:
        look = f'<c:spPr>{outline("FFFFFF", 19050)}</c:spPr>' + "".join(
            f'<c:dPt><c:idx val="{i}"/><c:bubble3D val="0"/><c:spPr>{fill(color)}{outline("FFFFFF", 19050)}</c:spPr></c:dPt>'
            for i, color in enumerate(PALETTE))
        look += ('<c:dLbls><c:numFmt formatCode="0%" sourceLinked="0"/><c:spPr><a:noFill/><a:ln><a:noFill/></a:ln></c:spPr>'
                 f'{text_style(scale, DARK, 1)}<c:dLblPos val="outEnd"/><c:showLegendKey val="0"/><c:showVal val="0"/><c:showCatName val="0"/>'
                 '<c:showSerName val="0"/><c:showPercent val="1"/><c:showBubbleSize val="0"/><c:showLeaderLines val="1"/></c:dLbls>')
    return f"<c:ser>{name}{look}{values}</c:ser>"


def axes(names, scale):
    category, value = names
    common = '<c:scaling><c:orientation val="minMax"/></c:scaling><c:delete val="0"/>'
    no_line = '<c:spPr><a:ln><a:noFill/></a:ln></c:spPr>'
    return (f'<c:catAx><c:axId val="1001"/>{common}<c:axPos val="b"/>{title(category, scale, GREY)}'
            '<c:numFmt formatCode="General" sourceLinked="0"/><c:majorTickMark val="none"/><c:minorTickMark val="none"/>'
            f'<c:tickLblPos val="low"/><c:spPr>{outline("AEB7C0")}</c:spPr>{text_style(scale, GREY)}<c:crossAx val="1002"/><c:crosses val="autoZero"/>'
            '<c:auto val="1"/><c:lblAlgn val="ctr"/><c:lblOffset val="100"/><c:noMultiLvlLbl val="0"/></c:catAx>'
            f'<c:valAx><c:axId val="1002"/>{common}<c:axPos val="l"/><c:majorGridlines><c:spPr>{outline(LINE)}</c:spPr></c:majorGridlines>'
            + title(value, scale, GREY, rotation=' rot="-5400000" vert="horz"') +
            f'<c:numFmt formatCode="{NUMBERS}" sourceLinked="0"/><c:majorTickMark val="none"/><c:minorTickMark val="none"/>'
            f'<c:tickLblPos val="nextTo"/>{no_line}{text_style(scale, GREY)}<c:crossAx val="1001"/><c:crosses val="autoZero"/>'
            '<c:crossBetween val="between"/></c:valAx>')


def chart(kind, tag, heading=True, scale=1000):
    """A chart part; `scale` is the size of its small texts in hundredths of a point."""
    text, names, data = CHARTS[kind]
    top = title(text, scale * 3 // 2, DARK, 1) if heading else ""
    drawn = series(kind, tag, data, scale)
    if kind == "bar":
        plot = ('<c:barChart><c:barDir val="col"/><c:grouping val="clustered"/><c:varyColors val="0"/>' + drawn +
                '<c:gapWidth val="60"/><c:axId val="1001"/><c:axId val="1002"/></c:barChart>')
    elif kind == "line":
        plot = ('<c:lineChart><c:grouping val="standard"/><c:varyColors val="0"/>' + drawn +
                '<c:marker val="1"/><c:axId val="1001"/><c:axId val="1002"/></c:lineChart>')
    else:
        plot = f'<c:pieChart><c:varyColors val="1"/>{drawn}<c:firstSliceAng val="0"/></c:pieChart>'
    legend = f'<c:legend><c:legendPos val="r"/><c:overlay val="0"/>{text_style(scale, DARK)}</c:legend>' if names is None else ""
    return (f'{HEAD}<c:chartSpace xmlns:c="{DRAWING}/chart" {NAMESPACES}><c:roundedCorners val="0"/><c:chart>{top}'
            f'<c:autoTitleDeleted val="{0 if heading else 1}"/><c:plotArea><c:layout/>{plot}{axes(names, scale) if names else ""}'
            f'<c:spPr><a:noFill/></c:spPr></c:plotArea>{legend}<c:plotVisOnly val="1"/><c:dispBlanksAs val="gap"/></c:chart>'
            f'<c:spPr>{fill("FFFFFF")}<a:ln><a:noFill/></a:ln></c:spPr>{text_style(scale, DARK)}</c:chartSpace>')


# ---- Parts that all documents have

def content_types(overrides):
    parts = "".join(f'<Override PartName="/{name}" ContentType="{DOCUMENT}.{kind}+xml"/>' for name, kind in overrides)
    return (f'{HEAD}<Types xmlns="{PACKAGE}/content-types"><Default Extension="rels" ContentType="application/vnd.openxmlformats-package.'
            f'relationships+xml"/><Default Extension="xml" ContentType="application/xml"/>{parts}</Types>')


def relationships(*targets):
    """Relationships rId1, rId2, ...: pairs of a kind and a target."""
    entries = "".join(f'<Relationship Id="rId{i + 1}" Type="{RELATIONS}/{kind}" Target="{target}"/>' for i, (kind, target) in enumerate(targets))
    return f'{HEAD}<Relationships xmlns="{PACKAGE}/relationships">{entries}</Relationships>'


def theme():
    system = f'<a:dk1><a:srgbClr val="{DARK}"/></a:dk1><a:lt1><a:srgbClr val="FFFFFF"/></a:lt1><a:dk2><a:srgbClr val="{GREY}"/></a:dk2>' \
             f'<a:lt2><a:srgbClr val="{LINE}"/></a:lt2>'
    accents = "".join(f'<a:accent{i + 1}><a:srgbClr val="{color}"/></a:accent{i + 1}>' for i, color in enumerate(PALETTE[:6]))
    links = f'<a:hlink><a:srgbClr val="{PALETTE[0]}"/></a:hlink><a:folHlink><a:srgbClr val="{PALETTE[4]}"/></a:folHlink>'
    fonts = "".join(f'<a:{kind}Font><a:latin typeface="{FONT}"/><a:ea typeface=""/><a:cs typeface=""/></a:{kind}Font>' for kind in ("major", "minor"))
    plain = '<a:solidFill><a:schemeClr val="phClr"/></a:solidFill>'
    lines = "".join(f'<a:ln w="{width}">{plain}</a:ln>' for width in (6350, 12700, 19050))
    effects = "<a:effectStyle><a:effectLst/></a:effectStyle>" * 3
    return (f'{HEAD}<a:theme xmlns:a="{DRAWING}/main" name="Report"><a:themeElements><a:clrScheme name="Report">{system}{accents}{links}</a:clrScheme>'
            f'<a:fontScheme name="Report">{fonts}</a:fontScheme><a:fmtScheme name="Report"><a:fillStyleLst>{plain * 3}</a:fillStyleLst>'
            f'<a:lnStyleLst>{lines}</a:lnStyleLst><a:effectStyleLst>{effects}</a:effectStyleLst><a:bgFillStyleLst>{plain * 3}</a:bgFillStyleLst>'
            '</a:fmtScheme></a:themeElements></a:theme>')


def chart_frame(relation):
    return (f'<a:graphic><a:graphicData uri="{DRAWING}/chart"><c:chart xmlns:c="{DRAWING}/chart" r:id="{relation}"/></a:graphicData></a:graphic>')


# ---- Workbooks

def workbook(kinds):
    """A workbook of one sheet; charts are one below the other or, if there are more, in two columns."""
    heading = CHARTS[kinds[0][0]][0] if len(kinds) == 1 else "Overview"
    main = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
    places = [(1, 3, 15, 32)] if len(kinds) == 1 else [(1, 3, 8, 20), (9, 3, 16, 20), (1, 21, 16, 40)]
    anchors = "".join(
        f'<xdr:twoCellAnchor><xdr:from><xdr:col>{left}</xdr:col><xdr:colOff>0</xdr:colOff><xdr:row>{top}</xdr:row><xdr:rowOff>0</xdr:rowOff></xdr:from>'
        f'<xdr:to><xdr:col>{right}</xdr:col><xdr:colOff>0</xdr:colOff><xdr:row>{bottom}</xdr:row><xdr:rowOff>0</xdr:rowOff></xdr:to>'
        f'<xdr:graphicFrame macro=""><xdr:nvGraphicFramePr><xdr:cNvPr id="{i + 2}" name="Chart {i + 1}" descr="{CHARTS[kind][0]}"/>'
        '<xdr:cNvGraphicFramePr/></xdr:nvGraphicFramePr><xdr:xfrm><a:off x="0" y="0"/><a:ext cx="0" cy="0"/></xdr:xfrm>'
        f'{chart_frame(f"rId{i + 1}")}</xdr:graphicFrame><xdr:clientData/></xdr:twoCellAnchor>'
        for i, ((kind, _), (left, top, right, bottom)) in enumerate(zip(kinds, places)))
    sheet = (f'{HEAD}<worksheet xmlns="{main}" xmlns:r="{RELATIONS}"><sheetPr><pageSetUpPr fitToPage="1"/></sheetPr>'
             '<sheetViews><sheetView showGridLines="0" workbookViewId="0"/></sheetViews><sheetFormatPr defaultRowHeight="15"/>'
             '<cols><col min="1" max="1" width="3" customWidth="1"/></cols><sheetData><row r="2" ht="27" customHeight="1">'
             f'<c r="B2" s="1" t="inlineStr"><is><t>{heading}</t></is></c></row></sheetData>'
             '<printOptions horizontalCentered="1"/><pageMargins left="0.4" right="0.4" top="0.5" bottom="0.5" header="0.3" footer="0.3"/>'
             '<pageSetup paperSize="9" orientation="landscape" fitToHeight="1"/><drawing r:id="rId1"/></worksheet>')
    styles = (f'{HEAD}<styleSheet xmlns="{main}"><fonts count="2"><font><sz val="11"/><color rgb="FF{DARK}"/><name val="{FONT}"/></font>'
              f'<font><b/><sz val="20"/><color rgb="FF{PALETTE[0]}"/><name val="{FONT}"/></font></fonts>'
              '<fills count="2"><fill><patternFill patternType="none"/></fill><fill><patternFill patternType="gray125"/></fill></fills>'
              '<borders count="1"><border><left/><right/><top/><bottom/><diagonal/></border></borders>'
              '<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>'
              '<cellXfs count="2"><xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/>'
              '<xf numFmtId="0" fontId="1" fillId="0" borderId="0" xfId="0" applyFont="1"/></cellXfs>'
              '<cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/></cellStyles></styleSheet>')
    names = [f"xl/charts/chart{i + 1}.xml" for i in range(len(kinds))]
    return {
        "[Content_Types].xml": content_types(
            [("xl/workbook.xml", "spreadsheetml.sheet.main"), ("xl/worksheets/sheet1.xml", "spreadsheetml.worksheet"),
             ("xl/styles.xml", "spreadsheetml.styles"), ("xl/theme/theme1.xml", "theme"), ("xl/drawings/drawing1.xml", "drawing"),
             *((name, "drawingml.chart") for name in names)]),
        "_rels/.rels": relationships(("officeDocument", "xl/workbook.xml")),
        "xl/workbook.xml": f'{HEAD}<workbook xmlns="{main}" xmlns:r="{RELATIONS}"><sheets><sheet name="Report" sheetId="1" r:id="rId1"/></sheets></workbook>',
        "xl/_rels/workbook.xml.rels": relationships(("worksheet", "worksheets/sheet1.xml"), ("styles", "styles.xml"), ("theme", "theme/theme1.xml")),
        "xl/styles.xml": styles, "xl/theme/theme1.xml": theme(), "xl/worksheets/sheet1.xml": sheet,
        "xl/worksheets/_rels/sheet1.xml.rels": relationships(("drawing", "../drawings/drawing1.xml")),
        "xl/drawings/drawing1.xml": f'{HEAD}<xdr:wsDr xmlns:xdr="{DRAWING}/spreadsheetDrawing" {NAMESPACES}>{anchors}</xdr:wsDr>',
        "xl/drawings/_rels/drawing1.xml.rels": relationships(*(("chart", f"../charts/chart{i + 1}.xml") for i in range(len(kinds)))),
        **{name: chart(kind, tag, len(kinds) > 1, 1200 if len(kinds) == 1 else 1000) for name, (kind, tag) in zip(names, kinds)},
    }


# ---- Word documents

def document(kinds):
    main = "http://schemas.openxmlformats.org/wordprocessingml/2006/main"
    kind, tag = kinds[0]
    heading = CHARTS[kind][0]
    width, height = 5760000, 3420000
    picture = (f'<w:drawing><wp:inline xmlns:wp="{DRAWING}/wordprocessingDrawing" distT="0" distB="0" distL="0" distR="0"><wp:extent cx="{width}" '
               f'cy="{height}"/><wp:docPr id="1" name="Chart 1" descr="{heading}"/><wp:cNvGraphicFramePr/>{chart_frame("rId3")}</wp:inline></w:drawing>')
    body = (f'<w:p><w:pPr><w:pStyle w:val="Title"/></w:pPr><w:r><w:t>Report</w:t></w:r></w:p>'
            f'<w:p><w:pPr><w:keepNext/><w:jc w:val="center"/></w:pPr><w:r>{picture}</w:r></w:p>'
            f'<w:p><w:pPr><w:pStyle w:val="Caption"/></w:pPr><w:r><w:t>Figure 1. {heading}</w:t></w:r></w:p>'
            '<w:sectPr><w:pgSz w:w="11906" w:h="16838"/><w:pgMar w:top="1418" w:right="1418" w:bottom="1418" w:left="1418" w:header="709" '
            'w:footer="709" w:gutter="0"/></w:sectPr>')
    fonts = f'<w:rFonts w:ascii="{FONT}" w:hAnsi="{FONT}" w:cs="{FONT}"/>'
    line = f'<w:pBdr><w:bottom w:val="single" w:sz="8" w:space="6" w:color="{PALETTE[0]}"/></w:pBdr>'

    def style(identity, name, paragraph, run):
        return (f'<w:style w:type="paragraph" w:styleId="{identity}"><w:name w:val="{name}"/><w:basedOn w:val="Normal"/><w:qFormat/>'
                f'<w:pPr>{paragraph}</w:pPr><w:rPr>{run}</w:rPr></w:style>')
    styles = (f'{HEAD}<w:styles xmlns:w="{main}"><w:docDefaults><w:rPrDefault><w:rPr>{fonts}<w:color w:val="{DARK}"/><w:sz w:val="22"/></w:rPr>'
              '</w:rPrDefault><w:pPrDefault><w:pPr><w:spacing w:after="160" w:line="264" w:lineRule="auto"/></w:pPr></w:pPrDefault></w:docDefaults>'
              '<w:style w:type="paragraph" w:default="1" w:styleId="Normal"><w:name w:val="Normal"/><w:qFormat/></w:style>'
              + style("Title", "Title", line + '<w:spacing w:after="360"/>', f'<w:b/><w:color w:val="{PALETTE[0]}"/><w:sz w:val="44"/>')
              + style("Caption", "caption", '<w:jc w:val="center"/>', f'<w:i/><w:color w:val="{GREY}"/><w:sz w:val="20"/>') + '</w:styles>')
    return {
        "[Content_Types].xml": content_types(
            [("word/document.xml", "wordprocessingml.document.main"), ("word/styles.xml", "wordprocessingml.styles"),
             ("word/theme/theme1.xml", "theme"), ("word/charts/chart1.xml", "drawingml.chart")]),
        "_rels/.rels": relationships(("officeDocument", "word/document.xml")),
        "word/document.xml": f'{HEAD}<w:document xmlns:w="{main}" {NAMESPACES}><w:body>{body}</w:body></w:document>',
        "word/_rels/document.xml.rels": relationships(("styles", "styles.xml"), ("theme", "theme/theme1.xml"), ("chart", "charts/chart1.xml")),
        "word/styles.xml": styles, "word/theme/theme1.xml": theme(), "word/charts/chart1.xml": chart(kind, tag),
    }


# ---- Presentations

GROUP = ('<p:nvGrpSpPr><p:cNvPr id="1" name=""/><p:cNvGrpSpPr/><p:nvPr/></p:nvGrpSpPr><p:grpSpPr><a:xfrm><a:off x="0" y="0"/><a:ext cx="0" cy="0"/>'
         '<a:chOff x="0" y="0"/><a:chExt cx="0" cy="0"/></a:xfrm></p:grpSpPr>')
SLIDE_MAIN = "http://schemas.openxmlformats.org/presentationml/2006/main"
WIDTH, HEIGHT, MARGIN = 12192000, 6858000, 640080


def frame(left, top, width, height, tag="a"):
    return f'<{tag}:xfrm><a:off x="{left}" y="{top}"/><a:ext cx="{width}" cy="{height}"/></{tag}:xfrm>'


def title_shape(text, place=""):
    content = f'<a:r><a:rPr lang="en-US"/><a:t>{escape(text)}</a:t></a:r>'
    return ('<p:sp><p:nvSpPr><p:cNvPr id="2" name="Title"/><p:cNvSpPr><a:spLocks noGrp="1"/></p:cNvSpPr><p:nvPr><p:ph type="title"/></p:nvPr></p:nvSpPr>'
            f'<p:spPr>{place}</p:spPr><p:txBody><a:bodyPr/><a:lstStyle/><a:p>{content}</a:p></p:txBody></p:sp>')


def slide(kind, relation):
    return (f'{HEAD}<p:sld xmlns:p="{SLIDE_MAIN}" {NAMESPACES}><p:cSld><p:spTree>{GROUP}{title_shape(CHARTS[kind][0])}<p:graphicFrame>'
            f'<p:nvGraphicFramePr><p:cNvPr id="4" name="Chart" descr="{CHARTS[kind][0]}"/><p:cNvGraphicFramePr/><p:nvPr/></p:nvGraphicFramePr>'
            f'{frame(MARGIN, 1371600, WIDTH - 2 * MARGIN, HEIGHT - 1371600 - 457200, "p")}{chart_frame(relation)}</p:graphicFrame></p:spTree></p:cSld></p:sld>')


def presentation(kinds):
    bar = ('<p:sp><p:nvSpPr><p:cNvPr id="9" name="Accent"/><p:cNvSpPr/><p:nvPr userDrawn="1"/></p:nvSpPr><p:spPr>'
           f'{frame(MARGIN, 1188720, 1097280, 45720)}<a:prstGeom prst="rect"><a:avLst/></a:prstGeom><a:solidFill><a:schemeClr val="accent2"/></a:solidFill>'
           '<a:ln><a:noFill/></a:ln></p:spPr><p:txBody><a:bodyPr/><a:lstStyle/><a:p><a:endParaRPr lang="en-US"/></a:p></p:txBody></p:sp>')
    background = '<p:bg><p:bgPr><a:solidFill><a:schemeClr val="bg1"/></a:solidFill><a:effectLst/></p:bgPr></p:bg>'
    colors = ('bg1="lt1" tx1="dk1" bg2="lt2" tx2="dk2" accent1="accent1" accent2="accent2" accent3="accent3" accent4="accent4" accent5="accent5" '
              'accent6="accent6" hlink="hlink" folHlink="folHlink"')
    level = '<a:lvl1pPr><a:defRPr sz="{}" b="{}"><a:solidFill><a:schemeClr val="{}"/></a:solidFill><a:latin typeface="+mn-lt"/></a:defRPr></a:lvl1pPr>'
    styles = (f'<p:txStyles><p:titleStyle>{level.format(3200, 1, "accent1")}</p:titleStyle><p:bodyStyle>{level.format(2000, 0, "tx1")}</p:bodyStyle>'
              f'<p:otherStyle>{level.format(1800, 0, "tx1")}</p:otherStyle></p:txStyles>')
    place = frame(MARGIN, 411480, WIDTH - 2 * MARGIN, 731520)
    master = (f'{HEAD}<p:sldMaster xmlns:p="{SLIDE_MAIN}" {NAMESPACES}><p:cSld>{background}<p:spTree>{GROUP}{bar}'
              + title_shape("Title", place).replace("<a:bodyPr/>", '<a:bodyPr anchor="b" lIns="0"><a:normAutofit/></a:bodyPr>') +
              f'</p:spTree></p:cSld><p:clrMap {colors}/><p:sldLayoutIdLst><p:sldLayoutId id="2147483649" r:id="rId1"/></p:sldLayoutIdLst>{styles}</p:sldMaster>')
    layout = (f'{HEAD}<p:sldLayout xmlns:p="{SLIDE_MAIN}" {NAMESPACES} type="titleOnly" preserve="1"><p:cSld name="Title and chart"><p:spTree>{GROUP}'
              f'{title_shape("Title")}</p:spTree></p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:sldLayout>')
    count = len(kinds)
    slides = "".join(f'<p:sldId id="{256 + i}" r:id="rId{i + 2}"/>' for i in range(count))
    parts = {
        "[Content_Types].xml": content_types(
            [("ppt/presentation.xml", "presentationml.presentation.main"), ("ppt/slideMasters/slideMaster1.xml", "presentationml.slideMaster"),
             ("ppt/slideLayouts/slideLayout1.xml", "presentationml.slideLayout"), ("ppt/theme/theme1.xml", "theme"),
             *((f"ppt/slides/slide{i + 1}.xml", "presentationml.slide") for i in range(count)),
             *((f"ppt/charts/chart{i + 1}.xml", "drawingml.chart") for i in range(count))]),
        "_rels/.rels": relationships(("officeDocument", "ppt/presentation.xml")),
        "ppt/presentation.xml": f'{HEAD}<p:presentation xmlns:p="{SLIDE_MAIN}" {NAMESPACES}><p:sldMasterIdLst><p:sldMasterId id="2147483648" r:id="rId1"/>'
                                f'</p:sldMasterIdLst><p:sldIdLst>{slides}</p:sldIdLst><p:sldSz cx="{WIDTH}" cy="{HEIGHT}"/><p:notesSz cx="6858000" cy="9144000"/>'
                                '</p:presentation>',
        "ppt/_rels/presentation.xml.rels": relationships(
            ("slideMaster", "slideMasters/slideMaster1.xml"), *(("slide", f"slides/slide{i + 1}.xml") for i in range(count)), ("theme", "theme/theme1.xml")),
        "ppt/slideMasters/slideMaster1.xml": master,
        "ppt/slideMasters/_rels/slideMaster1.xml.rels": relationships(("slideLayout", "../slideLayouts/slideLayout1.xml"), ("theme", "../theme/theme1.xml")),
        "ppt/slideLayouts/slideLayout1.xml": layout,
        "ppt/slideLayouts/_rels/slideLayout1.xml.rels": relationships(("slideMaster", "../slideMasters/slideMaster1.xml")),
        "ppt/theme/theme1.xml": theme(),
    }
    for i, (kind, tag) in enumerate(kinds, 1):
        parts[f"ppt/slides/slide{i}.xml"] = slide(kind, "rId2").replace("</p:cSld></p:sld>", "</p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:sld>")
        parts[f"ppt/slides/_rels/slide{i}.xml.rels"] = relationships(("slideLayout", "../slideLayouts/slideLayout1.xml"), ("chart", f"../charts/chart{i}.xml"))
        parts[f"ppt/charts/chart{i}.xml"] = chart(kind, tag, False, 1600)
    return parts


def main():
    folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else __file__).resolve()
    folder = folder if len(sys.argv) > 1 else folder.parent
    makers = {".xlsx": workbook, ".docx": document, ".pptx": presentation}
    made = {kind + suffix: make([(kind, "data")]) for kind in CHARTS for suffix, make in makers.items()}
    several = [("bar", "categories"), ("pie", "shares"), ("line", "periods")]
    made |= {"dashboard.xlsx": workbook(several), "slides.pptx": presentation(several)}
    for name, parts in made.items():
        with zipfile.ZipFile(folder / name, "w", zipfile.ZIP_DEFLATED) as package:
            for part, text in parts.items():
                package.writestr(zipfile.ZipInfo(part), text, zipfile.ZIP_DEFLATED, 9)


main()
