#include "Upload.h"

#include "FaxFile.h"
#include "OutgoingFaxes.h"
#include "ServerError.h"
#include "ServerTime.h"
#include "Store.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStorageInfo>

Upload::Upload(Store &store, const Account &sender, const QByteArray &header)
    : objStore(store)
    , accSender(sender)
    , objHeader(FaxHeader::Parse(header))
    , strID(Accounts::NewID())
{
}

void Upload::KeepID()
{
    static const QRegularExpression id("^([0-9A-F]{32})\\.tif$", QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = id.match(objHeader.strFileName);
    if (!match.hasMatch() || objStore.mailboxes.Find(match.captured(1)))
        throw ServerError("the name of its file is no new id");
    strID = match.captured(1);
}

void Upload::Begin(qint32 fileSize)
{
    const QString path = objStore.mailboxes.PathOf(strID + ".tif");
    const qint64 room = QStorageInfo(QFileInfo(path).path()).bytesAvailable();
    if (room >= 0 && room < fileSize) // below 0 when nobody can tell
        throw ServerError(QString("there is no room for %1 bytes").arg(fileSize));
    objFile = std::make_unique<QSaveFile>(path);
    lMissing = fileSize;
    if (!objFile->open(QIODevice::WriteOnly))
        throw ServerError(QString("the file cannot be stored, %1").arg(objFile->errorString()));
}

void Upload::Take(const QByteArray &bytes)
{
    lMissing -= bytes.size();
    if (objFile->write(bytes) != bytes.size())
        throw ServerError(QString("the file cannot be stored, %1").arg(objFile->errorString()));
}

QString Upload::Finish(OutgoingFaxes &outgoing)
{
    if (!objFile->commit()) // it is on the disk then, not only in the system's memory
        throw ServerError(QString("the file cannot be stored, %1").arg(objFile->errorString()));
    try {
        outgoing.Accept(MakeFax(), objHeader);
    } catch (const ServerError &) {
        QFile::remove(objFile->fileName());
        throw;
    }
    return strID;
}

Fax Upload::MakeFax() const
{
    Fax fax;
    fax.strID = strID;
    fax.strOwner = accSender.strID;
    fax.strFile = strID + ".tif";
    const QString path = objStore.mailboxes.PathOf(fax.strFile);
    fax.lSize = QFileInfo(path).size();
    fax.lPages = FaxFile::CountPages(path);
    fax.lKind = fax.lPages > 0 ? kindSending : kindBadFile;
    fax.strSender = accSender.strName;
    fax.strTitle = objHeader.strTitle;
    fax.lLevel = objHeader.lLevel;
    fax.strRemark = objHeader.strRemark;
    fax.strTime = ServerTime::Now();
    fax.strEndTime = fax.lPages > 0 ? QString() : fax.strTime;
    const QString original = objHeader.strOriginalSender;
    if (!original.isEmpty() && original != accSender.strID) {
        fax.strSender = objStore.accounts.NameOf(original).value_or(original);
        fax.strResender = accSender.strID;
    }
    return fax;
}

void Upload::RemoveLeftovers(const Store &store)
{
    QDir folder(QFileInfo(store.mailboxes.PathOf("x.tif")).path());
    for (const QString &file : folder.entryList({"*.tif.??????"}, QDir::Files))
        folder.remove(file);
}
