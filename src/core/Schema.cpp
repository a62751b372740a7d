#include "core/Schema.h"

#include "core/Globals.h"
#include "core/RaisedError.h"
#include "core/Utilities.h"

namespace {

// The names, with their misspellings and the columns without a type, are the format of the file.
constexpr const char *aTableStatements[] = {
    "CREATE TABLE ContactGroup (Group_ID TEXT, Group_name TEXT, group_detail TEXT,isPublic BOOL)",
    "CREATE TABLE Contacts (ID TEXT, Name TEXT, Company TEXT, Department TEXT, Duty TEXT, Fax TEXT, "
    "Mail TEXT, Mobile TEXT, Phone TEXT, Im TEXT, Folder_ID TEXT, isPublic BOOL,Group_ID)",
    "CREATE TABLE ReceiveFax (Fax_ID TEXT,FirstReader TEXT,ReturnReceipts TEXT,IsSendedReceipt BLOB,"
    "fileName TEXT, pages TEXT, receiveTime TEXT, sender TEXT, title TEXT, faxLevel TEXT, Remark "
    "TEXT, receiveUser TEXT, reSender TEXT, folderID TEXT, isReaded BOOL,RecyleID TEXT,sRecReserve1 "
    "TEXT,sRecReserve2 TEXT,sRecReserve3)",
    "CREATE TABLE SendFax (ReturnReceipts TEXT,fax_ID TEXT, remark TEXT, retryInterval TEXT, "
    "isDontRetry BOOL, faxLevel TEXT,  fileName TEXT,  fileList TEXT, pages TEXT, innerReceiver "
    "TEXT, outerReceiver TEXT, ReceiverName TEXT,resendTimes TEXT,busyResend Text,state Text,result "
    "Text ,title Text,user_ID Text,SendTime TEXT,endTime TEXT,isTransmit BOOL, isImmediately BOOL,"
    "resolution TEXT,ModifyTime TEXT,Header TEXT,folderID TEXT,RecyleID TEXT,isReaded TEXT,"
    "timingSend TEXT,Deepness Text,TempReceiver Text,originalSender Text,ResultDetailed Text,"
    "sSndReserve1 TEXT ,sSndReserve2 TEXT,sSndReserve3)",
    "CREATE TABLE Option (SwitchTo BOOL, Connected BOOL, CheckFax TEXT, MarkFax TEXT, AutoPrint BOOL,"
    "PrinterName TEXT,Copies TEXT,AutoLogin BOOL ,Pwd,StartUpRun BOOL,Resolve TEXT,Deepness TEXT ,"
    "ContactGroupVersion TEXT,ContactVersion TEXT,UserListVersion TEXT ,DepartmentVersion TEXT,"
    "Company Text,RememberPwd BOOL,DisconnectTime Text,ServerResolve Text ,ServerDeepness Text, "
    "ShowInTaskBar BOOL,CloseToTray BOOL,lServerResendTimes NUMERIC,lServerTryInterval NUMERIC,"
    "SoundPath Text )",
    "CREATE TABLE  FaxFolder(Folder_ID TEXT, Folder_Name TEXT, Folder_Type NUMERIC, parentID TEXT, "
    "isSystem BOOL)",
    "CREATE TABLE  UserList(ID TEXT, LoginName TEXT, UserName TEXT, Department TEXT)",
    "CREATE TABLE  UserDepartment(ID TEXT, Department TEXT, Describle TEXT)",
    "Create Table DatabaseVersion(Version Text)",
    "CREATE TABLE ReceiptQueue(Fax_ID TEXT,FaxType NUMERIC)",
    "CREATE UNIQUE INDEX cIndex ON ContactGroup(Group_ID ASC)",
    "CREATE UNIQUE INDEX fIndex ON Contacts(ID ASC)",
    "CREATE UNIQUE INDEX tIndex ON receiveFax(Fax_ID ASC)",
};

struct FolderRow
{
    const char *strID;
    const char *strLiteral; ///< what stands behind the id
};

constexpr FolderRow aFolderRows[] = {
    {"1000", "','My Faxes' ,'0','0','1')"},  {"1001", "','Incoming','1','0','1')"},
    {"1002", "','Draft ','2','0','1')"},     {"1003", "','Outgoing','3','0','1')"},
    {"1004", "','Sent','4','0','1')"},       {"1005", "','Sending','5','1004','1')"},
    {"1006", "','Sent','6','1004','1')"},    {"1007", "','Undelivered','6','1004','1')"},
    {"1008", "','Recyle Bin','7','0','1')"},
};

QString PathInProgramFolder(const QString &programFolder)
{
    const QString separator = programFolder.endsWith('/') ? "" : "/";
    return programFolder + separator + "Database/MFax_Client.mfd";
}

bool HasClientTable()
{
    const auto tables = Global().objDB->SelectEx(
        "SELECT name, sql FROM sqlite_master WHERE  type='table' and name in('Contacts','ContactGroup',"
        "'FaxFolder','SendFax') ORDER BY name");
    return tables->Next();
}

/// One transaction: each statement by itself would wait for the disk.
void MakeTables(clsDBcon &database)
{
    database.Begin();
    for (const char *statement : aTableStatements)
        database.Execute(statement);
    const QString insert =
        "INSERT INTO FaxFolder(Folder_ID,Folder_Name,Folder_Type,parentID,isSystem) VALUES('";
    for (const FolderRow &folder : aFolderRows)
        database.Execute(insert + folder.strID + folder.strLiteral);
    database.Execute("Insert Into DatabaseVersion Values('2.8')");
    database.Commit();
}

} // namespace

bool OpenClientDatabase(const QString &path, const QString &programFolder)
{
    Globals &global = Global();
    global.objDB = std::make_unique<clsDBcon>();
    global.strDataBasePath = path.isEmpty() ? PathInProgramFolder(programFolder) : path;
    if (!FileExists(global.strDataBasePath))
        return false;
    try {
        return global.objDB->OpenDB(global.strDataBasePath) == 0 && HasClientTable();
    } catch (const RaisedError &) {
        return false; // the caller tells the user that the profile could not be loaded
    }
}

bool CreateClientDatabase(const QString &path)
{
    Globals &global = Global();
    global.objDB = std::make_unique<clsDBcon>();
    try {
        global.objDB->OpenDB(path);
        MakeTables(*global.objDB);
    } catch (const RaisedError &) {
        return false; // the caller tells the user that the profile could not be saved
    }
    global.strDataBasePath = path;
    return true;
}

bool GetDatabaseVersion(QString &version)
{
    try {
        const auto row = Global().objDB->SelectEx("SELECT Version FROM DataBaseVersion");
        if (!row->Next())
            return false;
        version = row->Text("Version");
        return true;
    } catch (const RaisedError &) {
        return false; // the caller tells the user that there is no version
    }
}
