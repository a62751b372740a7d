#include "compose/forms/ConversionPanel.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

ConversionPanel::ConversionPanel(DocumentConversion &shownConversion, QWidget *parent)
    : QFrame(parent)
    , conversion(shownConversion)
    , txtStatu(new QPlainTextEdit(this))
    , busyBar(new QProgressBar(this))
    , btnCancel(new QPushButton(this))
{
    setObjectName("picProcess");
    setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    setAutoFillBackground(true);
    txtStatu->setObjectName("txtStatu");
    txtStatu->setReadOnly(true);
    txtStatu->setAccessibleName(tr("State of the conversion"));
    busyBar->setRange(0, 0);
    busyBar->setTextVisible(false);
    btnCancel->setObjectName("btnCancel");
    btnCancel->setAutoDefault(true);

    auto *title = new QLabel(tr("Converting the files of the fax"), this);
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    auto *column = new QVBoxLayout(this);
    column->addWidget(title);
    column->addWidget(txtStatu, 1);
    column->addWidget(busyBar);
    column->addWidget(btnCancel, 0, Qt::AlignRight);
    hide();

    // Queued: a click cancels, which waits; the button must not be waited in.
    connect(btnCancel, &QPushButton::clicked, &conversion, &DocumentConversion::btnCancel_Click,
            Qt::QueuedConnection);
    connect(&conversion, &DocumentConversion::PanelChanged, this, &ConversionPanel::Show);
}

void ConversionPanel::Place()
{
    constexpr QSize usual(460, 220);
    const QSize room = parentWidget()->size() - QSize(24, 24);
    resize(usual.boundedTo(room));
    move((parentWidget()->width() - width()) / 2, (parentWidget()->height() - height()) / 2);
}

void ConversionPanel::Show()
{
    const DocumentConversion::Panel &panel = conversion.Shown();
    if (txtStatu->toPlainText() != panel.strStatus) {
        txtStatu->setPlainText(panel.strStatus);
        txtStatu->moveCursor(QTextCursor::End);
    }
    btnCancel->setText(panel.strCaption);
    btnCancel->setEnabled(panel.bButtonEnabled);
    busyBar->setVisible(panel.bBusyPointer);
    setCursor(panel.bBusyPointer ? Qt::BusyCursor : Qt::ArrowCursor);
    if (panel.bVisible != isVisibleTo(parentWidget())) {
        Place();
        setVisible(panel.bVisible);
        emit VisibleChanged(panel.bVisible);
        if (panel.bVisible) {
            raise();
            btnCancel->setFocus();
        }
    }
}
