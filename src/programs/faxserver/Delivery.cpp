#include "Delivery.h"

#include "FaxFile.h"
#include "ServerError.h"
#include "ServerTime.h"
#include "Store.h"

#include <QFile>
#include <QFileInfo>

namespace {

QList<Account> AccountsOf(const Store &store, const QStringList &logins)
{
    QList<Account> owners;
    for (const QString &login : logins) {
        const std::optional<Account> owner = store.accounts.Find(login);
        if (!owner)
            throw ServerError(QString("There is no user %1.").arg(login));
        owners.append(*owner);
    }
    return owners;
}

Fax FaxOf(const QString &file, const QList<Account> &owners)
{
    const QFileInfo info(file);
    if (!info.isFile() || !info.isReadable())
        throw ServerError(QString("The file %1 cannot be read.").arg(file));
    Fax fax;
    fax.lPages = FaxFile::CountPages(file);
    if (fax.lPages == 0)
        throw ServerError(QString("The file %1 is no TIFF.").arg(file));
    fax.bWaiting = true;
    fax.lSize = info.size();
    fax.strSender = "+44 20 7946 0018";
    fax.strTitle = info.completeBaseName();
    fax.strTime = ServerTime::Now();
    for (const Account &owner : owners) {
        fax.strUsers += owner.strID + ';';
        fax.strReceipts += ",0;";
    }
    return fax;
}

void InsertForEach(Mailboxes &mailboxes, Fax fax, const QList<Account> &owners)
{
    fax.strDistribution = Accounts::NewID();
    for (const Account &owner : owners) {
        fax.strID = Accounts::NewID();
        fax.strOwner = owner.strID;
        mailboxes.Insert(fax);
    }
}

} // namespace

void Delivery::Deliver(Store &store, const QStringList &logins, const QStringList &files, int copies)
{
    const QList<Account> owners = AccountsOf(store, logins);
    QList<Fax> faxes;
    for (const QString &file : files)
        faxes.append(FaxOf(file, owners));
    for (qsizetype i = 0; i < faxes.size(); ++i) {
        faxes[i].strFile = Accounts::NewID() + ".tif";
        if (!QFile::copy(files[i], store.mailboxes.PathOf(faxes[i].strFile)))
            throw ServerError(QString("The file %1 cannot be copied into the mailbox.").arg(files[i]));
    }
    const auto changes = store.Change();
    for (const Fax &fax : faxes) {
        for (int i = 0; i < copies; ++i)
            InsertForEach(store.mailboxes, fax, owners);
    }
    changes->Commit();
}
