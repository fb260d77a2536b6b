// Where the controls of a panel are: people can read everything at any width, size of the font and
// language.
#include "panels/field_editor.h"
#include "tests/panels/panel_keys.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QStyleOption>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <array>

using namespace Qt::StringLiterals;
using namespace corvanta;
using panels::Action;
using panels::nameOf;
using panels::Panel;
using panels::shown;

namespace {

class PanelLayouts : public testing::TestWithParam<std::string>
{
protected:
    PanelLayouts()
        : action(panels::fromXml(panels::example(QString::fromStdString(GetParam()))))
    {
    }
    ~PanelLayouts() override { QApplication::setFont(m_font); }

    void setScale(double scale)
    {
        QFont font = m_font;
        font.setPointSizeF(m_font.pointSizeF() * scale);
        QApplication::setFont(font);
    }

    const Action action;

private:
    const QFont m_font = QApplication::font();
};

/// Sizes of the font. On sharper screens the larger ones are laid out as on others.
std::vector<double> scalesToTest()
{
    return qEnvironmentVariableIsSet("QT_SCALE_FACTOR") ? std::vector{1.0}
                                                        : std::vector{1.0, 1.5, 2.0};
}

bool showsWholeChoice(const QComboBox &box)
{
    QStyleOptionComboBox option;
    option.initFrom(&box);
    const int room =
        box.style()
            ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &box)
            .width();
    return box.fontMetrics().horizontalAdvance(box.currentText()) <= room;
}

/// Whether the text of the current choice is in the box, or in the remark below it.
bool showsItsChoice(const QComboBox &box)
{
    const auto *const remark = box.parentWidget()->findChild<QLabel *>();
    return showsWholeChoice(box) || (remark != nullptr && remark->isVisible() &&
                                     remark->text().startsWith(box.currentText()));
}

/// Lines are not broken inside words. Notes may have long ones, such as file names.
bool showsItsWords(const QLabel &label)
{
    const QStringList words = label.buddy() == nullptr ? QStringList() : label.text().split(u' ');
    return std::all_of(words.begin(), words.end(), [&label](const QString &word) {
        return label.fontMetrics().size(Qt::TextShowMnemonic, word).width() <= label.width();
    });
}

/// Whether all text of a label or button is inside it.
bool showsItsText(const QWidget *widget)
{
    if (const auto *const label = qobject_cast<const QLabel *>(widget)) {
        const int height = label->wordWrap() ? label->heightForWidth(label->width())
                                             : label->minimumSizeHint().height();
        return label->height() >= height && showsItsWords(*label) &&
               (label->wordWrap() || label->width() >= label->minimumSizeHint().width());
    }
    if (const auto *const box = qobject_cast<const QComboBox *>(widget);
        box != nullptr && !box->isEditable()) {
        return showsItsChoice(*box);
    }
    if (qobject_cast<const QAbstractButton *>(widget) != nullptr ||
        qobject_cast<const QAbstractSpinBox *>(widget) != nullptr) {
        return widget->width() >= widget->minimumSizeHint().width() &&
               widget->height() >= widget->minimumSizeHint().height();
    }
    return true;
}

/// What cannot be read, for a message.
QStringList unreadable(const QWidget &panel)
{
    QStringList found;
    const auto *const scroll = panel.findChild<QScrollArea *>();
    if (scroll->widget()->width() > scroll->viewport()->width()) {
        found << u"the fields are wider than the panel"_s; // which does not scroll sideways
    }
    for (const QWidget *const widget : panel.findChildren<QWidget *>()) {
        const bool isPart = qobject_cast<const QLineEdit *>(widget->parentWidget()) != nullptr;
        if (!widget->isVisible() || isPart || widget->inherits("QComboBoxPrivateContainer")) {
            continue;
        }
        if (!showsItsText(widget)) {
            found << QString::fromStdString(nameOf(widget)) + u" is cut"_s;
        }
        const auto siblings =
            widget->parentWidget()->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
        const bool isLaidOut = widget->parentWidget()->layout() != nullptr;
        for (const QWidget *const other : siblings) {
            if (isLaidOut && other != widget && other->isVisible() && !other->isWindow() &&
                other->geometry().intersects(widget->geometry())) {
                found << QString::fromStdString(nameOf(widget) + " overlaps " + nameOf(other));
            }
        }
    }
    return found;
}

