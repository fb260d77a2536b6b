# Makes the data sets of these cases with haven. Run by hand in this folder; the results are committed.
library(haven)

folder <- function(name) { dir.create(name, showWarnings = FALSE); name }
patch <- function(file, from, to) { # replace bytes of the same number
  bytes <- readBin(file, "raw", file.size(file))
  at <- grepRaw(from, bytes, fixed = TRUE, all = TRUE)
  stopifnot(length(at) > 0, length(from) == length(to))
  for (i in at) bytes[i + seq_along(to) - 1] <- to
  writeBin(bytes, file)
}
sex <- c(male = 1, female = 2, `no answer` = 9)

# Values: numbers, texts, system, user and tagged missing values. haven does not write .por files: v.por is the library's.
d <- folder("values")
write_sav(data.frame(
  id = c(1, 2.5, NA, -4), text = c("a", "", "d\u00e9j\u00e0 vu", "x,\"y\""),
  sex = labelled_spss(c(1, 2, 9, 3), sex, na_values = 9, label = "Sex of the person"),
  code = labelled_spss(c("A", "B", "C", "A"), c(alpha = "A", gamma = "C"))), file.path(d, "v.sav"))
write_dta(data.frame(
  id = 1:4, text = c("a", "", "d\u00e9j\u00e0 vu", "z"),
  sex = labelled(c(1, 2, tagged_na("a"), 3), c(male = 1, female = 2), label = "Sex of the person"),
  small = c(TRUE, FALSE, NA, TRUE)), file.path(d, "v.dta"))
write_xpt(data.frame(ID = c(1, NA, tagged_na("B"), 0.1), TEXT = c("a", "", "b", "c")), file.path(d, "v.xpt"))
for (case in c("labels", "label_names", "columns_listed", "columns_listed_missing", "max_rows", "file_names")) {
  file.copy(file.path(d, c("v.sav", "v.dta")), folder(case), overwrite = TRUE)
}
long <- strrep("x", 300)
write_sav(data.frame(q = labelled(c("longer than a cell", long, "\u00e9"), c(Alpha = "longer than a cell", Long = long))), "labels/long.sav")
same <- data.frame(a = 1, b = 2, c = 3)
attr(same$a, "label") <- "One"; attr(same$c, "label") <- "One"
write_sav(same, "label_names/same.sav")

# Dates and times of each system.
d <- folder("dates")
day <- as.Date(c("2026-11-22", "1582-10-15", NA)); moment <- as.POSIXct(c("2026-11-22 04:30:05.25", "1900-02-28 23:59:59", NA), tz = "UTC")
clock <- hms::hms(c(0, 86399.5, 360000)); formatted <- function(x, name, format) { attr(x, name) <- format; x }
write_sav(data.frame(day, moment, clock, month = formatted(as.numeric(1.38e10 + 86400 * c(0, 40, 80)), "format.spss", "MOYR8"),
  plain = formatted(c(1, 2, 3), "format.spss", "F8.2")), file.path(d, "d.sav"))
write_xpt(data.frame(DAY = day, MOMENT = moment, CLOCK = clock, QUARTER = formatted(c(0, 366, NA), "format.sas", "YYQD"),
  OF = formatted(c(0, 86400 * 366, 1e15), "format.sas", "DTDATE9"), AGE = formatted(c(1, 2, 3), "format.sas", "BEST12")), file.path(d, "d.xpt"))
write_dta(data.frame(day, moment, w = formatted(c(0, 52, 53), "format.stata", "%tw"), m = formatted(c(-1, 0, 660), "format.stata", "%tm"),
  q = formatted(c(0, 3, 266), "format.stata", "%tq"), h = formatted(c(0, 1, -1), "format.stata", "%th"), y = formatted(c(1960, 2026, 0), "format.stata", "%ty"),
  leap = formatted(c(0, 1.8e12, 78796800000), "format.stata", "%tC"), old = formatted(c(0, 1, 2), "format.stata", "%dD_m_Y"),
  left = formatted(c(0, 1, 2), "format.stata", "%-td"), business = formatted(c(0, 1, 2), "format.stata", "%tbnyse"),
  number = formatted(c(1, 2, 3), "format.stata", "%9.0g")), file.path(d, "d.dta"))

