#!/usr/bin/python3
"""Make the templates and pictures of the examples: make_templates.py [FOLDER]

The packages are written member by member, so that they are small and every byte is known. Equal runs give equal files.
"""
import pathlib
import struct
import sys
import zipfile
import zlib

OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
PACKAGE = "http://schemas.openxmlformats.org/package/2006"
DRAWING = "http://schemas.openxmlformats.org/drawingml/2006"
WORD = "http://schemas.openxmlformats.org/wordprocessingml/2006/main"
SLIDES = "http://schemas.openxmlformats.org/presentationml/2006/main"
HEAD = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
BLUE = "1F4E79"


def package(path, members):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as out:
        for name, content in members.items():
            info = zipfile.ZipInfo(name, (1980, 1, 1, 0, 0, 0))
            info.compress_type = zipfile.ZIP_DEFLATED
            out.writestr(info, content if isinstance(content, bytes) else (HEAD + content).encode())


def content_types(overrides):
    parts = "".join(f'<Override PartName="/{name}" ContentType="application/vnd.openxmlformats-officedocument.{kind}+xml"/>'
                    for name, kind in overrides.items())
    return (f'<Types xmlns="{PACKAGE}/content-types"><Default Extension="rels" ContentType="application/vnd.openxmlformats-package.'
            f'relationships+xml"/><Default Extension="xml" ContentType="application/xml"/>{parts}</Types>')


def relationships(*targets):
    """(kind, target) pairs with the ids rId1, rId2, ...; a target that is not a part is external."""
    def mode(target):
        return ' TargetMode="External"' if target.startswith("file:") else ""
    return f'<Relationships xmlns="{PACKAGE}/relationships">' + "".join(
        f'<Relationship Id="rId{i}" Type="{OFFICE}/{kind}" Target="{target}"{mode(target)}/>'
        for i, (kind, target) in enumerate(targets, 1)) + "</Relationships>"


def paragraph(text="", style="", run="", properties=""):
    style = f'<w:pStyle w:val="{style}"/>' if style else ""
    properties = f"<w:pPr>{style}{properties}</w:pPr>" if style or properties else ""
    run = f"<w:rPr>{run}</w:rPr>" if run else ""
    return f"<w:p>{properties}<w:r>{run}<w:t>{text}</w:t></w:r></w:p>"


def picture(relationship, width, height, align="right"):
    """A linked picture at an edge of the text; sizes in millimetres."""
    cx, cy = width * 36000, height * 36000
    return (f'<w:r><w:drawing><wp:anchor distT="0" distB="0" distL="114300" distR="0" simplePos="0" relativeHeight="1" behindDoc="0" '
            f'locked="0" layoutInCell="1" allowOverlap="1"><wp:simplePos x="0" y="0"/><wp:positionH relativeFrom="margin"><wp:align>'
            f'{align}</wp:align></wp:positionH><wp:positionV relativeFrom="paragraph"><wp:posOffset>0</wp:posOffset></wp:positionV>'
            f'<wp:extent cx="{cx}" cy="{cy}"/><wp:wrapSquare wrapText="bothSides"/><wp:docPr id="1" name="Picture 1"/>'
            f'<wp:cNvGraphicFramePr/><a:graphic><a:graphicData uri="{DRAWING}/picture"><pic:pic><pic:nvPicPr><pic:cNvPr id="1" '
            f'name="Picture 1"/><pic:cNvPicPr/></pic:nvPicPr><pic:blipFill><a:blip r:link="{relationship}"/><a:stretch><a:fillRect/>'
            f'</a:stretch></pic:blipFill><pic:spPr><a:xfrm><a:off x="0" y="0"/><a:ext cx="{cx}" cy="{cy}"/></a:xfrm><a:prstGeom '
            f'prst="rect"><a:avLst/></a:prstGeom></pic:spPr></pic:pic></a:graphicData></a:graphic></wp:anchor></w:drawing></w:r>')


def word_root(name, content):
    return (f'<w:{name} xmlns:w="{WORD}" xmlns:r="{OFFICE}" xmlns:a="{DRAWING}/main" xmlns:pic="{DRAWING}/picture" '
            f'xmlns:wp="{DRAWING}/wordprocessingDrawing">{content}</w:{name}>')


def style(kind, name, title, content, default=False):
    default = ' w:default="1"' if default else ""
    return f'<w:style w:type="{kind}"{default} w:styleId="{name}"><w:name w:val="{title}"/>{content}</w:style>'


