#include "ViewerWindow.h"

#include <QFileInfo>
#include <QLabel>

ViewerWindow::ViewerWindow(QWidget *parent)
    : QMainWindow(parent)
    , labNotice(new QLabel(tr("No fax is open."), this))
{
    labNotice->setTextFormat(Qt::PlainText);
    labNotice->setAlignment(Qt::AlignCenter);
    labNotice->setWordWrap(true);
    setCentralWidget(labNotice);
}

void ViewerWindow::Open(const QString &path)
{
    const bool isOpen = document.Open(QFileInfo(path).absoluteFilePath());
    setWindowTitle(isOpen ? QFileInfo(path).fileName() : QString());
    labNotice->setText(isOpen ? tr("Pages: %1").arg(document.PageCount()) : document.Problem());
}
