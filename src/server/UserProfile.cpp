#include "server/UserProfile.h"

#include "core/Globals.h"
#include "core/HeaderFiles.h"
#include "core/Message.h"
#include "core/Schema.h"
#include "core/SettingsFile.h"
#include "core/Utilities.h"
#include "core/ports/Ports.h"
#include "server/UserProfileOptions.h"
#include "server/wire/Frames.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <algorithm>

namespace {

constexpr int maxAccounts = 1000;     ///< entries looked at, whatever the file says
constexpr int maxAccountLength = 128; ///< characters
constexpr int maxAccountBytes = 255;  ///< of a folder's name
constexpr int maxSettingLength = 254; ///< characters of a value that the settings file gives back whole

QString ReadSetting(const QString &section, const QString &key)
{
    return ReadIniValue(section, key, Global().strIniFile);
}

/// The highest number of an account. A count that no file can hold is a damaged one: the entries tell then.
int AccountCount()
{
    const int count = ToNumber(ReadSetting("UserList", "TotalCount"));
    if (count <= maxAccounts)
        return std::max(count, 0);
    int last = maxAccounts;
    while (last > 0 && ReadSetting("UserList", QString::number(last)).isEmpty())
        --last;
    return last;
}

bool IsLineBreaking(QChar character)
{
    return character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
           character == QChar::ParagraphSeparator;
}

/// The settings file takes such quotes away.
bool IsQuoted(const QString &text)
{
    return text.length() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
}

bool IsFolderPath(const QString &path)
{
    return QDir::isAbsolutePath(path) && !path.split('/').contains("..") &&
           std::none_of(path.begin(), path.end(), IsLineBreaking);
}

} // namespace

QString LoginEntry::Digest() const
{
    return bPwdIsDigest ? strPassword : Frames::Md5Digest(strPassword);
}

bool UserProfile::IsUsableAccount(const QString &account)
{
    static const QStringList reserved{"general", "userlist"};
    static const QString refused = "/\\[]";
    const auto isRefused = [](QChar character) {
        return refused.contains(character) || IsLineBreaking(character);
    };
    return !account.isEmpty() && account.trimmed() == account && !account.startsWith('.') &&
           !account.endsWith('.') && !account.contains("..") && !IsQuoted(account) &&
           std::none_of(account.begin(), account.end(), isRefused) && !reserved.contains(account.toLower()) &&
           account.length() <= maxAccountLength && account.toUtf8().size() <= maxAccountBytes;
}

bool UserProfile::IsDigest(const QString &text)
{
    const auto isHex = [](QChar c) { return c.unicode() < 128 && isxdigit(c.toLatin1()) != 0; };
    return text.length() == 32 && std::all_of(text.begin(), text.end(), isHex);
}

QStringList UserProfile::KnownAccounts()
{
    QStringList accounts;
    const int count = AccountCount();
    for (int number = 1; number <= count; ++number) {
        const QString account = ReadSetting("UserList", QString::number(number));
        if (!account.trimmed().isEmpty())
            accounts.append(account);
    }
    return accounts;
}

QString UserProfile::UserFolder(const QString &account)
{
    if (!IsUsableAccount(account))
        return {};
    QString folder = ReadSetting(account, "UserFolder").replace('\\', '/');
    if (!IsFolderPath(folder))
        return {};
    if (!folder.endsWith('/'))
        folder += '/';
    return folder;
}

QString UserProfile::FindUserFolder(const QString &account)
{
    const QStringList accounts = KnownAccounts();
    const QString wanted = account.toLower();
    const auto isWanted = [&wanted](const QString &entry) { return entry.toLower() == wanted; };
    const auto entry = std::find_if(accounts.begin(), accounts.end(), isWanted);
    return entry == accounts.end() ? QString() : UserFolder(*entry);
}

QString UserProfile::DatabaseFile(const QString &userFolder)
{
    return userFolder + "Database/MFax_Client.mfd";
}

bool UserProfile::Open(const QString &userFolder)
{
    bProfileOpen = OpenClientDatabase(DatabaseFile(userFolder));
    return bProfileOpen;
}

void UserProfile::Close()
{
    if (Global().objDB)
        Global().objDB->CloseDB();
    bProfileOpen = false;
}

