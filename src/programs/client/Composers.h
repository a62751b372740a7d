#pragma once

#include "compose/Composer.h"
#include "compose/forms/frmNewFax.h"

#include <QList>
#include <QPointer>

class frmMain;
struct Ports;
struct ServerParts;

/// The composers that are open, and the windows that they open.
class Composers final
{
public:
    Composers(const Ports &systemPorts, Forms &forms, Mailbox &mailbox, frmMain &mainWindow,
              ServerParts &serverParts);
    ~Composers();

    /// Opens a composer; one that edits the same draft already comes to the front instead.
    void Open(const ComposerStart &start);
    /// Closes all, as their users do; false when one stays.
    bool Close();

private:
    Q_DISABLE_COPY(Composers)

    frmNewFax *FindEditor(const QString &faxID) const;
    ComposerDialogs Dialogs() const;

    const Ports &ports;
    frmMain &window;
    ConversionTurn turn;
    ComposerParts parts;
    QList<QPointer<frmNewFax>> open;
};
