#pragma once

#include <QObject>
#include <QString>

class QLabel;
class QProgressBar;
class QStatusBar;

/// The panels of the main window's status bar.
class StatusPanels final : public QObject
{
    Q_OBJECT

public:
    explicit StatusPanels(QStatusBar &bar);

    /// Today's date and weekday; renewed by itself.
    void ShowToday();
    /// Number of faxes and unread ones.
    void SetTotals(const QString &text);
    void SetServer(const QString &text);
    /// Percentage of a whole run; below 0 for none.
    void SetTotalPercent(int percent);

private:
    QLabel *AddPanel(QStatusBar &bar, const char *name);

    QProgressBar *pbTotal;
    QLabel *labToday;
    QLabel *labTotals;
    QLabel *labServer;
};