bool UserProfile::Save(const LoginEntry &entry)
{
    Globals &global = Global();
    bSettingsFailed = false;
    global.strUserFolder = FindUserFolder(entry.strAccount);
    if (global.strUserFolder.isEmpty())
        Enter(entry.strAccount);
    if (bProfileOpen && global.strDataBasePath != DatabaseFile(global.strUserFolder))
        Close(); // the account's section and the list of accounts name different folders
    WriteChoices(entry);
    if (!PrepareDatabase(entry.strAccount))
        return false;
    UserProfileOptions::Load();
    if (!LayOutBoxes())
        return false;
    CopyDefaultHeaders();
    global.strUserName = entry.strAccount;
    global.strPwdDigest = entry.Digest();
    UserProfileOptions::StoreLogin(entry);
    global.strServerID = ReadSetting(entry.strAccount, "ServerID");
    WriteSetting("General", "LastUser", entry.strAccount);
    if (bSettingsFailed) // the profile itself is good: the user can work
        ports.message.ShowMessage(QCoreApplication::translate("server", "Failed to save user profiles."),
                                  mbExclamation);
    return true;
}

/// Makes the account's entry in the list of known accounts.
void UserProfile::Enter(const QString &account)
{
    const QString number = QString::number(AccountCount() + 1);
    Global().strUserFolder = Global().strAppDataPath + account + '/';
    WriteSetting("UserList", "TotalCount", number);
    WriteSetting("UserList", number, account);
    WriteSetting(account, "UserFolder", Global().strUserFolder);
}

void UserProfile::WriteChoices(const LoginEntry &entry)
{
    WriteSetting(entry.strAccount, "AutoLogin", entry.bAutoLogin ? "1" : "0");
    WriteSetting(entry.strAccount, "RememberPwd", entry.bRememberPwd ? "1" : "0");
    WriteSetting(entry.strAccount, "UserPwd", entry.bRememberPwd ? entry.Digest() : QString());
}

bool UserProfile::PrepareDatabase(const QString &account)
{
    const QString &folder = Global().strUserFolder;
    // The account's own folder is made even when its profile stands elsewhere; the next line makes that one.
    if (!FolderExists(folder))
        CreatePrivateFolder(Global().strAppDataPath + account);
    CreatePrivateFolder(folder);
    CreateFolder(folder + "Database");
    const QString file = DatabaseFile(folder);
    if (FileExists(file)) {
        if (!bProfileOpen)
            Open(folder); // a file that cannot be used fails the check of its version
        bProfileOpen = CheckDatabaseVersion(ports.message, ports.clock);
    } else {
        if (!MakeDatabase(folder))
            ports.message.ShowMessage(QCoreApplication::translate("server", "Failed to save user profiles."),
                                      mbExclamation);
    }
    if (!bProfileOpen)
        Close();
    Global().strDataBasePath = file;
    return bProfileOpen;
}

/// Under another name first: what a crash or a full disk leaves behind is never taken for a profile.
bool UserProfile::MakeDatabase(const QString &userFolder)
{
    const QString file = DatabaseFile(userFolder);
    const QString unfinished = file + ".new";
    QFile::remove(unfinished);
    const bool isMade = CreateClientDatabase(unfinished);
    Close();
    if (isMade && QFile::rename(unfinished, file))
        return Open(userFolder);
    QFile::remove(unfinished);
    return false;
}

bool UserProfile::LayOutBoxes()
{
    Globals &global = Global();
    global.strInputBoxPath = global.strUserFolder + "InputBox/";
    global.strOutputBoxPath = global.strUserFolder + "OutputBox/";
    global.strHeaderPath = global.strUserFolder + "Header/";
    for (const QString &box : {global.strInputBoxPath, global.strOutputBoxPath, global.strHeaderPath}) {
        if (CreateFolder(box))
            continue;
        Close();
        ports.message.ShowMessage(QCoreApplication::translate("server", "Failed to save user profiles."),
                                  mbExclamation);
        return false;
    }
    return true;
}

/// A copy that fails leaves the file missing, and the next login tries again.
void UserProfile::CopyDefaultHeaders() const
{
    const QString source = AppPath(ports.folders) + "Header/";
    for (const QString &name : StandardHeaderProfiles()) {
        const QString file = HeaderProfileFileName(name), target = Global().strHeaderPath + file;
        if (FileExists(source + file) && FindHeaderFile(Global().strHeaderPath, file).isEmpty() &&
            QFile::copy(source + file, target))
            QFile::setPermissions(target, QFile::permissions(target) | QFile::WriteOwner); // to be edited
    }
}

void UserProfile::WriteSetting(const QString &section, const QString &key, const QString &value)
{
    if (value.length() > maxSettingLength || !WriteIniValue(section, key, value, Global().strIniFile))
        bSettingsFailed = true;
}
