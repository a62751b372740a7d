#include "ZoomBox.h"

#include <QLineEdit>

#include <cmath>

namespace {

QString ToPercent(double zoom)
{
    return ZoomBox::tr("%1 %").arg(std::lround(zoom * 100));
}

} // namespace

ZoomBox::ZoomBox(QWidget *parent)
    : QComboBox(parent)
{
    setEditable(true);
    setInsertPolicy(NoInsert);
    setAccessibleName(tr("Zoom"));
    setToolTip(tr("Zoom"));
    for (const double zoom : {0.25, 0.5, 0.75, 1.0, 1.25, 1.5, 2.0, 3.0, 4.0, 8.0})
        addItem(ToPercent(zoom));
    setMaxVisibleItems(count());
    setCompleter(nullptr);
    setMinimumContentsLength(6);
    connect(this, &QComboBox::textActivated, this, &ZoomBox::Choose);
    connect(lineEdit(), &QLineEdit::returnPressed, this, [this] { Choose(currentText()); });
    connect(lineEdit(), &QLineEdit::editingFinished, this, [this] { ShowZoom(dZoom); });
    ShowZoom(dZoom);
}

void ZoomBox::ShowZoom(double zoom)
{
    dZoom = zoom;
    setEditText(ToPercent(zoom));
}

void ZoomBox::Choose(const QString &text)
{
    QString number = text;
    number.remove('%').replace(',', '.');
    bool isNumber = false;
    const double percent = number.trimmed().toDouble(&isNumber);
    if (isNumber && percent > 0)
        emit ZoomChosen(percent / 100);
    ShowZoom(dZoom);
    emit Left();
}
