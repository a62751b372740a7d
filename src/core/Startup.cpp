#include "core/Startup.h"

#include "core/CSharedString.h"
#include "core/Globals.h"
#include "core/Message.h"
#include "core/OutsideFile.h"
#include "core/ProgramTitle.h"
#include "core/Utilities.h"
#include "core/ports/Instance.h"
#include "core/ports/Ports.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {
constexpr int commonAppData = 35;
constexpr long folderOwner = 100;

/// Cuts the double quotes. A command line without them loses its first and last letter: callers quote.
QString PathOf(const QString &commandLine)
{
    return commandLine.mid(1, qMax<qsizetype>(0, commandLine.size() - 2));
}

/// False when the file is missing. A file is offered to another copy only after it was found, and by its full
/// path: the other copy stands in another folder.
bool TakeFile(const QString &path, CSharedString &outsideFile, Message &message)
{
    if (!FileExists(path)) {
        message.ShowMessage(QCoreApplication::translate("core", "The Fax file does not exist."),
                            mbExclamation);
        return false;
    }
    outsideFile.SetItem(QFileInfo(path).absoluteFilePath());
    Global().strFaxFileToOpen = outsideFile.Item();
    return true;
}

void SetPaths(const Folders &folders)
{
    Global().strAppDataPath =
        GetSpecialFolder(folders, commonAppData, folderOwner) + QStringLiteral("Velmar/");
    Global().strIniFile = Global().strAppDataPath + QStringLiteral("FaxSetup.ini");
}
} // namespace

QString Startup::CommandLine(const QStringList &arguments)
{
    if (arguments.size() == 1 && FileExists(arguments.first()))
        return u'"' + arguments.first() + u'"';
    return arguments.join(u' ');
}

bool Startup::CheckPreviousInstance(Instance &instance)
{
    return !instance.TakeLock(QString::fromLatin1(programTitle));
}

Startup::Result Startup::Run(Ports &ports, const QString &commandLine)
{
    CSharedString processHandle;
    CSharedString outsideFile;
    processHandle.Create(ports.blocks, OutsideFile::processHandleName);
    outsideFile.Create(ports.blocks, OutsideFile::outsideFileName);

    if (!commandLine.isEmpty() && !TakeFile(PathOf(commandLine), outsideFile, ports.message))
        return Result::EndWithMessage;
    if (CheckPreviousInstance(ports.instance)) {
        ports.instance.RaiseWindow(processHandle.Item().toLongLong());
        return Result::HandedOver;
    }
    SetPaths(ports.folders);
    return Result::ShowLogin;
}
