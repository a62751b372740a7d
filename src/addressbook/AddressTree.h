#pragma once

/// The tree of contacts and groups in the main window, `tvAddressbook`.
class AddressTree
{
public:
    virtual ~AddressTree() = default;

    /// Clears the children of the node "Root" and loads them anew from the tables `ContactGroup` and
    /// `Contacts`. Called when public groups or contacts have changed. This base shows nothing.
    virtual void LoadAddressBook() {}
};
