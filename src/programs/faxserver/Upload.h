#pragma once

#include "Accounts.h"

#include <QSaveFile>
#include <QString>

#include <memory>

class Store;

/// One fax on its way in: first its header, then its file, which may take many reads.
class Upload
{
public:
    /// `header` has the fields as the client sends them, a NUL between them.
    Upload(Store &store, const Account &sender, const QByteArray &header);

    /// The file begins. Raises `ServerError` when it cannot be stored.
    void Begin(qint32 fileSize);
    bool HasBegun() const { return objFile != nullptr; }
    qint64 Missing() const { return lMissing; }
    void Take(const QByteArray &bytes);
    /// Stores the fax, hands copies to the accounts among its recipients, and returns its new id.
    /// `lineSeconds` is the time that the simulated line takes.
    QString Finish(int lineSeconds);

private:
    void DeliverInside(const struct Fax &fax);

    Store &objStore;
    Account accSender;
    QStringList aFields;
    QString strID;
    std::unique_ptr<QSaveFile> objFile;
    qint64 lMissing = 0;
};
