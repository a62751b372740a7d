#pragma once

#include "Accounts.h"
#include "FaxHeader.h"

#include <QSaveFile>
#include <QString>

#include <memory>

struct Fax;
class OutgoingFaxes;
class Store;

/// One fax on its way in: first its header, then its file, which may take many reads. Nothing is left of one
/// that does not arrive whole. Routines raise `ServerError`.
class Upload
{
public:
    /// Takes the header; see `FaxHeader`.
    Upload(Store &store, const Account &sender, const QByteArray &header);

    /// The fax is to have the id that the name of its file tells. For before the file begins.
    void KeepID();
    /// The file begins.
    void Begin(qint32 fileSize);
    bool HasBegun() const { return objFile != nullptr; }
    qint64 Missing() const { return lMissing; }
    void Take(const QByteArray &bytes);
    /// Hands the fax over, with its file whole on the disk, and returns its id.
    QString Finish(OutgoingFaxes &outgoing);

    /// Removes what a server that was killed left of uploads.
    static void RemoveLeftovers(const Store &store);

private:
    Fax MakeFax() const;

    Store &objStore;
    Account accSender;
    FaxHeader objHeader;
    QString strID;
    std::unique_ptr<QSaveFile> objFile;
    qint64 lMissing = 0;
};
