#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;

/// "3 / 12": shows the page, and goes to the one that is typed.
class PageBox final : public QWidget
{
    Q_OBJECT

public:
    explicit PageBox(QWidget *parent = nullptr);

    /// Zero-based. Without pages the box is disabled.
    void ShowPage(int page, int pages);

signals:
    void PageChosen(int page); ///< zero-based
    /// Nothing more is to be typed.
    void Left();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void Choose();
    void Reset();

    QLineEdit *txtPage;
    QLabel *labPages;
    int lPage = 0, lPages = 0;
};
