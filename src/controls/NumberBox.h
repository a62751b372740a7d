#pragma once

#include <QSpinBox>

/// A spin box of whole numbers from 0 on whose text never leaves its bounds: it takes digits only, a number
/// above the bound becomes the bound, and an empty text becomes 0.
class NumberBox final : public QSpinBox
{
    Q_OBJECT
    /// The object name of the text in it.
    Q_PROPERTY(QString editName READ EditName WRITE setEditName)

public:
    explicit NumberBox(QWidget *parent = nullptr);

    QString EditName() const;
    void setEditName(const QString &name);

protected:
    QValidator::State validate(QString &input, int &position) const override;
};