# Labels of missing values.
d <- folder("labels_of_missing")
answer <- labelled(c(1, 2, tagged_na("a", "b"), NA), c(yes = 1, no = 2, refused = tagged_na("a")))
write_dta(data.frame(answer), file.path(d, "m.dta"))
write_sav(data.frame(sex = labelled_spss(c(1, 2, 9, 8), sex, na_values = c(8, 9)), code = labelled_spss(c("A", "B", "X", "A"), c(a = "A", none = "X"), na_values = "X")),
  file.path(d, "m.sav"))

# Several files, and what differs between them.
d <- folder("names_from_pin")
write_sav(data.frame(a = c(1, 2)), file.path(d, "one.sav")); write_dta(data.frame(a = 3), file.path(d, "two.DTA"))
write_sav(data.frame(a = numeric()), file.path(d, "none.sav"))
for (case in c("columns_count", "columns_name", "columns_type")) write_sav(data.frame(a = 1), file.path(folder(case), "1.sav"))
write_sav(data.frame(a = 1, b = 2), "columns_count/2%2.sav")
write_sav(data.frame(b = 1), "columns_name/2.sav")
write_sav(data.frame(a = "x"), "columns_type/2.sav")

# Bytes that are invalid in the encoding, and an encoding that the file does not declare.
d <- folder("encodings")
t <- data.frame(text = c("ab", "aXX", "bXX"))
write_dta(t, file.path(d, "invalid.dta")); patch(file.path(d, "invalid.dta"), charToRaw("aXX"), as.raw(c(0x61, 0xE9, 0x62)))
write_dta(t, file.path(d, "cut.dta")); patch(file.path(d, "cut.dta"), charToRaw("bXX"), as.raw(c(0x62, 0x62, 0xC3)))
write_dta(t, file.path(d, "old.dta"), version = 13); patch(file.path(d, "old.dta"), charToRaw("aXX"), as.raw(c(0x61, 0xE9, 0x80)))

# Rows of more than the smallest buffer.
d <- folder("row_too_large")
write_dta(data.frame(text = c("short", strrep("long text ", 60000))), file.path(d, "long.dta"), strl_threshold = 10)
system2("gzip", c("-9nf", file.path(d, "long.dta")))
file.copy("values/v.sav", folder("encoding_unknown"), overwrite = TRUE)

# SAS. The catalogue labels.sas7bcat has the set SEX (1 male, 2 female); the library wrote it.
d <- folder("sas")
s <- data.frame(id = c(1, NA, 3), sex = formatted(c(1, 2, 3), "format.sas", "SEX"), code = formatted(c("A", "B", "C"), "format.sas", "$CODE"),
  day = as.Date(c("2026-11-22", NA, "1959-12-31")))
suppressWarnings(write_sas(s, file.path(d, "s.sas7bdat")))
for (case in c("catalogue_none", "catalogue_missing", "catalogue_damaged")) file.copy(file.path(d, "s.sas7bdat"), folder(case), overwrite = TRUE)

bytes <- readBin("sas/s.sas7bdat", "raw", file.size("sas/s.sas7bdat"))
bytes[16] <- as.raw(0x63) # a catalogue without labels
writeBin(bytes, "catalogue_none/empty.sas7bcat")

# A header with deleted rows: word 7 of the subheader of the rows. A very long text with a segment of bytes 0.
d <- folder("rows_deleted")
bytes[16] <- as.raw(0x60)
bytes[11480 + 7 * 8 + 1] <- as.raw(2)
writeBin(bytes, file.path(d, "s.sas7bdat"))
d <- folder("segment_of_zeros")
write_sav(data.frame(a = c(strrep("Q", 300), strrep("R", 300)), b = c(1, 2)), file.path(d, "long.sav"), compress = "none")
patch(file.path(d, "long.sav"), charToRaw(paste0(strrep("Q", 255), " ")), raw(256)); patch(file.path(d, "long.sav"), charToRaw("Q"), raw(1))
# por_damaged/four.por is a file of IBM SPSS with "81/82/83/84/" before the label of MYNUM, in lines of 80.
