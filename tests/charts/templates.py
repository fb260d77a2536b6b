"""Templates for the tests of charts: tags in the charts of real documents, and small documents with a chart."""
import re
import zipfile

CHART = "http://schemas.openxmlformats.org/drawingml/2006/chart"
TYPES = ["bar", "bar3D", "line", "line3D", "pie", "ofPie", "pie3D", "area", "area3D", "scatter", "stock", "surface3D", "doughnut", "bubble",
         "radar"]
AXES = {"bar": ["cat", "val", "plus", "minus"], "line": ["cat", "val", "plus", "minus"], "scatter": ["xVal", "yVal"],
        "bubble": ["xVal", "yVal", "bubbleSize"]}
FOLDERS = {".xlsx": "xl", ".docx": "word", ".pptx": "ppt"}
SERIES = re.compile(rb"<((?:\w+:)?)ser>.*?</\1ser>", re.DOTALL)


def axes_of(kind):
    return AXES.get(kind, ["cat", "val"])


def is_chart(name):
    return re.fullmatch(r"(xl|word|ppt)/charts/[^/]+\.xml", name) is not None


def members(path):
    with zipfile.ZipFile(path) as package:
        return {name: package.read(name) for name in package.namelist()}


def write_package(path, content):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as package:
        for name, data in content.items():
            package.writestr(name, data)


def name_series(part, first=0):
    """Give each series of a chart part the tag sN as its name. Returns the part and the number of series."""
    count = 0

    def rename(series):
        nonlocal count
        prefix, text = series.group(1), re.sub(rb"<(\w+:)?tx>.*?</(\w+:)?tx>", b"", series.group(), count=1, flags=re.DOTALL)
        tag = b"<%stx><%sv>[[KOBData s%d]]</%sv></%stx>" % (prefix, prefix, first + count, prefix, prefix)
        count += 1
        return re.sub(rb"(<(?:\w+:)?order [^>]*/>)", rb"\1" + tag, text, count=1)

    return SERIES.sub(rename, part), count


def tag_document(source, target):
    """Copy a document with a tag in each series. Returns the number of series."""
    content, count = members(source), 0
    for name in content:
        if is_chart(name):
            content[name], series = name_series(content[name], count)
            count += series
    write_package(target, content)
    return count


def graph(template, output, charts, csv="data.csv", types="U,F,F,F,F", options=""):
    """A graph that fills charts: a list of (name, type number, column names)."""
    elements = "".join(
        f"<Chart type='{kind}' name='{name}'>" + "".join(f"<axis pinIdx='0'>{column}</axis>" for column in columns) + "</Chart>"
        for name, kind, columns in charts)
    return (f"<graph version='4.11'><action id='in'><readCSV fileName='{csv}' types='{types}'/></action>"
            f"<action id='report'><writeReport output='{output}' template='{template}'{options}>{elements}</writeReport></action>"
            "<link from='in:0' to='report:0'/></graph>")


def data_of(axis):
    """Kind, declared count and points of the literal in an axis element."""
    literal = axis[0]
    kind = literal.tag.split("}")[1]
    count = int(literal.find(f"{{{CHART}}}ptCount").get("val"))
    return kind, count, {int(point.get("idx")): point[0].text or "" for point in literal.findall(f"{{{CHART}}}pt")}
