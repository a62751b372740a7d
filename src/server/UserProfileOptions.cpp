#include "server/UserProfileOptions.h"

#include "core/Globals.h"
#include "core/Utilities.h"
#include "server/UserProfile.h"

namespace {

bool ReadBool(const clsStatement &row, const QString &column)
{
    return ReadsAsTrue(row.Text(column));
}

int ReadNumber(const clsStatement &row, const QString &column)
{
    return ToNumber(row.Text(column));
}

void LoadDefaults()
{
    Globals &global = Global();
    global.SwitchTo = global.Connected = global.AutoPrint = global.AutoLogin = global.StartUpRun = false;
    global.RememberPwd = global.CloseToTray = false;
    global.ShowInTaskBar = true;
    global.CheckFax = 1;
    global.MarkFax = 0;
    global.PrinterName.clear();
    global.Copies = "1";
    global.Resolve = 1;
    global.Deepness = 200;
    global.ContactVersion = global.ContactGroupVersion = 0;
    global.UserListVersion = global.DepartmentVersion = 0;
    global.Company.clear();
    global.DisconnectTime = global.ServerResolve = 0;
    global.ServerDeepness = 150;
    global.lServerResendTimes = global.lServerTryInterval = 0;
    global.SoundPath.clear();
}

void LoadUserColumns(const clsStatement &row)
{
    Globals &global = Global();
    global.SwitchTo = ReadBool(row, "SwitchTo");
    global.Connected = ReadBool(row, "Connected");
    global.CheckFax = ReadNumber(row, "CheckFax");
    global.MarkFax = ReadNumber(row, "MarkFax");
    global.AutoPrint = ReadBool(row, "AutoPrint");
    global.PrinterName = row.Text("PrinterName");
    global.Copies = row.Text("Copies");
    global.AutoLogin = ReadBool(row, "AutoLogin");
    global.StartUpRun = ReadBool(row, "StartUpRun");
    global.Resolve = ReadNumber(row, "Resolve");
    global.Deepness = ReadNumber(row, "Deepness");
    global.RememberPwd = ReadBool(row, "RememberPwd");
    global.DisconnectTime = ReadNumber(row, "DisconnectTime");
    global.ShowInTaskBar = ReadBool(row, "ShowInTaskBar");
    global.CloseToTray = ReadBool(row, "CloseToTray");
    global.SoundPath = row.Text("SoundPath");
}

void LoadServerColumns(const clsStatement &row)
{
    Globals &global = Global();
    global.ContactVersion = ReadNumber(row, "ContactVersion");
    global.ContactGroupVersion = ReadNumber(row, "ContactGroupVersion");
    global.UserListVersion = ReadNumber(row, "UserListVersion");
    global.DepartmentVersion = ReadNumber(row, "DepartmentVersion");
    global.Company = UnescapeText(row.Text("Company"));
    global.ServerResolve = ReadNumber(row, "ServerResolve");
    global.ServerDeepness = ReadNumber(row, "ServerDeepness");
    global.lServerResendTimes = ReadNumber(row, "lServerResendTimes");
    global.lServerTryInterval = ReadNumber(row, "lServerTryInterval");
}

bool HasRow()
{
    return Global().objDB->SelectEx("Select * from Option")->Next();
}

void Execute(const QString &sql)
{
    Global().objDB->Execute(sql);
}

/// A new row with one of the two check boxes set.
void InsertWith(const QString &checkColumn, const QString &digest)
{
    Execute(QString("Insert Into Option(%1,Pwd,MarkFax,Resolve,Deepness,ContactGroupVersion,ContactVersion,"
                    "UserListVersion,DepartmentVersion,Connected)  Values(1,'%2',5,0,-1,-1,-1,-1,-1,1)")
                .arg(checkColumn, digest));
}

void StoreAutoLogin(const LoginEntry &entry, bool hasRow)
{
    if (!entry.bAutoLogin)
        Execute("Update Option Set AutoLogin=0");
    else if (!hasRow)
        InsertWith("AutoLogin", entry.Digest());
    else if (entry.bPwdIsDigest)
        Execute("Update Option Set AutoLogin=1");
    else
        Execute(QString("Update Option Set AutoLogin=1, pwd='%1'").arg(entry.Digest()));
}

void StoreRememberPwd(const LoginEntry &entry, bool hasRow)
{
    if (!entry.bRememberPwd)
        Execute("Update Option Set RememberPwd=0");
    else if (!hasRow)
        InsertWith("RememberPwd", entry.Digest());
    else if (!entry.bPwdIsDigest)
        Execute(QString("Update Option Set RememberPwd=1, pwd='%1'").arg(entry.Digest()));
}

} // namespace

std::optional<StoredLogin> UserProfileOptions::ReadLogin()
{
    const std::unique_ptr<clsStatement> row =
        Global().objDB->SelectEx("Select AutoLogin,pwd,RememberPwd From Option");
    if (!row->Next())
        return {};
    return StoredLogin{ReadBool(*row, "AutoLogin"), ReadBool(*row, "RememberPwd"), row->Text("pwd")};
}

std::optional<QString> UserProfileOptions::ReadPwd()
{
    const std::unique_ptr<clsStatement> row = Global().objDB->SelectEx("Select Pwd From Option");
    return row->Next() ? std::optional(row->Text("Pwd")) : std::nullopt;
}

void UserProfileOptions::Load()
{
    const std::unique_ptr<clsStatement> row = Global().objDB->SelectEx(
        "Select "
        "SwitchTo,Connected,CheckFax,MarkFax,AutoPrint,PrinterName,Copies,AutoLogin,StartUpRun,Resolve,"
        "Deepness,ContactVersion,ContactGroupVersion,UserListVersion,DepartmentVersion,Company,RememberPwd,"
        "DisconnectTime,ServerResolve,ServerDeepness,ShowInTaskBar,CloseToTray,lServerResendTimes,"
        "lServerTryInterval,SoundPath From Option");
    if (!row->Next()) {
        LoadDefaults();
        return;
    }
    LoadUserColumns(*row);
    LoadServerColumns(*row);
}

void UserProfileOptions::StoreLogin(const LoginEntry &entry)
{
    // Looked at once, in front of both inserts: a first login with both boxes makes two rows. Readers take
    // the first, updates reach both.
    const bool hasRow = HasRow();
    StoreAutoLogin(entry, hasRow);
    StoreRememberPwd(entry, hasRow);
    if (!hasRow && !entry.bAutoLogin && !entry.bRememberPwd)
        Execute(
            "Insert Into Option(MarkFax,Resolve,Deepness,ContactGroupVersion,ContactVersion,UserListVersion,"
            "DepartmentVersion,Connected) Values(5,0,-1,-1,-1,-1,-1,1)");
}
