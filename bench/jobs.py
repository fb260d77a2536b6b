"""The whole-program benchmarks: what each job runs, its input and its peer.

Each job is a graph for "corvanta run", or another command of corvanta, that reads a generated file and writes one. The peers do the same
from the same file.
"""
import dataclasses
import pathlib

DOCUMENTS = pathlib.Path(__file__).resolve().parent.parent / "examples/documents"
SALES_TYPES = "K,K,F,F,F,U,U,U,U,U"


@dataclasses.dataclass
class Job:
    meaning: str
    graph: str
    output: str
    peer: list = None          # a program of the bin folder or of the system, and its arguments
    peer_output: str = None
    input: str = "sales.csv"
    make_input: tuple = ()     # the program that prints or replaces the input, and its arguments; {rows} is replaced
    rows_divisor: int = 1      # the job has this part of the rows
    command: tuple = ()        # arguments of corvanta, where it is not "run"
    also: tuple = ()           # further peers: (command, output); what a peer prints is in the file "stdout"
    rows_factor: int = 1       # the job has this many times the rows


def graph(*actions):
    """A chain of actions, each linked to the next."""
    lines = [f"<action id='a{i}'>{action}</action>" for i, action in enumerate(actions)]
    lines += [f"<link from='a{i}:0' to='a{i + 1}:0'/>" for i in range(len(actions) - 1)]
    return "<graph version='4.11'>\n" + "\n".join(lines) + "\n</graph>\n"


READ_SALES = f"<readCSV fileName='sales.csv' types='{SALES_TYPES}'/>"
READ_PART = READ_SALES.replace("sales.csv", "part.csv")  # of jobs with a rows_divisor
MAKE_PART = ("make_sales", "{rows}")

JOIN_SALES = ("<graph version='4.11'><action id='all'><readCSV fileName='sales.csv'/></action><action id='again'>"
              "<readCSV fileName='sales.csv'/></action><action id='few'><select lastRow='100000'><columns><s>id</s><s>product</s>"
              "<s>customer</s></columns></select></action><action id='join'><join><keys><s>id</s></keys></join></action>"
              "<action id='out'><writeCSV fileName='ours.csv'/></action><link from='again:0' to='few:0'/><link from='all:0' to='join:0'/>"
              "<link from='few:0' to='join:1'/><link from='join:0' to='out:0'/></graph>")

LINE_MEMBERS = ["id", "quantity", "price", "discount", "total", "city", "product", "customer", "comment", "day"]
LINE_ITEMS = "".join(f"<e name='{name}' path='{name}'/>" for name in LINE_MEMBERS)
READ_ORDERS = ("<readJSON fileName='orders.json'><Level initialPath='orders'><e name='order' path='order'/>"
               "<e name='name' path='buyer/name'/><e name='city' path='buyer/city'/></Level>"
               "<Level initialPath='lines'>" + LINE_ITEMS.replace("name='city'", "name='lineCity'")
               + "</Level></readJSON>")
DUCKDB_ORDERS = ("COPY (WITH o AS (SELECT unnest(orders) AS o FROM read_json('orders.json', maximum_object_size=2000000000)), "
                 'l AS (SELECT o."order", o.buyer.name, o.buyer.city, unnest(o.lines) AS l FROM o) '
                 'SELECT "order", name, city, ' + ", ".join(f"l.{name}" for name in LINE_MEMBERS)
                 + " FROM l) TO 'peer.csv' (HEADER)")

JOIN_MILLER = ("mlr --csv head -n 100000 then cut -o -f id,product,customer sales.csv > few.csv && "
               "mlr --csv join -j id --rp few_ -f few.csv sales.csv")

PAGE_ITEMS = "".join(f"<e name='{name}' path='[{i}]'/>" for i, name in enumerate(LINE_MEMBERS, 1))

XLRD = ("import csv, xlrd; sheet = xlrd.open_workbook('sales.xls').sheet_by_index(0); "
        "csv.writer(open('peer.csv', 'w')).writerows(sheet.row_values(i) for i in range(sheet.nrows))")


def converted(ending, *settings):
    """A program that makes an input of another format from the table."""
    return ("corvanta", "convert", "sales.csv", f"sales.{ending}", "--reader", f"types={SALES_TYPES}", *settings)


def convert(meaning, source, target, *options, queries=(), miller=None, make_input=()):
    """Runs "corvanta convert", which decides the types by all values; peers: DuckDB, with each query, and Miller."""
    peer_output = "peer" + target.removeprefix("ours")
    peers = [(["duckdb", "-c", query], peer_output) for query in queries] + ([(miller, "stdout")] if miller else [])
    first, *also = peers or [(None, None)]
    return Job(meaning + ("; peers: DuckDB, Miller" if miller else "; peer: DuckDB" if queries else ""), "", target,
               *first, input=source, make_input=make_input, command=("convert", source, target, *options), also=tuple(also))


