// The rows of pins: what is read, kept, read again, searched and copied.
#include "corvanta/edit/shown_text.h"
#include "studio/data/data_view.h"
#include "studio/data/summary_model.h"
#include "tests/studio/studio_folder.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QStyleFactory>
#include <QTableView>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace corvanta;
using namespace corvanta::studio;
using test::StudioFolder;
using test::waitFor;

namespace {

const QByteArray kReader = "<action id='in'><readCSV fileName='in.csv' types='K,U'/></action>";
const QByteArray kChain =
    kReader + "<action id='first'><filter where='n &lt; 100000'/></action>"
              "<action id='out'><writeCSV fileName='out.csv'/></action>"
              "<action id='last'><select><columns><s>name</s></columns></select></action>"
              "<link from='in:0' to='first:0'/><link from='first:0' to='out:0'/>"
              "<link from='out:0' to='last:0'/>";

/// A visible view of a pin.
struct View
{
    explicit View(int rows, const QByteArray &content = kChain)
        : folder(content)
        , view(test::allActions())
    {
        folder.write(u"in.csv"_s, test::exampleCsv(rows));
        view.resize(900, 400);
        view.show();
    }
    void show(const QString &id, EngineRunner::PinType type = EngineRunner::PinOut)
    {
        view.setDocument(folder.document.get());
        view.showPin({id, 0}, type);
        wait();
    }
    void wait()
    {
        EXPECT_TRUE(waitFor([this] { return !view.reader().isReading(); }));
    }
    void trigger(const char *action)
    {
        view.findChild<QAction *>(QLatin1StringView(action))->trigger();
        wait();
    }
    const PinRows &rows() const { return view.reader().rows(); }
    QString note() const { return view.findChild<QLabel *>(u"dataNote"_s)->text(); }
    QTableView *table() const { return view.findChild<QTableView *>(u"dataRows"_s); }
    QTableView *summary() const { return view.findChild<QTableView *>(u"dataSummary"_s); }
    /// A row of the summary, without the name.
    QStringList summaryOf(int row) const
    {
        QStringList texts;
        for (int i = 1; i < SummaryModel::kColumns; ++i) {
            texts << summary()->model()->index(row, i).data().toString();
        }
        return texts;
    }

    StudioFolder folder;
    DataView view;
};

} // namespace

