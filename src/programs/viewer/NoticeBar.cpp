#include "NoticeBar.h"

#include "controls/Icons.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace {
constexpr int lBriefly = 4000; // ms
constexpr int lIconSide = 16;
} // namespace

NoticeBar::NoticeBar(QWidget *parent)
    : QFrame(parent)
    , labIcon(new QLabel(this))
    , labText(new QLabel(this))
    , btnClose(new QToolButton(this))
{
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    labText->setObjectName("labNotice");
    labText->setForegroundRole(QPalette::ToolTipText);
    labText->setTextFormat(Qt::PlainText);
    labText->setWordWrap(true);
    labIcon->setPixmap(Icons::Get("imgWarning").pixmap(QSize(lIconSide, lIconSide), devicePixelRatioF()));
    btnClose->setText(QStringLiteral("\u00d7"));
    btnClose->setAutoRaise(true);
    btnClose->setToolTip(tr("Close this notice"));
    btnClose->setAccessibleName(btnClose->toolTip());
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 4, 4);
    layout->addWidget(labIcon);
    layout->addWidget(labText, 1);
    layout->addWidget(btnClose);
    connect(btnClose, &QToolButton::clicked, this, &QWidget::hide);
    tmrHide.setSingleShot(true);
    tmrHide.setInterval(lBriefly);
    connect(&tmrHide, &QTimer::timeout, this, &QWidget::hide);
    hide();
}

void NoticeBar::ShowText(const QString &text)
{
    tmrHide.stop();
    labIcon->show();
    labText->setText(text);
    setAccessibleName(text);
    show();
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void NoticeBar::ShowBriefly(const QString &text)
{
    ShowText(text);
    labIcon->hide(); // it is no warning
    tmrHide.start();
}

QString NoticeBar::Text() const
{
    return labText->text();
}