def shaded_table():
    """A table style: a dark first row, light lines between the rows."""
    line = '<w:{} w:val="single" w:sz="4" w:space="0" w:color="BFBFBF"/>'
    borders = "".join(line.format(side) for side in ("top", "bottom", "insideH"))
    margins = "".join(f'<w:{side} w:w="{width}" w:type="dxa"/>'
                      for side, width in (("top", 40), ("left", 108), ("bottom", 40), ("right", 108)))
    return style("table", "Report", "Report", (
        f'<w:basedOn w:val="TableNormal"/><w:pPr><w:spacing w:after="0"/></w:pPr><w:tblPr><w:tblBorders>{borders}</w:tblBorders>'
        f'<w:tblCellMar>{margins}</w:tblCellMar></w:tblPr><w:tblStylePr w:type="firstRow"><w:rPr><w:b/><w:color w:val="FFFFFF"/>'
        f'</w:rPr><w:tcPr><w:shd w:val="clear" w:color="auto" w:fill="{BLUE}"/></w:tcPr></w:tblStylePr>'))


def styles():
    def font(size, color="262626"):
        return f'<w:rPr><w:color w:val="{color}"/><w:sz w:val="{size}"/></w:rPr>'
    return word_root("styles", (
        '<w:docDefaults><w:rPrDefault><w:rPr><w:rFonts w:ascii="Calibri" w:hAnsi="Calibri" w:cs="Calibri"/><w:sz w:val="22"/></w:rPr>'
        '</w:rPrDefault><w:pPrDefault><w:pPr><w:spacing w:after="160" w:line="264" w:lineRule="auto"/></w:pPr></w:pPrDefault>'
        "</w:docDefaults>" + style("paragraph", "Normal", "Normal", "", True)
        + style("paragraph", "Title", "Title", '<w:basedOn w:val="Normal"/><w:pPr><w:spacing w:after="240"/></w:pPr>' + font(48, BLUE))
        + style("paragraph", "Heading1", "heading 1", '<w:basedOn w:val="Normal"/><w:pPr><w:keepNext/><w:spacing w:before="360" '
                'w:after="120"/></w:pPr>' + font(30, BLUE))
        + style("paragraph", "Small", "Small", '<w:basedOn w:val="Normal"/>' + font(18, "7F7F7F"))
        + style("table", "TableNormal", "Normal Table", '<w:tblPr><w:tblInd w:w="0" w:type="dxa"/></w:tblPr>', True)
        + shaded_table()))


def document(path, body, *pictures, footer=""):
    """A Word document; pictures have the ids rId2, rId3, ..."""
    targets = [("styles", "styles.xml"), *(("image", target) for target in pictures)]
    parts = {"word/document.xml": "wordprocessingml.document.main", "word/styles.xml": "wordprocessingml.styles"}
    members, reference = {}, ""
    if footer:
        targets.append(("footer", "footer1.xml"))
        parts["word/footer1.xml"] = "wordprocessingml.footer"
        members["word/footer1.xml"] = word_root("ftr", footer)
        reference = f'<w:footerReference w:type="default" r:id="rId{len(targets)}"/>'
    page = (f'<w:sectPr>{reference}<w:pgSz w:w="11906" w:h="16838"/><w:pgMar w:top="1417" w:right="1417" w:bottom="1134" '
            'w:left="1417" w:header="708" w:footer="708" w:gutter="0"/></w:sectPr>')
    package(path, {
        "[Content_Types].xml": content_types(parts),
        "_rels/.rels": relationships(("officeDocument", "word/document.xml")),
        "word/document.xml": word_root("document", f"<w:body>{body}{page}</w:body>"),
        "word/_rels/document.xml.rels": relationships(*targets),
        "word/styles.xml": styles(), **members})


def letter(path):
    line = f'<w:pBdr><w:bottom w:val="single" w:sz="8" w:space="6" w:color="{BLUE}"/></w:pBdr>'
    logo = f"<w:p>{picture('rId2', 45, 30)}<w:r><w:t>%name%</w:t></w:r></w:p>"
    document(path, (
        paragraph("Northwind Observatory", "Title", properties=line) + logo + paragraph("%address%") + paragraph("%date%", "Small")
        + paragraph("Your picture of %object%", run=f'<w:b/><w:color w:val="{BLUE}"/><w:sz w:val="28"/>')
        + paragraph("Dear %name%,") + paragraph("%text%")
        + paragraph("Thank you for observing with us. Your image is printed above in its own proportions.")
        + paragraph("Yours sincerely,") + paragraph("The Northwind team")),
        "file:///%25picture%25", footer=paragraph("Letter to %name%", "Small", properties='<w:jc w:val="center"/>'))


def report(path):
    document(path, (
        paragraph("Sales report", "Title") + paragraph("Both tables are written from the rows of their input pins.", "Small")
        + paragraph("Regions", "Heading1") + "<w:p><w:r><w:t>%T1%</w:t></w:r></w:p>"
        + paragraph("Best products", "Heading1") + "<w:p><w:r><w:t>%T2%</w:t></w:r></w:p>"))