TEST(DataView, TheFirstRowsThenMoreThenAll)
{
    View view(15'000);
    view.show(u"in"_s);
    EXPECT_EQ(view.rows().rows, 1000);
    EXPECT_EQ(view.table()->model()->rowCount(), 1000);
    EXPECT_TRUE(view.note().contains(u"The first 1,000 rows; there are more"_s));
    EXPECT_EQ(view.summaryOf(0), (QStringList{u"key"_s, u"0"_s, u"1,000"_s, u"1"_s, u"1000"_s}));
    view.trigger("dataMore");
    EXPECT_EQ(view.rows().rows, 10'000);
    EXPECT_EQ(view.table()->model()->index(9999, 0).data(), u"10000"_s);
    view.trigger("dataMore");
    EXPECT_TRUE(view.note().contains(u"All rows: 15,000"_s)) << view.note().toStdString();
    EXPECT_FALSE(view.view.reader().hasMore());
}

TEST(DataView, TheSummaryOfAllRowsKeepsNoMoreRows)
{
    View view(15'000);
    view.show(u"in"_s);
    view.trigger("dataSummarizeAll");
    EXPECT_EQ(view.rows().rows, 1000);
    EXPECT_EQ(view.summaryOf(0), (QStringList{u"key"_s, u"0"_s, u"15,000"_s, u"1"_s, u"15000"_s}));
    EXPECT_EQ(view.summaryOf(1),
              (QStringList{u"text"_s, u"5,000"_s, u"8,001"_s, u"\"\""_s, u"name 9998"_s}));
    EXPECT_TRUE(view.note().contains(u"The first 1,000 of 15,000 rows"_s));
    view.trigger("dataMore");
    EXPECT_EQ(view.rows().rows, 10'000);
    EXPECT_EQ(view.summaryOf(0)[1], u"0"_s);
    EXPECT_EQ(view.summaryOf(0)[2], u"15,000"_s);
}

TEST(DataView, MissingAndEmptyCellsDiffer)
{
    View view(5);
    view.show(u"in"_s);
    const QAbstractItemModel &model = *view.table()->model();
    const QModelIndex missing = model.index(2, 1);
    const QModelIndex empty = model.index(4, 1);
    EXPECT_EQ(missing.data().toString(), u"missing"_s);
    EXPECT_EQ(empty.data().toString(), u"\"\""_s);
    EXPECT_TRUE(missing.data(RowsModel::kMissingRole).toBool());
    EXPECT_FALSE(empty.data(RowsModel::kMissingRole).toBool());
    EXPECT_TRUE(missing.data(Qt::FontRole).value<QFont>().italic());
    EXPECT_FALSE(model.index(0, 1).data(Qt::FontRole).isValid());
    EXPECT_EQ(model.headerData(0, Qt::Horizontal, Qt::DisplayRole), u"n\nkey"_s);
}

/// Tool tips and cells show the bytes of a file, never its markup.
TEST(ShownText, IsPlainAndShort)
{
    const MetaInfo type;
    EXPECT_EQ(cellData(u"<b>a</b> &\nb", type, Qt::ToolTipRole),
              u"<p>&lt;b&gt;a&lt;/b&gt; &amp;<br>\nb</p>"_s);
    EXPECT_EQ(cellData(u"a\r\nb\nc", type, Qt::DisplayRole), u"a\u21b5b\u21b5c"_s);
    EXPECT_EQ(cellData(QString(201, u'x'), type, Qt::DisplayRole), QString(200, u'x') + u'\u2026');
    EXPECT_EQ(cellData(QString(200, u'x'), type, Qt::DisplayRole), QString(200, u'x'));
    EXPECT_EQ(cellData(u"", type, Qt::ToolTipRole), QString());
    EXPECT_FALSE(cellData(u"a", type, Qt::DecorationRole).isValid());
    const auto isRight = [](MetaInfo::MetaTypeColumn letter) {
        return (cellData(u"1", {letter, -1}, Qt::TextAlignmentRole).toInt() & Qt::AlignRight) != 0;
    };
    EXPECT_TRUE(isRight(MetaInfo::Key) && isRight(MetaInfo::Float));
    EXPECT_FALSE(isRight(MetaInfo::Unknown));
    const TableSchema columns{{u"<a>"_s}, {MetaInfo(MetaInfo::Float, -1)}, {}};
    EXPECT_EQ(headerData(columns, 0, Qt::Horizontal, Qt::ToolTipRole),
              u"<p>&lt;a&gt;<br>\nnumber</p>"_s);
    EXPECT_EQ(headerData(columns, 0, Qt::Vertical, Qt::DisplayRole), 1);
    EXPECT_FALSE(headerData(columns, 0, Qt::Horizontal, Qt::DecorationRole).isValid());
}

/// A pin after a writer has the rows that reach the writer, and the file is not written.
TEST(DataView, NoFileIsWritten)
{
    View view(5);
    view.show(u"last"_s);
    EXPECT_EQ(view.rows().rows, 5);
    EXPECT_EQ(view.rows().columns.names, QVector<QString>{u"name"_s});
    EXPECT_TRUE(view.note().contains(u"No file is written; the rows are those that reach 'out'"_s));
    view.show(u"out"_s, EngineRunner::PinIn);
    EXPECT_EQ(view.rows().rows, 5);
    view.show(u"in"_s, EngineRunner::PinIn);
    EXPECT_EQ(view.note(), u"No rows reach this pin: it has no link, or its action is unknown."_s);
    EXPECT_FALSE(view.folder.files().contains(u"out.csv"_s));
}

TEST(DataView, RowsAreKeptUntilAnActionBeforeThemChanges)
{
    View view(5);
    view.show(u"last"_s);
    view.show(u"in"_s);
    // Not read again, although the file has other rows.
    view.folder.write(u"in.csv"_s, test::exampleCsv(7));
    view.show(u"last"_s);
    EXPECT_EQ(view.rows().rows, 5);
    view.folder.document->move({{u"in"_s, {10, 10}}});
    view.folder.document->setComment(u"in"_s, u"x"_s);
    QTest::qWait(500);
    EXPECT_EQ(view.rows().rows, 5);
    view.folder.document->setParameter({u"first"_s}, u"where"_s, u"n < 4"_s);
    EXPECT_TRUE(waitFor([&] { return view.rows().rows == 3; }));
    view.folder.document->undoStack()->undo();
    EXPECT_TRUE(waitFor([&] { return view.rows().rows == 5; })) << "the rows are known";
    view.trigger("dataReload");
    EXPECT_EQ(view.rows().rows, 7);
    // A run that writes the file.
    view.folder.write(u"in.csv"_s, test::exampleCsv(8));
    view.view.filesWritten({view.folder.path(u"other.csv"_s)});
    EXPECT_EQ(view.rows().rows, 7);
    view.view.filesWritten({view.folder.path(u"in.csv"_s)});
    view.wait();
    EXPECT_EQ(view.rows().rows, 8);
}

TEST(DataView, FailuresAreShownWithTheRowsBeforeThem)
{
    View view(5);
    view.folder.write(u"in.csv"_s, "n,name\n1,a\nx,b\n");
    view.show(u"in"_s);
    EXPECT_TRUE(view.note().contains(u"'x' is not of type K"_s)) << view.note().toStdString();
    EXPECT_EQ(view.rows().rows, 1);
    view.folder.remove(u"in.csv"_s);
    view.trigger("dataReload");
    EXPECT_TRUE(view.note().contains(u"Reason: "_s)) << view.note().toStdString();
}

TEST(DataView, SearchContinuesAtTheBeginning)
{
    View view(3000);
    view.show(u"in"_s);
    view.trigger("dataMore");
    auto *const search = view.view.findChild<QLineEdit *>(u"dataSearch"_s);
    const auto find = [&](const char *direction) {
        view.trigger(direction);
        return view.table()->currentIndex();
    };
    search->setText(u"NAME 25"_s);
    EXPECT_EQ(find("dataFindNext").row(), 250);
    EXPECT_EQ(find("dataFindNext").row(), 252);
    EXPECT_EQ(find("dataFindPrevious").row(), 250);
    EXPECT_EQ(find("dataFindPrevious").row(), 2598) << "the last one";
    EXPECT_EQ(find("dataFindNext").row(), 250);
    search->setText(u"no such text"_s);
    EXPECT_EQ(find("dataFindNext").row(), 250);
}

TEST(DataView, ColumnsAreHiddenMovedAndCopied)
{
    View view(5);
    view.folder.write(u"in.csv"_s, "n,name\n1,\"a,\"\"b\"\n2,\n3,\"\"\n");
    view.show(u"in"_s);
    EXPECT_EQ(view.view.selectedCsv(), u"n,name\n1,\"a,\"\"b\"\n2,\n3,\"\"\n"_s);
    view.trigger("dataColumns");
    view.summary()->setCurrentIndex(view.summary()->model()->index(0, 0));
    view.trigger("dataColumnRight");
    EXPECT_EQ(view.view.selectedCsv(), u"name,n\n\"a,\"\"b\",1\n,2\n\"\",3\n"_s);
    QAbstractItemModel &columns = *view.summary()->model();
    EXPECT_EQ(columns.index(1, 0).data(), u"n"_s);
    columns.setData(columns.index(0, 0), Qt::Unchecked, Qt::CheckStateRole);
    EXPECT_EQ(view.view.selectedCsv(), u"n\n1\n2\n3\n"_s);
    // The pin keeps this when its rows are read again.
    view.trigger("dataReload");
    EXPECT_EQ(view.view.selectedCsv(), u"n\n1\n2\n3\n"_s);
    view.trigger("dataShowAll");
    view.table()->selectRow(1);
    EXPECT_EQ(view.view.selectedCsv(), u"name,n\n,2\n"_s);
}

TEST(DataView, EachPinOfAnActionCanBeChosen)
{
    View view(5);
    view.show(u"first"_s);
    auto *const pins = view.view.findChild<QComboBox *>(u"dataPins"_s);
    EXPECT_EQ(pins->itemText(0), u"first: output 0"_s);
    EXPECT_EQ(pins->itemText(1), u"first: input 0"_s);
    view.folder.document->rename(u"first"_s, u"few"_s);
    EXPECT_TRUE(waitFor([&] { return pins->currentText() == u"few: output 0"_s; }));
    pins->setCurrentIndex(1);
    Q_EMIT pins->activated(1);
    view.wait();
    EXPECT_EQ(view.rows().rows, 5);
    // Neither the same action nor a selection without an action changes it.
    view.view.showAction(u"few"_s);
    view.view.showAction({});
    EXPECT_EQ(pins->currentText(), u"few: input 0"_s);
    view.view.showAction(u"last"_s);
    EXPECT_EQ(pins->currentText(), u"last: output 0"_s);
    view.show(u"few"_s, EngineRunner::PinIn);
    view.folder.document->remove({u"few"_s});
    EXPECT_TRUE(waitFor([&] { return pins->count() == 0; }));
    EXPECT_EQ(view.rows().rows, 0);
    view.show(u"in"_s);
    view.folder.document.reset();
    EXPECT_EQ(pins->count(), 0);
    EXPECT_EQ(view.rows().rows, 0);
}

/// A window has menus with the same keys.
TEST(LocalKeys, ThePartWithTheFocusIsFirst)
{
    View view(2);
    QAction copy;
    copy.setShortcut(QKeySequence::Copy);
    view.view.window()->addAction(&copy);
    view.show(u"in"_s);
    QApplication::clipboard()->clear();
    QTest::keyClick(view.table(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), u"n,name\n1,name 1\n2,name 2\n"_s);
    view.table()->setCurrentIndex(view.table()->model()->index(1, 1));
    QTest::keyClick(view.table(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), u"name 2"_s);
    auto *const search = view.view.findChild<QLineEdit *>(u"dataSearch"_s);
    search->setText(u"text"_s);
    search->selectAll();
    QTest::keyClick(search, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), u"text"_s);
}

/// The GUI thread only ever takes what has been read.
TEST(DataView, NothingWaitsForRows)
{
    View view(300'000);
    view.folder.document->setParameter({u"first"_s}, u"where"_s, u"n < 0"_s);
    QElapsedTimer timer;
    timer.start();
    view.view.setDocument(view.folder.document.get());
    view.view.showAction(u"first"_s);
    EXPECT_TRUE(view.view.reader().isReading());
    view.view.findChild<QAction *>(u"dataStop"_s)->trigger();
    EXPECT_FALSE(view.view.reader().isReading());
    EXPECT_LT(timer.elapsed(), 500);
}

TEST(DataView, APipeIsNotRead)
{
    View view(5);
    view.folder.remove(u"in.csv"_s);
    ASSERT_EQ(std::system(("mkfifo " + view.folder.path(u"in.csv"_s).toLatin1()).constData()), 0);
    view.show(u"in"_s);
    EXPECT_TRUE(view.note().contains(u"is a pipe or a device"_s)) << view.note().toStdString();
}

TEST(RowChunk, LongCellsAreCutAndCounted)
{
    View view(1);
    view.folder.write(u"in.csv"_s, "n,name\n1," + QByteArray(40'000, 'x') + "\n");
    view.show(u"in"_s);
    EXPECT_TRUE(view.note().contains(u"Cells cut after 32767 characters: 1"_s));
    EXPECT_EQ(view.rows().chunks[0]->text(0, 1).size(), RowChunk::kMaxCellUnits);
}

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    QLocale::setDefault(QLocale(QLocale::English));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
