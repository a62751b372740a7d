#include "Documents.h"
#include "core/FaxImage.h"
#include "core/Globals.h"
#include "core/Message.h"
#include "core/RaisedError.h"
#include "core/Schema.h"
#include "core/SettingsFile.h"
#include "core/Utilities.h"
#include "platform/SystemPorts.h"
#include "server/UserProfile.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QTextStream>

#include <cstdio>

// Serves the demonstration: makes a profile that logs in by itself and documents to fax, and tells what a
// profile holds.

namespace {

void SetPaths(const Ports &ports)
{
    Global().strAppDataPath = GetSpecialFolder(ports.folders, 35) + QStringLiteral("Velmar/");
    Global().strIniFile = Global().strAppDataPath + QStringLiteral("FaxSetup.ini");
}

/// A profile as a first login with both boxes checked leaves it, that opens on the incoming faxes.
bool Prepare(const Ports &ports, const QString &server, const QString &account, const QString &password)
{
    LoginEntry entry;
    entry.strAccount = account;
    entry.strPassword = password;
    entry.bRememberPwd = true;
    entry.bAutoLogin = true;
    UserProfile profile(ports);
    if (!CreatePrivateFolder(Global().strAppDataPath) || !profile.Save(entry))
        return false;
    Global().objDB->Execute(QStringLiteral("Update Option Set SwitchTo=1"));
    return WriteIniValue(QStringLiteral("General"), QStringLiteral("ServerIP"), server, Global().strIniFile);
}

/// One line a fax of `statement`, whose columns are the id, the file's name in `box` and two texts: id, pages
/// of the file, size, the texts. False when a file cannot be read.
bool List(const QString &statement, const QString &box)
{
    QTextStream out(stdout);
    const auto faxes = Global().objDB->SelectEx(statement);
    bool allReadable = true;
    while (faxes->Next()) {
        const QString path = box + faxes->Text(1);
        const int pages = FaxImage::GetPageCount(path);
        allReadable = allReadable && pages > 0;
        out << faxes->Text(0) << '\t' << pages << (pages == 1 ? " page\t" : " pages\t")
            << FormatFileSize(QFileInfo(path).size()) << '\t' << UnescapeText(faxes->Text(2)) << '\t'
            << UnescapeText(faxes->Text(3)) << '\n';
    }
    return allReadable;
}

/// The received faxes, then the written ones with their recipients and results.
bool Report(const QString &account)
{
    const QString folder = UserProfile::FindUserFolder(account);
    if (folder.isEmpty() || !OpenClientDatabase(UserProfile::DatabaseFile(folder)))
        return false;
    return List(QStringLiteral("Select Fax_ID,fileName,sender,title From ReceiveFax Order By receiveTime"),
                folder + QStringLiteral("InputBox/")) &&
           List(QStringLiteral("Select Fax_ID,FileName,ReceiverName,Result From SendFax Order By ModifyTime"),
                folder + QStringLiteral("OutputBox/"));
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen"); // it has no windows
    QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addPositionalArgument(QStringLiteral("action"), QStringLiteral("prepare, documents or report"));
    parser.addOptions(
        {{QStringLiteral("server"), QStringLiteral("Address of the server."), QStringLiteral("host:port")},
         {QStringLiteral("account"), QStringLiteral("The account."), QStringLiteral("name")},
         {QStringLiteral("password"), QStringLiteral("Its password."), QStringLiteral("text")},
         {QStringLiteral("folder"), QStringLiteral("Where documents are written."), QStringLiteral("path")}});
    parser.addHelpOption();
    parser.process(application);

    const QString action = parser.positionalArguments().value(0);
    const QString account = parser.value(QStringLiteral("account"));
    SystemPorts system;
    SetPaths(system.Get());
    bool done = false;
    try {
        if (action == QLatin1String("prepare"))
            done = Prepare(system.Get(), parser.value(QStringLiteral("server")), account,
                           parser.value(QStringLiteral("password")));
        else if (action == QLatin1String("documents"))
            done = WriteDocuments(parser.value(QStringLiteral("folder")));
        else if (action == QLatin1String("report"))
            done = Report(account);
        else
            parser.showHelp(2);
    } catch (const RaisedError &error) {
        std::fputs(error.what(), stderr);
    }
    return done ? 0 : 1;
}