# The tree of shapes of a slide begins with its own position.
TREE = ('<p:nvGrpSpPr><p:cNvPr id="1" name=""/><p:cNvGrpSpPr/><p:nvPr/></p:nvGrpSpPr><p:grpSpPr><a:xfrm><a:off x="0" y="0"/><a:ext '
        'cx="0" cy="0"/><a:chOff x="0" y="0"/><a:chExt cx="0" cy="0"/></a:xfrm></p:grpSpPr>')


def frame(x, y, width, height):
    return f'<a:xfrm><a:off x="{x * 36000}" y="{y * 36000}"/><a:ext cx="{width * 36000}" cy="{height * 36000}"/></a:xfrm>'


def text_box(number, text, place, size, color, bold=0):
    return (f'<p:sp><p:nvSpPr><p:cNvPr id="{number}" name="Text {number}"/><p:cNvSpPr txBox="1"/><p:nvPr/></p:nvSpPr><p:spPr>'
            f'{frame(*place)}<a:prstGeom prst="rect"><a:avLst/></a:prstGeom></p:spPr><p:txBody><a:bodyPr wrap="square"/><a:p><a:r><a:rPr '
            f'lang="en-GB" sz="{size}00" b="{bold}"><a:solidFill><a:srgbClr val="{color}"/></a:solidFill></a:rPr><a:t>{text}</a:t></a:r>'
            f'</a:p></p:txBody></p:sp>')


def bar(number, place):
    return (f'<p:sp><p:nvSpPr><p:cNvPr id="{number}" name="Bar"/><p:cNvSpPr/><p:nvPr/></p:nvSpPr><p:spPr>{frame(*place)}<a:prstGeom '
            f'prst="rect"><a:avLst/></a:prstGeom><a:solidFill><a:srgbClr val="{BLUE}"/></a:solidFill></p:spPr></p:sp>')


def slide_picture(number, relationship, place):
    return (f'<p:pic><p:nvPicPr><p:cNvPr id="{number}" name="Picture"/><p:cNvPicPr/><p:nvPr/></p:nvPicPr><p:blipFill><a:blip '
            f'r:link="{relationship}"/><a:stretch><a:fillRect/></a:stretch></p:blipFill><p:spPr>{frame(*place)}<a:prstGeom prst="rect">'
            f'<a:avLst/></a:prstGeom></p:spPr></p:pic>')


def slide_root(name, shapes, after="", attributes=""):
    return (f'<p:{name} xmlns:p="{SLIDES}" xmlns:a="{DRAWING}/main" xmlns:r="{OFFICE}"{attributes}><p:cSld><p:spTree>{TREE}{shapes}'
            f'</p:spTree></p:cSld>{after}</p:{name}>')


def theme():
    def color(name, value):
        return f'<a:{name}><a:srgbClr val="{value}"/></a:{name}>'
    names = {"dk1": "262626", "lt1": "FFFFFF", "dk2": BLUE, "lt2": "F2F2F2", "accent1": BLUE, "accent2": "C55A11", "accent3": "7F7F7F",
             "accent4": "BF9000", "accent5": "2E75B6", "accent6": "548235", "hlink": "0563C1", "folHlink": "954F72"}
    fill = '<a:solidFill><a:schemeClr val="phClr"/></a:solidFill>'
    font = '<a:latin typeface="Calibri"/><a:ea typeface=""/><a:cs typeface=""/>'
    effect = "<a:effectStyle><a:effectLst/></a:effectStyle>"
    return (f'<a:theme xmlns:a="{DRAWING}/main" name="Plain"><a:themeElements><a:clrScheme name="Plain">'
            + "".join(color(*pair) for pair in names.items()) + f'</a:clrScheme><a:fontScheme name="Plain"><a:majorFont>{font}'
            f'</a:majorFont><a:minorFont>{font}</a:minorFont></a:fontScheme><a:fmtScheme name="Plain"><a:fillStyleLst>{fill * 3}'
            f'</a:fillStyleLst><a:lnStyleLst>' + f'<a:ln w="9525">{fill}</a:ln>' * 3 + f'</a:lnStyleLst><a:effectStyleLst>{effect * 3}'
            f'</a:effectStyleLst><a:bgFillStyleLst>{fill * 3}</a:bgFillStyleLst></a:fmtScheme></a:themeElements></a:theme>')


