#pragma once

#include <QDateEdit>

/// A date edit whose calendar opens by keys, too: Alt+Down and F4, as the list of a combo box does.
/// A date can be typed with its separators.
class DateBox final : public QDateEdit
{
    Q_OBJECT

public:
    explicit DateBox(QWidget *parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void ShowCalendar();
    void GoOnBehindSeparator();

    bool bWentOnByItself = false;
};