def stat_read(ending):
    """Reads a data set that the library has written."""
    return Job(f"a .{ending} data set to CSV; peer: a plain loop that calls ReadStat",
               graph(f"<readStat fileName='sales.{ending}'/>", "<writeCSV fileName='ours.csv'/>"), "ours.csv",
               ["readstat_peer", f"sales.{ending}", "peer.csv"], "peer.csv",
               input=f"sales.{ending}", make_input=("readstat_write_peer", "sales.csv", "/dev/stdout", ending))


JOBS = {
    "csv_csv": Job("CSV through a pass-through action to CSV",
                   graph(READ_SALES, "<writeCSV fileName='first.csv'/>", "<writeCSV fileName='second.csv'/>"),
                   "second.csv"),
    "filter_select": Job("CSV to CSV, rows by an expression and three columns; peer: DuckDB",
                         graph("<readCSV fileName='sales.csv'/>",
                               "<filter where=\"price &gt; 50 and city is not null\"><kinds><s>price=decimal</s></kinds></filter>",
                               "<select><columns><s>id</s><s>price</s><s>city</s></columns></select>", "<writeCSV fileName='ours.csv'/>"),
                         "ours.csv", ["duckdb", "-c", "COPY (SELECT id, price, city FROM 'sales.csv' WHERE price > 50 AND city IS NOT NULL) "
                                                      "TO 'peer.csv' (HEADER)"], "peer.csv",
                         also=((["mlr", "--csv", "filter", '$price > 50 && is_not_empty($city)', "then", "cut", "-f", "id,price,city",
                                 "sales.csv"], "stdout"),)),
    "sort": Job("CSV to CSV, five times the rows, sorted by a number and a text; peer: DuckDB",
                graph("<readCSV fileName='big.csv'/>", "<sort><keys><s>-total</s><s>customer</s></keys><kinds><s>total=decimal</s></kinds></sort>",
                      "<writeCSV fileName='ours.csv'/>"),
                "ours.csv", ["duckdb", "-c", "COPY (SELECT * FROM 'big.csv' ORDER BY total DESC NULLS LAST, customer NULLS LAST) "
                                             "TO 'peer.csv' (HEADER)"], "peer.csv", input="big.csv", make_input=MAKE_PART, rows_factor=5),
    "join": Job("the table joined with three columns of its first 100,000 rows; peer: DuckDB",
                JOIN_SALES, "ours.csv", ["duckdb", "-c", "COPY (SELECT * FROM 'sales.csv' JOIN (SELECT id, product, customer FROM 'sales.csv' "
                                                         "LIMIT 100000) USING (id)) TO 'peer.csv' (HEADER)"], "peer.csv",
                also=((["sh", "-c", JOIN_MILLER], "stdout"),)),
    "convert_filter": convert("rows and columns of a CSV file by convert", "sales.csv", "ours.csv",
                              "--where", "price > 50", "--select", "id,price,city",
                              queries=["COPY (SELECT id, price, city FROM 'sales.csv' WHERE price > 50) TO 'peer.csv' (HEADER)"],
                              miller=["mlr", "--csv", "filter", "$price > 50", "then", "cut", "-f", "id,price,city", "sales.csv"]),
    "convert_sort": convert("a CSV file sorted by convert, a million rows", "sales.csv", "ours.csv", "--sort", "-total,customer",
                            queries=["COPY (SELECT * FROM 'sales.csv' ORDER BY total DESC NULLS LAST, customer NULLS LAST) TO 'peer.csv' (HEADER)"],
                            miller=["mlr", "--csv", "sort", "-nr", "total", "-f", "customer", "sales.csv"]),
    # The first query decides the types by all values, as we do; the second one by the first 20,480 rows.
    "convert_parquet": convert("CSV to typed Parquet by convert", "sales.csv", "ours.parquet",
                               queries=["COPY (SELECT * FROM read_csv('sales.csv', sample_size=-1)) TO 'peer.parquet'",
                                        "COPY (SELECT * FROM 'sales.csv') TO 'peer.parquet'"]),
    "convert_json": convert("JSON Lines to typed Parquet by convert", "sales.jsonl", "ours.parquet", make_input=("make_json.py", "sales.csv", "lines"),
                            queries=["COPY (SELECT * FROM read_json('sales.jsonl', sample_size=-1)) TO 'peer.parquet'",
                                     "COPY (SELECT * FROM read_json('sales.jsonl')) TO 'peer.parquet'"]),
    "convert_xlsx": convert("CSV to a typed workbook by convert", "sales.csv", "ours.xlsx"),
    "xlsx_write": Job("CSV to a new workbook; peer: libxlsxwriter, constant memory",
                      graph(READ_SALES, "<writeExcel fileNameDestination='ours.xlsx' dateFormat='yyyy-MM-dd'>"
                                        "<ToDate><s>day</s></ToDate></writeExcel>"),
                      "ours.xlsx", ["xlsxwriter_peer", "sales.csv", "peer.xlsx"], "peer.xlsx"),
    "xlsx_add_sheet": Job("a workbook, copied with the CSV file as a new sheet",
                          graph(READ_SALES, "<writeExcel mode='3' fileNameSource='sales.xlsx' fileNameDestination='ours.xlsx' "
                                            "sheetName='New'/>"), "ours.xlsx",
                          input="sales.xlsx", make_input=("make_xlsx.py", "sales.csv")),
    "sheet_names": Job("the names of the sheets of a workbook, a third of the rows",
                       graph("<readExcelSheets fileName='sheets.xlsx'/>", "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                       input="sheets.xlsx", make_input=("make_sheets.py", "{rows}"), rows_divisor=3),
    "xls_read": Job("a legacy workbook of at most 60,000 rows to CSV; peer: xlrd",
                    graph("<readExcelOld fileName='sales.xls'/>", "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                    ["/usr/bin/python3", "-c", XLRD], "peer.csv",
                    input="sales.xls", make_input=("make_xls.py", "sales.csv")),
    "xlsx_read": Job("a workbook to CSV; peer: readxl, which writes nothing",
                     graph("<readExcel fileName='sales.xlsx'/>", "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                     ["Rscript", "-e", "saveRDS(dim(readxl::read_excel('sales.xlsx')), 'peer.rds')"], "peer.rds",
                     input="sales.xlsx", make_input=("make_xlsx.py", "sales.csv")),
    "dbf_read": Job("dBase table to CSV; peer: ogr2ogr",
                    graph("<ReadXBF fileName='sales.dbf'/>", "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                    ["ogr2ogr", "-f", "CSV", "peer.csv", "sales.dbf", "-oo", "ENCODING=CP1252"], "peer.csv",
                    input="sales.dbf", make_input=("make_dbf.py", "sales.csv")),
    "parquet_read": Job("Parquet to CSV; peer: DuckDB",
                        graph("<readParquet fileName='sales.parquet'/>", "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                        ["duckdb", "-c", "COPY (SELECT * FROM 'sales.parquet') TO 'peer.csv' (HEADER)"], "peer.csv",
                        input="sales.parquet", make_input=converted("parquet")),
    "parquet_write": Job("CSV to Parquet; peer: DuckDB without dictionaries, which is what we write",
                         graph(READ_SALES, "<writeParquet file='ours.parquet'/>"), "ours.parquet",
                         ["duckdb", "-c", "COPY (SELECT * FROM 'sales.csv') TO 'peer.parquet' "
                                          "(COMPRESSION snappy, DICTIONARY_SIZE_LIMIT 1)"], "peer.parquet"),
    "sas_write": Job("CSV to a SAS data set; peer: a plain loop that calls ReadStat",
                     graph(READ_SALES, "<writeSAS fileName='ours.sas7bdat' autoWidth='1'/>"),
                     "ours.sas7bdat", ["readstat_write_peer", "sales.csv", "peer.sas7bdat"], "peer.sas7bdat"),
    "xpt_write": Job("CSV to a SAS transport file; peer: as for the data set, which is the other format",
                     graph(READ_SALES, "<writeSASXPT fileName='ours.xpt' autoWidth='1'/>"),
                     "ours.xpt", ["readstat_write_peer", "sales.csv", "peer.sas7bdat"], "peer.sas7bdat"),
    "stat_read_sas7bdat": stat_read("sas7bdat"),
    "stat_read_sav": stat_read("sav"),
    "stat_read_dta": stat_read("dta"),
    "stat_read_xpt": Job("a SAS transport file to CSV; peer: a plain loop that calls ReadStat",
                         graph("<readStat fileName='sales.xpt'/>", "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                         ["readstat_peer", "sales.xpt", "peer.csv"], "peer.csv",
                         input="sales.xpt", make_input=converted("xpt", "--writer", "autoWidth=1")),
    "chart_write": Job("a tenth of the rows to a chart of a document",
                       graph(READ_PART, "<writeReport output='ours.docx' template='&gt;line.docx'><Chart type='2' name='data'>"
                                        "<axis pinIdx='0'>day</axis><axis pinIdx='0'>total</axis></Chart></writeReport>"),
                       "ours.docx", input="part.csv", make_input=MAKE_PART, rows_divisor=10),
    "table_write": Job("a tenth of the rows to a table of a document",
                       graph(READ_PART, f"<writeDocTable template='{DOCUMENTS}/report.docx' output='ours.docx'>"
                                        f"<v colWidths='{','.join(['1'] * 10)}'/></writeDocTable>"),
                       "ours.docx", input="part.csv", make_input=MAKE_PART, rows_divisor=10),
    "letters_write": Job("a document per thousand rows",
                         graph("<readCSV fileName='letters.csv'/>", "<writeDoc output='output' template='template'><text><s>name</s></text>"
                                                                    "</writeDoc>"),
                         "letter_1.docx", input="letters.csv", make_input=("make_letters.py", "{rows}", str(DOCUMENTS / "letter.docx")),
                         rows_divisor=1000),
    "json_write": Job("CSV to JSON; peer: a plain loop that formats the same rows",
                      graph(READ_SALES, "<writeJSON fileName='ours.json'/>"),
                      "ours.json", ["text_peer", "json", "sales.csv", "peer.json"], "peer.json"),
    "xml_write": Job("CSV to XML; peer: a plain loop that formats the same rows",
                     graph(READ_SALES, "<writeXML fileName='ours.xml' charMode='1'/>"),
                     "ours.xml", ["text_peer", "xml", "sales.csv", "peer.xml"], "peer.xml"),
    "json_read": Job("JSON array of objects to CSV; peer: DuckDB",
                     graph(f"<readJSON fileName='sales.json'><Level>{LINE_ITEMS}</Level></readJSON>",
                           "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                     ["duckdb", "-c", "COPY (SELECT * FROM read_json('sales.json')) TO 'peer.csv' (HEADER)"], "peer.csv",
                     input="sales.json", make_input=("make_json.py", "sales.csv", "array")),
    "jsonl_read": Job("JSON Lines to CSV; peer: DuckDB",
                      graph(f"<readJSON fileName='sales.jsonl'><Level>{LINE_ITEMS}</Level></readJSON>",
                            "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                      ["duckdb", "-c", "COPY (SELECT * FROM read_json('sales.jsonl')) TO 'peer.csv' (HEADER)"], "peer.csv",
                      input="sales.jsonl", make_input=("make_json.py", "sales.csv", "lines")),
    "json_nested": Job("lines of nested orders to CSV; peer: simdjson",
                       graph(READ_ORDERS, "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                       ["simdjson_peer", "orders.json", "peer.csv"], "peer.csv",
                       input="orders.json", make_input=("make_json.py", "sales.csv", "orders")),
    "json_nested_duckdb": Job("lines of nested orders to CSV; peer: DuckDB",
                              graph(READ_ORDERS, "<writeCSV fileName='ours.csv'/>"), "ours.csv",
                              ["duckdb", "-c", DUCKDB_ORDERS], "peer.csv",
                              input="orders.json", make_input=("make_json.py", "sales.csv", "orders")),
    "xml_read": Job("XML to CSV; peer: libxml2, SAX",
                    graph("<readXML fileName='sales.xml'><Level initialPath='sales' subtagName='row'>"
                          + LINE_ITEMS.replace("path='id'", "path='@id'") + "</Level></readXML>", "<writeCSV fileName='ours.csv'/>"),
                    "ours.csv", ["libxml2_peer", "xml", "sales.xml", "peer.csv"], "peer.csv",
                    input="sales.xml", make_input=("make_sales", "{rows}", "xml")),
    "html_read": Job("a page with a table, a fifth of the rows, to CSV; peer: libxml2, tree",
                     graph(f"<readXML fileName='sales.html'><Level initialPath='html/body/table/tbody' subtagName='tr'>{PAGE_ITEMS}"
                           "</Level></readXML>", "<writeCSV fileName='ours.csv'/>"),
                     "ours.csv", ["libxml2_peer", "html", "sales.html", "peer.csv"], "peer.csv",
                     input="sales.html", make_input=("make_sales", "{rows}", "html"), rows_divisor=5),
    "soup_read": Job("the page without optional end tags to CSV, as browsers read it; peer: libxml2, tree",
                     graph(f"<readXML fileName='soup.html' readHTML='1' tagSoup='1' expandSpans='1' skipRows='1'><Level "
                           f"initialPath='html/body/table' subtagName='tr'>{PAGE_ITEMS}</Level></readXML>",
                           "<writeCSV fileName='ours.csv'/>"),
                     "ours.csv", ["libxml2_peer", "html", "soup.html", "peer.csv"], "peer.csv",
                     input="soup.html", make_input=("make_sales", "{rows}", "soup"), rows_divisor=5),
}
