#pragma once

#include "core/clsDBcon.h"

#include <QString>

#include <memory>

/// The process-wide values. Start-up, login and the options write them, everybody reads them.
struct Globals
{
    // Start-up
    QString strAppDataPath;   ///< parent of all user folders, ends in a slash
    QString strIniFile;       ///< the settings file
    QString strFaxFileToOpen; ///< fax file named on the command line; empty for none

    // Login
    std::unique_ptr<clsDBcon> objDB;
    QString strDataBasePath;
    QString strUserName;
    QString strPwdDigest; ///< MD5 of the password, 32 upper-case hexadecimal digits
    QString strServerIP;
    QString strServerPort;
    QString strUserFolder; ///< this and the three below end in a slash
    QString strInputBoxPath;
    QString strOutputBoxPath;
    QString strHeaderPath;
    QString strServerID; ///< identity of the server last used
    QString strUserID;   ///< the user's id at the server

    // One value per column of the table Option
    bool SwitchTo = false;
    bool Connected = false;
    int CheckFax = 0; ///< minutes; below 1 means never
    int MarkFax = 0;  ///< seconds
    bool AutoPrint = false;
    QString PrinterName;
    QString Copies;
    bool AutoLogin = false;
    bool StartUpRun = false;
    int Resolve = 0;
    int Deepness = 0;
    int ContactGroupVersion = 0;
    int ContactVersion = 0;
    int UserListVersion = 0;
    int DepartmentVersion = 0;
    QString Company;
    bool RememberPwd = false;
    int DisconnectTime = 0; ///< minutes; 0 means never
    int ServerResolve = 0;
    int ServerDeepness = 0;
    bool ShowInTaskBar = false;
    bool CloseToTray = false;
    int lServerResendTimes = 0;
    int lServerTryInterval = 0;
    QString SoundPath;
};

/// The one instance.
Globals &Global();
