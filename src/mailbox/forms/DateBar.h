#pragma once

#include <QList>
#include <QWidget>

class QComboBox;
class QLabel;
class QToolButton;
class ShownMailbox;

/// The date range bar `frmeHistory`: a year and its months.
class DateBar final : public QWidget
{
    Q_OBJECT

public:
    explicit DateBar(ShownMailbox &mailbox, QWidget *parent = nullptr);

private:
    void ShowDates();

    ShownMailbox &mailbox;
    QComboBox *cmbYear;
    QList<QToolButton *> btnMonth;
    QLabel *labRange; ///< the range in days: a folder that is selected later releases the month's button
};
