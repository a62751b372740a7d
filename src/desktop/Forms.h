#pragma once

#include <QString>

/// Opens the windows that logic asks for, and counts the open ones.
class Forms
{
public:
    virtual ~Forms() = default;

    /// Number of open windows: the main window once it is loaded, also while it is hidden, and every other
    /// one that is visible.
    virtual int Count() const = 0;

    /// Shows the login window for a login from the running main window, modal: its account, server and check
    /// boxes are fixed. True after a good login; the connection has changed owner by then.
    virtual bool LoginFromMainWindow() = 0;

    /// Opens a composer on a fax file, not modal, owned by the main window.
    virtual void OpenComposer(const QString &faxFile) = 0;

    /// Opens a composer on a draft of the mailbox, in the same way.
    virtual void EditDraft(const QString &faxID) = 0;
};