/// The layout may still change, because problems arrive from another thread.
void expectReadable(const QWidget &panel)
{
    QElapsedTimer timer;
    timer.start();
    constexpr int limitMs = 3000;
    while (!unreadable(panel).isEmpty() && timer.elapsed() < limitMs) {
        QTest::qWait(20);
    }
    EXPECT_EQ(unreadable(panel), QStringList());
}

/// The fields of the parameters, without those of their members.
QList<FieldEditor *> fieldsOf(const QWidget &panel)
{
    QList<FieldEditor *> fields;
    for (QWidget *const widget : panel.findChildren<QWidget *>()) {
        QWidget *parent = widget->parentWidget();
        while (parent != &panel && dynamic_cast<FieldEditor *>(parent) == nullptr) {
            parent = parent->parentWidget();
        }
        if (auto *const field = dynamic_cast<FieldEditor *>(widget);
            field != nullptr && parent == &panel) {
            fields << field;
        }
    }
    return fields;
}

constexpr int kDockWidth = 340; // of the editor's dock, in pixels

/// In pixels, next to the buttons of its field. Numbers and check boxes are as wide as they need.
int minimumControlWidth(const QWidget &control)
{
    const bool isNarrow = qobject_cast<const QAbstractSpinBox *>(&control) != nullptr ||
                          qobject_cast<const QCheckBox *>(&control) != nullptr;
    return isNarrow ? 0 : 160;
}

/// For names that are typed, and for the current choice unless the box is as wide as the panel.
void expectRoomInBoxes(const QWidget &panel)
{
    constexpr int nameWidth = 160;
    for (const QComboBox *const box : panel.findChildren<QComboBox *>()) {
        if (box->isVisible() && box->isEditable()) {
            EXPECT_GE(box->width(), nameWidth) << nameOf(box);
        } else if (box->isVisible() && !showsWholeChoice(*box)) {
            EXPECT_GE(box->width(), panel.width() * 8 / 10) << nameOf(box);
        }
    }
}

/// Whether a label can be left of a field.
bool hasNarrowField(const QWidget &panel)
{
    const QList<FieldEditor *> fields = fieldsOf(panel);
    return std::any_of(fields.begin(), fields.end(), [](const FieldEditor *field) {
        return !field->isWide() && !field->showsLabel();
    });
}

} // namespace

TEST_P(PanelLayouts, ComesToRestInAWindow)
{
    /// Counts the layouts of a panel's content.
    class Counter final : public QObject
    {
    public:
        int requests = 0;

    protected:
        bool eventFilter(QObject *watched, QEvent *event) override
        {
            requests += static_cast<int>(event->type() == QEvent::LayoutRequest);
            return QObject::eventFilter(watched, event);
        }
    };
    QWidget window;
    auto *const column = new QVBoxLayout(&window);
    UpdateClassWidget *const panel = action->createPanel(&window);
    column->addWidget(panel);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::qWait(100); // problems arrive
    Counter counter;
    panel->installEventFilter(&counter);
    QTest::qWait(50);
    EXPECT_LE(counter.requests, 5);
}

