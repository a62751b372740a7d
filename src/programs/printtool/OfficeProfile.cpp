#include "OfficeProfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamWriter>

namespace {

constexpr QLatin1StringView registry("http://openoffice.org/2001/registry");

struct Setting
{
    const char *strNode; ///< below "org.openoffice."
    const char *strName;
    const char *strValue;
};

constexpr Setting settings[] = {
    // No macros, no links
    {"Office.Common/Security/Scripting", "MacroSecurityLevel", "3"},
    {"Office.Common/Security/Scripting", "DisableMacrosExecution", "true"},
    {"Office.Common/Security/Scripting", "BlockUntrustedRefererLinks", "true"},
    {"Office.Writer/Content/Update", "Link", "0"},
    {"Office.Calc/Content/Update", "Link", "1"},
    {"Office.Java/VirtualMachine", "Enable", "false"},
    // Proxies that lead nowhere: the port "discard" of this machine
    {"Inet/Settings", "ooInetProxyType", "2"},
    {"Inet/Settings", "ooInetHTTPProxyName", "127.0.0.1"},
    {"Inet/Settings", "ooInetHTTPProxyPort", "9"},
    {"Inet/Settings", "ooInetHTTPSProxyName", "127.0.0.1"},
    {"Inet/Settings", "ooInetHTTPSProxyPort", "9"},
    {"Inet/Settings", "ooInetFTPProxyName", "127.0.0.1"},
    {"Inet/Settings", "ooInetFTPProxyPort", "9"},
    // Nothing for later
    {"Office.Recovery/AutoSave", "Enabled", "false"},
    {"Office.Recovery/RecoveryInfo", "Enabled", "false"},
    {"Office.Common/History", "PickListSize", "0"},
    {"Office.Common/Misc", "FirstRun", "false"},
    {"Office.Common/Misc", "CrashReport", "false"},
    // A PDF file for paper: what a reader could click or search by only takes time
    {"Office.Common/Filter/PDF/Export", "UseTaggedPDF", "false"},
    {"Office.Common/Filter/PDF/Export", "ExportBookmarks", "false"},
    {"Office.Common/Filter/PDF/Export", "ExportFormFields", "false"},
    // HTML as a text of pages: as a web page, which is the usual way, it loses its beginning
    {"TypeDetection.Filter/Filters/org.openoffice.TypeDetection.Filter:Filter['HTML']", "DocumentService",
     "com.sun.star.text.TextDocument"},
};

void WriteSetting(QXmlStreamWriter &xml, const Setting &setting)
{
    xml.writeStartElement(QStringLiteral("item"));
    xml.writeAttribute(registry, QStringLiteral("path"),
                       QLatin1String("/org.openoffice.") + QLatin1String(setting.strNode));
    xml.writeStartElement(QStringLiteral("prop"));
    xml.writeAttribute(registry, QStringLiteral("name"), QLatin1String(setting.strName));
    xml.writeAttribute(registry, QStringLiteral("op"), QStringLiteral("fuse"));
    xml.writeTextElement(QStringLiteral("value"), QLatin1String(setting.strValue));
    xml.writeEndElement();
    xml.writeEndElement();
}

QByteArray BuildOf(const QString &program)
{
    constexpr QByteArrayView key("buildid=");
    QFile versions(QFileInfo(program).canonicalPath() + QLatin1String("/versionrc"));
    if (!versions.open(QIODevice::ReadOnly))
        return {};
    while (!versions.atEnd()) {
        const QByteArray line = versions.readLine().trimmed();
        if (line.startsWith(key))
            return line.mid(key.size());
    }
    return {};
}

/// A program that finds the profile to be another one's starts anew, which takes a tenth of its time. Nothing
/// is lost when it does.
void NameBuild(const QDir &user, const QString &program)
{
    QFile file(user.filePath(QStringLiteral("extensions/buildid")));
    const QByteArray build = BuildOf(program);
    if (!build.isEmpty() && user.mkpath(QStringLiteral("extensions")) && file.open(QIODevice::WriteOnly))
        file.write(build);
}

} // namespace

bool WriteOfficeProfile(const QString &folder, const QString &program)
{
    const QDir user(folder + QLatin1String("/user"));
    NameBuild(user, program);
    QFile file(user.filePath(QStringLiteral("registrymodifications.xcu")));
    if (!user.mkpath(QStringLiteral(".")) || !file.open(QIODevice::WriteOnly))
        return false;
    QXmlStreamWriter xml(&file);
    xml.writeStartDocument();
    xml.writeNamespace(registry, QStringLiteral("oor"));
    xml.writeStartElement(registry, QStringLiteral("items"));
    for (const Setting &setting : settings)
        WriteSetting(xml, setting);
    xml.writeEndDocument();
    return !xml.hasError() && file.flush();
}
