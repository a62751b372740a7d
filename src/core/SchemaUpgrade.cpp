#include "core/Globals.h"
#include "core/Message.h"
#include "core/RaisedError.h"
#include "core/Schema.h"
#include "core/Utilities.h"
#include "core/ports/Clock.h"

#include <QCoreApplication>
#include <QFile>

#include <span>

namespace {

constexpr const char *strRequiredVersion = "2.8";

constexpr const char *aStepsFromV10[] = {
    "ALTER TABLE ReceiveFax ADD ReturnReceipts TEXT",
    "ALTER TABLE ReceiveFax ADD IsSendedReceipt BLOB",
    "ALTER TABLE ReceiveFax ADD FirstReader TEXT",
    "ALTER TABLE ReceiveFax ADD sRecReserve1 TEXT",
    "ALTER TABLE ReceiveFax ADD sRecReserve2 TEXT",
    "ALTER TABLE ReceiveFax ADD sRecReserve3",
    "ALTER TABLE SendFax ADD ReturnReceipts TEXT",
    "ALTER TABLE SendFax ADD sSndReserve1 TEXT",
    "ALTER TABLE SendFax ADD sSndReserve2 TEXT",
    "ALTER TABLE SendFax ADD sSndReserve3",
    "CREATE TABLE ReceiptQueue(Fax_ID TEXT,FaxType NUMERIC)",
    "UPDATE DataBaseVersion Set Version='2.8'",
};

constexpr const char *aStepsFromV25[] = {
    "ALTER TABLE ReceiveFax ADD FirstReader TEXT",  "ALTER TABLE ReceiveFax ADD sRecReserve1 TEXT",
    "ALTER TABLE ReceiveFax ADD sRecReserve2 TEXT", "ALTER TABLE ReceiveFax ADD sRecReserve3",
    "ALTER TABLE SendFax ADD sSndReserve1 TEXT",    "ALTER TABLE SendFax ADD sSndReserve2 TEXT",
    "ALTER TABLE SendFax ADD sSndReserve3",         "UPDATE DataBaseVersion Set Version='2.8'",
};

/// Free name in the folder, such as "MFax_Client.mfd  V2.5  20240131 Bk1.bak".
QString GetBackupPath(const QString &folder, const QString &version, const QDate &today)
{
    const QString start =
        folder + "MFax_Client.mfd " + " V" + version + "  " + today.toString("yyyyMMdd") + " Bk";
    int number = 1;
    while (QFile::exists(start + QString::number(number) + ".bak"))
        ++number;
    return start + QString::number(number) + ".bak";
}

/// The backup gets its name when it is complete, so that none is ever found half written.
bool BackUpDatabase(const QString &backup)
{
    const QString unfinished = backup + ".tmp";
    Global().objDB->CopyTo(unfinished);
    if (QFile::rename(unfinished, backup))
        return true;
    QFile::remove(unfinished);
    return false;
}

/// A failing step leaves the transaction open. The login closes the database then, which drops what was done.
void RunSteps(std::span<const char *const> steps)
{
    clsDBcon &database = *Global().objDB;
    database.Begin();
    for (const char *step : steps)
        database.Execute(step);
    database.Commit();
}

bool RunUpgrade(const QString &fromVersion, Message &message)
{
    if (fromVersion == "1.0") {
        RunSteps(aStepsFromV10);
        message.ShowMessage(
            QCoreApplication::translate("core", "Upgrade database version 1.0 to 2.8 succefully!"),
            mbInformation);
        return true;
    }
    if (fromVersion == "2.5") {
        RunSteps(aStepsFromV25);
        message.ShowMessage(QCoreApplication::translate("core", "Upgrade 2.5 to 2.8 succefully!"),
                            mbInformation);
        return true;
    }
    return false;
}

bool ConfirmUpgrade(const QString &version, Message &message)
{
    const QString question = QCoreApplication::translate(
        "core", "The Velmar Client will upgrade your database from version %1 to %2 automatically.\n"
                "Please confirm, or press Cancel to exit.");
    return message.ShowMessage(question.arg(version, strRequiredVersion), mbYesNo + mbQuestion) ==
           mbAnswerYes;
}

bool OfferUpgrade(const QString &version, Message &message, const Clock &clock)
{
    if (!ConfirmUpgrade(version, message))
        return false;
    if (UpgradeDatabase(version, message, clock))
        return true;
    message.ShowMessage(QCoreApplication::translate("core", "Upgrade version %1 Failed.").arg(version),
                        mbExclamation);
    return false;
}

bool MatchesSchema(const QString &version)
{
    if (version == "1.0")
        return CheckDatabaseV10();
    return version == "2.5" ? CheckDatabaseV25() : CheckDatabaseV28();
}

bool IsKnownVersion(const QString &version)
{
    return version == "1.0" || version == "2.5" || version == strRequiredVersion;
}

} // namespace

bool UpgradeDatabase(const QString &fromVersion, Message &message, const Clock &clock)
{
    try {
        const QString folder = GetFolderOfPath(Global().objDB->DataBasePath());
        return FolderExists(folder) &&
               BackUpDatabase(GetBackupPath(folder, fromVersion, clock.Now().date())) &&
               RunUpgrade(fromVersion, message);
    } catch (const RaisedError &) {
        return false; // the caller tells the user that the upgrade failed
    }
}

bool CheckDatabaseVersion(Message &message, const Clock &clock)
{
    QString version;
    if (!GetDatabaseVersion(version)) {
        message.ShowMessage(
            QCoreApplication::translate("core", "Invalid or incompatible user profile(Can not get Version)."),
            mbCritical);
        return false;
    }
    if (!IsKnownVersion(version)) {
        const QString text =
            QCoreApplication::translate("core", "Unsupported database version: %1 , need version: %2");
        message.ShowMessage(text.arg(version, strRequiredVersion), mbCritical);
        return false;
    }
    if (!MatchesSchema(version)) {
        message.ShowMessage(QCoreApplication::translate("core", "Invalid or incompatible user profile."));
        return false;
    }
    return version == strRequiredVersion || OfferUpgrade(version, message, clock);
}
