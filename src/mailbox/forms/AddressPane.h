#pragma once

#include "controls/HintedTreeView.h"

/// The address tree `tvAddressbook`.
class AddressPane final : public HintedTreeView
{
    Q_OBJECT

public:
    explicit AddressPane(QWidget *parent = nullptr);
};
