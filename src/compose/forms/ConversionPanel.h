#pragma once

#include "compose/DocumentConversion.h"

#include <QFrame>

class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;

/// The panel `picProcess`, which lies over a composer while the print tool works.
class ConversionPanel final : public QFrame
{
    Q_OBJECT

public:
    ConversionPanel(DocumentConversion &shownConversion, QWidget *parent);

    /// In the middle of the parent.
    void Place();

signals:
    void VisibleChanged(bool visible);

private:
    void Show();

    DocumentConversion &conversion;
    QPlainTextEdit *txtStatu;
    QProgressBar *busyBar;
    QPushButton *btnCancel;
};
