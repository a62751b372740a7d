#include "controls/NumberBox.h"

#include <QLineEdit>

#include <algorithm>

NumberBox::NumberBox(QWidget *parent)
    : QSpinBox(parent)
{
}

QString NumberBox::EditName() const
{
    return lineEdit()->objectName();
}

void NumberBox::setEditName(const QString &name)
{
    lineEdit()->setObjectName(name);
}

QValidator::State NumberBox::validate(QString &input, int &position) const
{
    const auto isDigit = [](QChar character) { return character >= '0' && character <= '9'; };
    if (!std::all_of(input.cbegin(), input.cend(), isDigit))
        return QValidator::Invalid;
    bool fits = false;
    const int number = input.isEmpty() ? 0 : input.toInt(&fits);
    const bool isAbove = !input.isEmpty() && (!fits || number > maximum());
    // Zeros in front go when digits are added behind them, not when a digit before them is being replaced.
    const bool isPadded = position == input.size() && input.size() > 1 && input.startsWith('0');
    if (!input.isEmpty() && !isAbove && !isPadded)
        return QValidator::Acceptable;
    input = QString::number(isAbove ? maximum() : number);
    position = static_cast<int>(input.size());
    return QValidator::Acceptable;
}
