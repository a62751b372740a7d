#pragma once

#include <QHeaderView>

/// A header that draws the icons that the model's `ImageKeyRole` names.
class MarkedHeader final : public QHeaderView
{
    Q_OBJECT

public:
    explicit MarkedHeader(QWidget *parent = nullptr);

protected:
    void initStyleOptionForIndex(QStyleOptionHeader *option, int logicalIndex) const override;
};
