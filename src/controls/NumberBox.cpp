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
    const QString text = QString::number(fits || input.isEmpty() ? std::min(number, maximum()) : maximum());
    if (text == input)
        return QValidator::Acceptable;
    const qsizetype shorter = input.size() - text.size(); // zeros in front are gone
    position = input.endsWith(text) ? std::max(0, position - static_cast<int>(shorter))
                                    : static_cast<int>(text.size());
    input = text;
    return QValidator::Acceptable;
}
