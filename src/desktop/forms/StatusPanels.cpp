#include "desktop/forms/StatusPanels.h"

#include <QDate>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QStatusBar>
#include <QTimer>

namespace {

constexpr int lTotalsWidth = 22; // blanks
constexpr int lTotalWidth = 140;
constexpr int lPanelMargin = 4;
/// Not one long wait for midnight: a computer that sleeps through it would show yesterday.
constexpr int lTodayInterval = 60 * 1000;

} // namespace

StatusPanels::StatusPanels(QStatusBar &bar)
    : QObject(&bar)
    , pbTotal(new QProgressBar(&bar))
{
    auto *welcome = new QLabel(tr("Welcome to Velmar Client, please press F1 for Help"), &bar);
    welcome->setObjectName("labWelcome");
    welcome->setContentsMargins(lPanelMargin, 0, 0, 0);
    welcome->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // the panels come first
    bar.addWidget(welcome, 1);
    pbTotal->setObjectName("pbTotal");
    pbTotal->setMaximumWidth(lTotalWidth);
    pbTotal->setAccessibleName(tr("Progress of the transfer"));
    bar.addPermanentWidget(pbTotal);
    labToday = AddPanel(bar, "labToday");
    labTotals = AddPanel(bar, "labTotals");
    labTotals->setMinimumWidth(bar.fontMetrics().horizontalAdvance(QString(lTotalsWidth, ' ')));
    labServer = AddPanel(bar, "labServer");
    SetTotalPercent(-1);
    SetServer(tr("Offline"));
    ShowToday();
    auto *midnight = new QTimer(this);
    midnight->setTimerType(Qt::VeryCoarseTimer);
    connect(midnight, &QTimer::timeout, this, &StatusPanels::ShowToday);
    midnight->start(lTodayInterval);
}

QLabel *StatusPanels::AddPanel(QStatusBar &bar, const char *name)
{
    auto *border = new QFrame(&bar);
    border->setFrameStyle(QFrame::VLine | QFrame::Sunken);
    bar.addPermanentWidget(border);
    auto *panel = new QLabel(&bar);
    panel->setObjectName(name);
    panel->setTextFormat(Qt::PlainText);
    panel->setContentsMargins(lPanelMargin, 0, lPanelMargin, 0);
    bar.addPermanentWidget(panel);
    return panel;
}

void StatusPanels::ShowToday()
{
    const QLocale locale;
    const QDate today = QDate::currentDate();
    labToday->setText(tr(" Today : ") + locale.toString(today, QLocale::ShortFormat) + "  " +
                      locale.dayName(today.dayOfWeek()) + " ");
}

void StatusPanels::SetTotals(const QString &text)
{
    labTotals->setText(text);
}

void StatusPanels::SetServer(const QString &text)
{
    labServer->setText(text);
}

void StatusPanels::SetTotalPercent(int percent)
{
    pbTotal->setVisible(percent >= 0);
    pbTotal->setValue(qBound(0, percent, 100));
}