def presentation(path, *slides):
    """Slides are (shapes, pictures); the pictures have the ids rId2, rId3, ..."""
    numbers = range(1, len(slides) + 1)
    parts = {"ppt/presentation.xml": "presentationml.presentation.main", "ppt/slideMasters/slideMaster1.xml":
             "presentationml.slideMaster", "ppt/slideLayouts/slideLayout1.xml": "presentationml.slideLayout", "ppt/theme/theme1.xml":
             "theme", **{f"ppt/slides/slide{i}.xml": "presentationml.slide" for i in numbers}}
    colors = " ".join(f'{name}="{value}"' for name, value in (
        ("bg1", "lt1"), ("tx1", "dk1"), ("bg2", "lt2"), ("tx2", "dk2"), *((f"accent{i}", f"accent{i}") for i in range(1, 7)),
        ("hlink", "hlink"), ("folHlink", "folHlink")))
    ids = "".join(f'<p:sldId id="{255 + i}" r:id="rId{i + 1}"/>' for i in numbers)
    members = {
        "[Content_Types].xml": content_types(parts),
        "_rels/.rels": relationships(("officeDocument", "ppt/presentation.xml")),
        "ppt/presentation.xml": f'<p:presentation xmlns:p="{SLIDES}" xmlns:r="{OFFICE}"><p:sldMasterIdLst><p:sldMasterId id="2147483648" '
            f'r:id="rId1"/></p:sldMasterIdLst><p:sldIdLst>{ids}</p:sldIdLst><p:sldSz cx="9144000" cy="5143500"/><p:notesSz cx="6858000" '
            'cy="9144000"/></p:presentation>',
        "ppt/_rels/presentation.xml.rels": relationships(
            ("slideMaster", "slideMasters/slideMaster1.xml"), *(("slide", f"slides/slide{i}.xml") for i in numbers)),
        "ppt/slideMasters/slideMaster1.xml": slide_root(
            "sldMaster", "", f'<p:clrMap {colors}/><p:sldLayoutIdLst><p:sldLayoutId id="2147483649" r:id="rId1"/></p:sldLayoutIdLst>'),
        "ppt/slideMasters/_rels/slideMaster1.xml.rels": relationships(
            ("slideLayout", "../slideLayouts/slideLayout1.xml"), ("theme", "../theme/theme1.xml")),
        "ppt/slideLayouts/slideLayout1.xml": slide_root("sldLayout", "", attributes=' type="blank"'),
        "ppt/slideLayouts/_rels/slideLayout1.xml.rels": relationships(("slideMaster", "../slideMasters/slideMaster1.xml")),
        "ppt/theme/theme1.xml": theme()}
    for i, (shapes, pictures) in zip(numbers, slides):
        members[f"ppt/slides/slide{i}.xml"] = slide_root("sld", shapes)
        members[f"ppt/slides/_rels/slide{i}.xml.rels"] = relationships(
            ("slideLayout", "../slideLayouts/slideLayout1.xml"), *(("image", target) for target in pictures))
    package(path, members)


def slides(path):
    presentation(
        path,
        (bar(2, (0, 0, 254, 6)) + text_box(3, "%object%", (15, 18, 120, 18), 36, BLUE, 1)
         + text_box(4, "%text%", (15, 42, 110, 70), 18, "262626") + text_box(5, "Observed by %name%", (15, 122, 120, 10), 12, "7F7F7F")
         + slide_picture(6, "rId2", (135, 22, 105, 95)), ["file:///%25picture%25"]),
        (bar(2, (0, 0, 254, 6)) + text_box(3, "Contact", (15, 18, 120, 18), 36, BLUE, 1)
         + text_box(4, "%name%, %address%", (15, 42, 200, 30), 20, "262626"), []))


def png(path, width, height, color_at):
    """An image with 8-bit RGB colours."""
    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))
    rows = b"".join(b"\0" + b"".join(bytes(color_at(x, y)) for x in range(width)) for y in range(height))
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
                     + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def sky(planet, ring, radius, width, height):
    """A planet before a dark sky with stars."""
    def color_at(x, y):
        dx, dy = x - width / 2, y - height / 2
        distance = (dx * dx + dy * dy) ** 0.5
        tilt = dx * 0.35 + dy
        if ring and 1.3 * radius < (dx * dx + 14 * tilt * tilt) ** 0.5 < 1.8 * radius and (distance > radius or tilt > 0):
            return ring
        if distance < radius:
            light = max(0.25, 1 - ((dx + radius / 2) ** 2 + (dy + radius / 2) ** 2) ** 0.5 / (2.2 * radius))
            return [int(part * light) for part in planet]
        return (230, 230, 240) if (x * 7919 + y * 104729) % 997 == 0 else (10, 14, 34)
    return width, height, color_at


def main(folder):
    letter(folder / "letter.docx")
    report(folder / "report.docx")
    slides(folder / "slides.pptx")
    png(folder / "saturn.png", *sky((238, 205, 140), (200, 180, 150), 34, 180, 120))
    png(folder / "mars.png", *sky((214, 96, 54), None, 46, 120, 120))
    png(folder / "neptune.png", *sky((82, 126, 230), None, 50, 120, 160))


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).resolve().parent)
