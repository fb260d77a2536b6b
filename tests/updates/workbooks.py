"""Small workbooks in the forms that are met in the wild, and a way to run an update."""
import json
import os
import pathlib
import subprocess
import zipfile

MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
PACKAGE = "http://schemas.openxmlformats.org/package/2006"
SHEET_TYPES = "application/vnd.openxmlformats-officedocument.spreadsheetml."
HEAD = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'

IN_CSV = 'id,name,day,link\n1,a<b & c,2024-02-29,"URL(""site"",""http://x.org/?a=1&b=2"")"\n2,ünï,2024-03-01,plain\n'


def plain_parts(tail="<pageMargins left='0.7'/>"):
    """Two sheets as an ordinary program writes them; the first has formulas, a chain and a tail."""
    rows = "".join(f'<row r="{n}" spans="1:2"><c r="A{n}"><v>{n}</v></c><c r="B{n}"><f>A{n}+1</f></c></row>' for n in range(1, 6))
    return {
        "[Content_Types].xml": HEAD + f'<Types xmlns="{PACKAGE}/content-types">'
        '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
        '<Default Extension="xml" ContentType="application/xml"/>'
        f'<Override PartName="/xl/workbook.xml" ContentType="{SHEET_TYPES}sheet.main+xml"/>'
        f'<Override PartName="/xl/worksheets/sheet1.xml" ContentType="{SHEET_TYPES}worksheet+xml"/>'
        f'<Override PartName="/xl/worksheets/sheet2.xml" ContentType="{SHEET_TYPES}worksheet+xml"/>'
        f'<Override PartName="/xl/styles.xml" ContentType="{SHEET_TYPES}styles+xml"/>'
        f'<Override PartName="/xl/calcChain.xml" ContentType="{SHEET_TYPES}calcChain+xml"/></Types>',
        "_rels/.rels": HEAD + f'<Relationships xmlns="{PACKAGE}/relationships">'
        f'<Relationship Id="rId1" Type="{OFFICE}/officeDocument" Target="xl/workbook.xml"/></Relationships>',
        "xl/workbook.xml": HEAD + f'<workbook xmlns="{MAIN}" xmlns:r="{OFFICE}"><sheets>'
        '<sheet name="Data" sheetId="1" r:id="rId1"/><sheet name="It&apos;s &amp; more" sheetId="5" r:id="rId2"/></sheets>'
        '<calcPr calcId="124519"/></workbook>',
        "xl/_rels/workbook.xml.rels": HEAD + f'<Relationships xmlns="{PACKAGE}/relationships">'
        f'<Relationship Id="rId1" Type="{OFFICE}/worksheet" Target="worksheets/sheet1.xml"/>'
        f'<Relationship Id="rId2" Type="{OFFICE}/worksheet" Target="worksheets/sheet2.xml"/>'
        f'<Relationship Id="rId3" Type="{OFFICE}/styles" Target="styles.xml"/>'
        f'<Relationship Id="rId4" Type="{OFFICE}/calcChain" Target="calcChain.xml"/></Relationships>',
        "xl/styles.xml": HEAD + f'<styleSheet xmlns="{MAIN}"><fonts count="1"><font><sz val="11"/></font></fonts>'
        '<fills count="1"><fill/></fills><borders count="1"><border/></borders>'
        '<cellStyleXfs count="1"><xf/></cellStyleXfs><cellXfs count="1"><xf xfId="0"/></cellXfs></styleSheet>',
        "xl/calcChain.xml": HEAD + f'<calcChain xmlns="{MAIN}"><c r="B1" i="1"/><c r="B5"/></calcChain>',
        "xl/worksheets/sheet1.xml": HEAD + f'<worksheet xmlns="{MAIN}" xmlns:r="{OFFICE}"><dimension ref="A1:B5"/>'
        f"<sheetData>{rows}</sheetData>{tail}</worksheet>",
        "xl/worksheets/sheet2.xml": HEAD + f'<worksheet xmlns="{MAIN}"><sheetData><row r="1"><c r="A1"><v>7</v></c></row></sheetData></worksheet>',
        "xl/media/image1.png": "\x89PNG " * 50,
    }


