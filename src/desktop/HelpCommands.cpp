#include "desktop/HelpCommands.h"

#include "core/Message.h"
#include "core/ProgramTitle.h"
#include "core/Utilities.h"
#include "core/ports/Ports.h"

#include <QCoreApplication>
#include <QUrl>

namespace {

constexpr QLatin1StringView strHelpFile("VelmarServer.CHM");
constexpr QLatin1StringView strWebsite("https://www.velmar.example/");
constexpr QLatin1StringView strSupport("support@velmar.example");
constexpr int lShowNormal = 1;

QString Tr(const char *text)
{
    return QCoreApplication::translate("HelpCommands", text);
}

QString Encoded(const QString &text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

} // namespace

bool HelpCommands::Open(const QString &target) const
{
    return ShellOpen(ports.shell, target, "Open", {}, AppPath(ports.folders), lShowNormal);
}

void HelpCommands::mnuShowHelp()
{
    const QString file = AppPath(ports.folders) + strHelpFile;
    if (!FileExists(file))
        ports.message.ShowMessage(Tr("The help is not installed: there is no file\n%1").arg(file),
                                  mbInformation);
    else if (!Open(file))
        ports.message.ShowMessage(Tr("No program opens the help. It is the file\n%1").arg(file),
                                  mbExclamation);
}

void HelpCommands::mnuHelp_Website()
{
    if (!Open(strWebsite))
        ports.message.ShowMessage(Tr("No program opens web pages. The address is\n%1").arg(strWebsite),
                                  mbExclamation);
}

void HelpCommands::mnuSupport()
{
    const QString body = QString(programTitle) + " " + strVersion + "\r\n\r\n";
    if (!Open("mailto:" + strSupport + "?subject=" + Encoded(programTitle) + "&body=" + Encoded(body)))
        ports.message.ShowMessage(Tr("No program writes mails. The address is\n%1").arg(strSupport),
                                  mbExclamation);
}
