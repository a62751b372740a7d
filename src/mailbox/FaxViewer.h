#pragma once

#include <QCoreApplication>
#include <QString>

#include <functional>

class ShownMailbox;
struct Ports;

/// Opens the fax on show to be read in full: a draft in the composer, any other in the companion viewer.
class FaxViewer final
{
    Q_DECLARE_TR_FUNCTIONS(FaxViewer)

public:
    /// `editDraft` opens a composer on the draft of that id.
    FaxViewer(ShownMailbox &mailbox, const Ports &ports, std::function<void(const QString &)> editDraft);

    /// Nothing without a fax on show. The fax counts as read once it was opened, and its receipt is queued. A
    /// file or viewer that is missing, or does not start, is told in a box. Raises the errors of the
    /// database.
    void mnuViewFax();

    /// Starts the viewer on a file; false, after a box, when that failed. The viewer gets a received file
    /// that begins with its own size as a copy without it: "tmp~<name>" in the outbox folder, which is swept
    /// as the program ends.
    static bool Open(const QString &path, const Ports &ports);

private:
    static QString FileForViewer(const QString &path);

    ShownMailbox &mailbox;
    const Ports &ports;
    std::function<void(const QString &)> editDraft;
};
