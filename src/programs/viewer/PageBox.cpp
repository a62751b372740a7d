#include "PageBox.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>

PageBox::PageBox(QWidget *parent)
    : QWidget(parent)
    , txtPage(new QLineEdit(this))
    , labPages(new QLabel(this))
{
    txtPage->setObjectName("txtPage");
    txtPage->setAlignment(Qt::AlignRight);
    txtPage->setAccessibleName(tr("Page"));
    txtPage->setToolTip(tr("Type a page and press Return to go there"));
    txtPage->setValidator(new QIntValidator(0, 99999, txtPage));
    constexpr int frames = 16;
    txtPage->setFixedWidth(fontMetrics().horizontalAdvance("00000") + frames);
    txtPage->installEventFilter(this);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 0, 4, 0);
    layout->addWidget(txtPage);
    layout->addWidget(labPages);
    connect(txtPage, &QLineEdit::returnPressed, this, &PageBox::Choose);
    connect(txtPage, &QLineEdit::editingFinished, this, &PageBox::Reset);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    setFocusProxy(txtPage);
    ShowPage(0, 0);
}

void PageBox::ShowPage(int page, int pages)
{
    lPage = page;
    lPages = pages;
    labPages->setText(pages > 0 ? tr("/ %1").arg(pages) : QString());
    setEnabled(pages > 0);
    Reset();
}

void PageBox::Reset()
{
    txtPage->setText(lPages > 0 ? QString::number(lPage + 1) : QString());
}

/// A number beyond the pages means the nearest one.
void PageBox::Choose()
{
    emit PageChosen(std::clamp(txtPage->text().toInt(), 1, lPages) - 1);
    emit Left();
}

bool PageBox::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::FocusIn)
        QMetaObject::invokeMethod(txtPage, &QLineEdit::selectAll, Qt::QueuedConnection); // after the click
    return QWidget::eventFilter(object, event);
}
