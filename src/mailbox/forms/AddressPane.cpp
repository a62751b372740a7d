#include "mailbox/forms/AddressPane.h"

AddressPane::AddressPane(QWidget *parent)
    : HintedTreeView(parent)
{
    setObjectName("tvAddressbook");
    setAccessibleName(tr("Address book"));
    setHeaderHidden(true);
    SetHint(tr("Contacts are not shown yet."));
}