TEST_P(PanelLayouts, NothingIsCutOrOverlaps)
{
    for (const bool isFrench : {false, true}) {
        const auto french = isFrench ? std::make_unique<panels::French>() : nullptr;
        for (const double scale : scalesToTest()) {
            setScale(scale);
            const Panel panel = shown(action);
            SCOPED_TRACE(scale);
            SCOPED_TRACE(isFrench ? "French" : "English");
            // As wide as the panel likes to be, wider, in a dock, and as narrow as it can be.
            for (const int width : {panel->width(), 800, 340, 0}) {
                panel->resize(width, panel->height());
                QApplication::processEvents();
                QApplication::sendPostedEvents(); // a preview may have changed the layout
                SCOPED_TRACE(panel->width());
                expectReadable(*panel);
            }
        }
    }
}

TEST_P(PanelLayouts, FieldsOfANarrowPanelHaveMostOfItsWidth)
{
    for (const bool isFrench : {false, true}) {
        const auto french = isFrench ? std::make_unique<panels::French>() : nullptr;
        const Panel panel = shown(action);
        EXPECT_LE(panel->minimumSizeHint().width(), kDockWidth);
        for (const int width : {320, kDockWidth, 360}) {
            panel->resize(width, panel->height());
            QApplication::processEvents();
            for (const FieldEditor *const field : fieldsOf(*panel)) {
                EXPECT_GE(field->width(), panel->width() * 6 / 10) << nameOf(field);
                EXPECT_GE(field->focusProxy()->width(), minimumControlWidth(*field->focusProxy()))
                    << nameOf(field);
            }
            expectRoomInBoxes(*panel);
        }
        panel->resize(panel->sizeHint().width(), panel->height());
        QApplication::processEvents();
        expectRoomInBoxes(*panel);
    }
}

TEST_P(PanelLayouts, LabelsAreLeftOfFieldsWhereThereIsRoom)
{
    const Panel panel = shown(action);
    const auto leftLabels = [&panel](int width) {
        panel->resize(width, panel->height());
        QApplication::processEvents();
        const QList<FieldEditor *> fields = fieldsOf(*panel);
        QStringList names;
        for (const QLabel *const label : panel->findChildren<QLabel *>()) {
            const auto field =
                std::find_if(fields.begin(), fields.end(), [label](const FieldEditor *each) {
                    return !each->showsLabel() && each->focusProxy() == label->buddy();
                });
            if (field == fields.end()) {
                continue;
            }
            const int end = label->mapTo(panel.get(), QPoint(label->width(), 0)).x();
            if (end <= (*field)->mapTo(panel.get(), QPoint()).x()) {
                names << (*field)->objectName();
                EXPECT_LE(label->width(), panel->width() / 3) << names.last().toStdString();
            }
        }
        return names;
    };
    const QStringList names = leftLabels(460);
    EXPECT_EQ(names.isEmpty(), !hasNarrowField(*panel));
    EXPECT_TRUE(leftLabels(340).isEmpty() || panel->width() > 380);
    EXPECT_EQ(leftLabels(460), names) << "the width decides, not what it was before";
}

TEST(Controls, BoxesIconsAndTextsGrowWithTheFont)
{
    const QFont normal = QApplication::font();
    const auto sizes = [] {
        const Action action = panels::fromXml("<readExcel/>");
        const Panel panel = shown(action);
        const auto *const box = panel->findChild<QCheckBox *>();
        const auto *const heading = panel->findChild<QToolButton *>(u"heading"_s);
        const auto *const text = panel->findChild<QPlainTextEdit *>();
        return std::array{box->style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, box),
                          heading->iconSize().width(), text->fontMetrics().height()};
    };
    const auto before = sizes();
    QFont font = normal;
    font.setPointSizeF(normal.pointSizeF() * 2);
    QApplication::setFont(font);
    const auto after = sizes();
    for (size_t i = 0; i < before.size(); ++i) {
        EXPECT_GE(after.at(i), before.at(i) * 3 / 2) << i;
    }
    QApplication::setFont(normal);
}

INSTANTIATE_TEST_SUITE_P(All, PanelLayouts, testing::ValuesIn(panels::testedTypes()),
                         [](const auto &info) { return info.param; });
