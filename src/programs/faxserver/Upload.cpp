#include "Upload.h"

#include "FaxFile.h"
#include "ServerError.h"
#include "Store.h"
#include "WireText.h"

#include <QDateTime>
#include <QFileInfo>

#include <algorithm>

namespace {

enum Field { fldContacts, fldTitle, fldFileName, fldPages, fldLevel, fldRemark, fldTime, fldPeople };

const QString strTimeForm = "yyyy-MM-dd HH:mm:ss";

QString Plain(QString text)
{
    return text.replace("~$@~", "'");
}

/// Splits the recipients "Name[id];" and "Name<number>;", which travel in one field.
void SplitPeople(const QString &people, Fax &fax)
{
    for (const QString &item : people.split(';', Qt::SkipEmptyParts)) {
        const qsizetype open = item.lastIndexOf('[');
        if (item.endsWith(']') && open >= 0)
            fax.strUsers += item.mid(open + 1, item.size() - open - 2) + ';';
        else
            fax.strTyped += item + ';';
    }
}

} // namespace

Upload::Upload(Store &store, const Account &sender, const QByteArray &header)
    : objStore(store)
    , accSender(sender)
    , aFields(WireText::FromAnsi(header).split(QChar(0)))
    , strID(Accounts::NewID())
{
    while (aFields.size() <= fldPeople)
        aFields.append(QString());
}

void Upload::Begin(qint32 fileSize)
{
    objFile = std::make_unique<QSaveFile>(objStore.mailboxes.PathOf(strID + ".tif"));
    lMissing = fileSize;
    if (!objFile->open(QIODevice::WriteOnly))
        throw ServerError(QString("The fax cannot be stored: %1.").arg(objFile->errorString()));
}

void Upload::Take(const QByteArray &bytes)
{
    lMissing -= bytes.size();
    if (objFile->write(bytes) != bytes.size())
        throw ServerError(QString("The fax cannot be stored: %1.").arg(objFile->errorString()));
}

QString Upload::Finish(int lineSeconds)
{
    if (!objFile->commit())
        throw ServerError(QString("The fax cannot be stored: %1.").arg(objFile->errorString()));
    const QDateTime now = QDateTime::currentDateTime();
    const QDateTime wanted = QDateTime::fromString(aFields[fldTime], strTimeForm);
    Fax fax;
    fax.strID = strID;
    fax.strOwner = accSender.strID;
    fax.strFile = strID + ".tif";
    fax.lSize = QFileInfo(objStore.mailboxes.PathOf(fax.strFile)).size();
    fax.lPages = FaxFile::CountPages(objStore.mailboxes.PathOf(fax.strFile));
    fax.lKind = fax.lPages > 0 ? kindSending : kindBadFile;
    fax.strSender = accSender.strName;
    fax.strTitle = Plain(aFields[fldTitle]);
    fax.lLevel = std::clamp(aFields[fldLevel].toInt(), 0, 2);
    fax.strRemark = Plain(aFields[fldRemark]);
    fax.strTime = now.toString(strTimeForm);
    fax.strContacts = aFields[fldContacts];
    SplitPeople(Plain(aFields[fldPeople]), fax);
    fax.strEndTime = fax.lPages > 0 ? QString() : fax.strTime;
    fax.strDueTime = std::max(now, wanted).addSecs(lineSeconds).toString(strTimeForm);
    const auto changes = objStore.Change();
    objStore.mailboxes.Insert(fax);
    if (fax.lPages > 0)
        DeliverInside(fax);
    changes->Commit();
    return strID;
}

void Upload::DeliverInside(const Fax &fax)
{
    const qsizetype recipients =
        fax.strContacts.count(';') + fax.strUsers.count(';') + fax.strTyped.count(';');
    for (const Account &account : objStore.accounts.All()) {
        if (!fax.strUsers.split(';').contains(account.strID))
            continue;
        Fax copy = fax;
        copy.strID = Accounts::NewID();
        copy.strOwner = account.strID;
        copy.lKind = kindReceived;
        copy.bWaiting = true;
        copy.strDistribution = fax.strID;
        copy.strReceipts = QString(",0;").repeated(recipients);
        objStore.mailboxes.Insert(copy);
    }
}