def odd_parts():
    """The same content with prefixes, single quotes, absolute and odd targets, and backslash names."""
    parts = {
        "[Content_Types].xml": plain_parts()["[Content_Types].xml"].replace("/xl/calcChain.xml", "/xl/none.xml"),
        "_rels\\.rels": plain_parts()["_rels/.rels"].replace('"xl/', '"/xl/'),
        "xl\\workbook.xml": f"<x:workbook xmlns:x='{MAIN}'><!-- <sheets></sheets> --><x:sheets>"
        f"<x:sheet xmlns:q='{OFFICE}' q:id='A' sheetId='1' name='Data'/>"
        f"<x:sheet sheetId='5' q:id='B' name='It&#39;s &amp; more' xmlns:q='{OFFICE}'></x:sheet></x:sheets><x:definedNames/></x:workbook>",
        "xl\\_rels\\workbook.xml.rels": f"<p:Relationships xmlns:p='{PACKAGE}/relationships'>"
        f"<p:Relationship Target='/xl/worksheets/sheet1.xml' Type='{OFFICE}/worksheet' Id='A'/>"
        f"<p:Relationship Target='../xl/./worksheets/sheet2.xml' Id='B' Type='{OFFICE}/worksheet'/>"
        f"<p:Relationship Target='styles.xml' Id='rId9' Type='{OFFICE}/styles'/></p:Relationships>",
        "xl\\styles.xml": f"<x:styleSheet xmlns:x='{MAIN}'><x:numFmts count='0'/><x:fonts><x:font/></x:fonts>"
        "<x:cellXfs count='7'><x:xf/></x:cellXfs></x:styleSheet>",
        "xl\\worksheets\\sheet1.xml": f"\ufeff<x:worksheet xmlns:x='{MAIN}'><x:sheetData>"
        + "".join(f"<x:row><x:c><x:v>{n}</x:v></x:c></x:row>" for n in range(1, 6)) + "</x:sheetData></x:worksheet>",
        "xl\\worksheets\\sheet2.xml": f"<x:worksheet xmlns:x='{MAIN}'><x:sheetData/></x:worksheet>",
    }
    return parts


def write_workbook(path, parts):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as package:
        for name, text in parts.items():
            package.writestr(name, text.encode("latin-1" if name.endswith(".png") else "utf-8"))


def run_update(corvanta, folder, attributes, csv=IN_CSV, environment=None, limit=None, reasons=False):
    """Run writeExcel on folder/book.xlsx. Returns exit status and messages, the folder's name taken out; those of level 3 only with `reasons`."""
    (folder / "in.csv").write_text(csv, encoding="utf-8")
    graph = ("<graph version='4.11'><action id='in'><readCSV fileName='in.csv' types='K,U,U,U'/></action>"
             "<action id='book'><writeExcel fileNameDestination='book.xlsx' dateFormat='yyyy-MM-dd' urlTag='1' "
             f"{attributes}><ToDate><s>day</s></ToDate></writeExcel></action><link from='in:0' to='book:0'/></graph>")
    path = folder / "case.graph"
    path.write_text(graph, encoding="utf-8")
    done = subprocess.run([corvanta, "run", "--log-format", "json", str(path)], capture_output=True, text=True,
                          timeout=120, env={**os.environ, **(environment or {})}, preexec_fn=limit)
    path.unlink()
    (folder / "in.csv").unlink()
    messages = [json.loads(line)["message"] for line in done.stderr.splitlines() if reasons or '"level":3' not in line]
    return done.returncode, [message.replace(str(folder) + "/", "") for message in messages]


def members(path):
    with zipfile.ZipFile(path) as package:
        assert package.testzip() is None
        names = package.namelist()
        assert len(set(names)) == len(names), names
        return {name: package.read(name) for name in names}


def files(folder):
    return sorted(entry.name for entry in pathlib.Path(folder).iterdir())
