#pragma once

#include "core/CSharedString.h"
#include "core/PrinterProgress.h"

#include <QString>

class Folders;

/// The tool's end of its conversation with the client: the shared string, which both write, and the progress
/// value. Whoever writes last wins, so the string is read before each write: a request to stop and the words
/// of another conversation are left alone, and this conversation is over.
class StatusChannel final
{
public:
    /// Raises the system's error when the shared string cannot be had.
    StatusChannel(SharedBlocks &blocks, const Folders &folders);

    /// The text that stood in the string at first.
    const QString &Request() const { return strRequest; }
    /// False once the client has asked to stop, has begun another conversation, or is gone.
    bool IsOpen() const;

    /// Sets the progress value to busy.
    void Begin();
    /// Shows a line to the user; characters in it that mean something to the client are replaced by such that
    /// look the same. Writes only what is new. False when the conversation is over.
    bool Tell(const QString &status);

    // Each ends the conversation: progress value and final text. False when it was over already; the string
    // is left alone then.

    /// `fileName` is the bare name of the fax file in the outbox.
    bool Finish(const QString &text, const QString &fileName);
    /// Without "failed." in it, which a translation may lack, `text` gets that.
    bool Fail(const QString &text);
    /// For a tool that could not work at all.
    bool ReportError();
    /// For a conversation that is over without a final text.
    void Leave();

private:
    bool Write(const QString &text);
    void SetProgress(PrinterStatus status) const;

    const Folders &folders;
    CSharedString shared;
    QString strRequest;
    QString strLast; ///< what the string holds as long as nobody else has written
};
