#include "panels/panel_heading.h"

#include "corvanta/action_item.h"
#include "panels/colors.h"
#include "panels/field_editor.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr double kIconScale = 0.5; // 32 pixels
constexpr double kPlateRadius = 5;
constexpr double kPlateMargin = 3;

/// A description is a text for menus, where "&&" is a visible ampersand.
QString shownDescription(const ActionItem &action)
{
    return translated(action.getDescription()).replace("&&"_L1, "&"_L1);
}

/// The icon on a light plate when the window is dark: icons are drawn for light windows.
QPixmap readableIcon(const QPixmap &icon, const QPalette &palette)
{
    const bool isDark = contrastOf(palette.color(QPalette::Window), Qt::black) <
                        contrastOf(palette.color(QPalette::Window), Qt::white);
    if (!isDark) {
        return icon;
    }
    QPixmap plated(icon.size());
    plated.setDevicePixelRatio(icon.devicePixelRatio());
    plated.fill(Qt::transparent);
    QPainter painter(&plated);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xf0, 0xf0, 0xf0));
    const QRectF all(QPointF(), icon.deviceIndependentSize());
    painter.drawRoundedRect(all, kPlateRadius, kPlateRadius);
    const QRectF inner = all.adjusted(kPlateMargin, kPlateMargin, -kPlateMargin, -kPlateMargin);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(inner, icon, QRectF(icon.rect()));
    return plated;
}

} // namespace

PanelHeading::PanelHeading(ActionItem *action, QWidget *parent)
    : QWidget(parent)
    , m_action(action)
    , m_icon(new QLabel)
{
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    showIcon();
    auto *const text = new QLabel(
        u"<b>%1</b><br>%2"_s.arg(QString::fromLatin1(action->getTypeName()).toHtmlEscaped(),
                                 shownDescription(*action).toHtmlEscaped()));
    text->setWordWrap(true);
    auto *const help = new QToolButton;
    help->setText(u"?"_s);
    help->setAutoRaise(true);
    help->setFocusPolicy(Qt::StrongFocus); // tool buttons are skipped by Tab otherwise
    help->setAccessibleName(tr("Help"));
    help->setToolTip(tr("Help (F1)"));
    help->setAccessibleDescription(tr("Opens the help page of the action"));
    connect(help, &QToolButton::clicked, this, [this] { m_action->showHelp(); });
    layout->addWidget(m_icon);
    layout->addWidget(text, 1);
    layout->addWidget(help);
}

void PanelHeading::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        showIcon();
    }
}

/// Drawn for the pixels of the screen, so that it is sharp on a scaled one.
void PanelHeading::showIcon()
{
    const double ratio = devicePixelRatioF();
    QPixmap icon = *m_action->getIcon(kIconScale * ratio);
    icon.setDevicePixelRatio(ratio);
    m_icon->setPixmap(readableIcon(icon, palette()));
}

} // namespace corvanta
