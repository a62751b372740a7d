#include "mailbox/forms/DateBar.h"

#include "mailbox/ShownMailbox.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QSignalBlocker>
#include <QToolButton>

namespace {

constexpr int lMonths = 12;

} // namespace

DateBar::DateBar(ShownMailbox &shownMailbox, QWidget *parent)
    : QWidget(parent)
    , mailbox(shownMailbox)
    , cmbYear(new QComboBox(this))
    , labRange(new QLabel(this))
{
    setObjectName("frmeHistory");
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(2);
    cmbYear->setObjectName("cmbYear");
    cmbYear->setAccessibleName(tr("Year"));
    cmbYear->setToolTip(tr("Show the faxes of one year only"));
    cmbYear->addItems(mailbox.Dates().Years());
    layout->addWidget(cmbYear);
    layout->addSpacing(6);
    for (int month = 0; month < lMonths; ++month) {
        auto *button = new QToolButton(this);
        button->setObjectName("btnMonth_" + QString::number(month));
        button->setCheckable(true);
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::TabFocus);
        button->setAccessibleName(QLocale().standaloneMonthName(month + 1));
        connect(button, &QToolButton::clicked, this, [this, month] { mailbox.ClickMonth(month); });
        btnMonth.append(button);
        layout->addWidget(button);
    }
    labRange->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // gives way in a narrow window
    labRange->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    layout->addWidget(labRange, 1);
    connect(cmbYear, &QComboBox::activated, this, [this](int index) { mailbox.SelectYear(index); });
    connect(&mailbox, &ShownMailbox::DatesChanged, this, &DateBar::ShowDates);
    ShowDates();
}

void DateBar::ShowDates()
{
    const DateFilter &dates = mailbox.Dates();
    const QSignalBlocker blocker(cmbYear);
    cmbYear->setCurrentIndex(dates.YearIndex());
    for (int month = 0; month < lMonths; ++month) {
        QToolButton *button = btnMonth.at(month);
        button->setText(dates.MonthCaption(month));
        button->setVisible(dates.YearIndex() > 0);
        button->setEnabled(dates.IsMonthEnabled(month));
        button->setChecked(dates.IsMonthPressed(month));
    }
    const QLocale locale;
    labRange->setText(dates.FirstDay().isValid()
                          ? locale.toString(dates.FirstDay(), QLocale::ShortFormat) + " – " +
                                locale.toString(dates.LastDay(), QLocale::ShortFormat)
                          : QString());
}
