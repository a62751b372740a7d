#pragma once

#include <QFrame>
#include <QTimer>

class QLabel;
class QToolButton;

/// A line of text above the pages that the user can close.
class NoticeBar final : public QFrame
{
    Q_OBJECT

public:
    explicit NoticeBar(QWidget *parent = nullptr);

    void ShowText(const QString &text);
    /// Goes away by itself.
    void ShowBriefly(const QString &text);
    QString Text() const;

private:
    QLabel *labIcon;
    QLabel *labText;
    QToolButton *btnClose;
    QTimer tmrHide;
};
