#include "OfficeProgram.h"

#include "Confinement.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

#include <csignal>

#include <unistd.h>

namespace {

/// The office program's own words for "start me again", which a new profile makes it say, and for "I
/// crashed".
constexpr int restartCode = 81, crashCode = 79;

using Deadline = std::chrono::steady_clock::time_point;

/// Behind the usual starter stands the program itself: without the starter in between it is quicker, and
/// ended for sure.
QString BehindStarter(const QString &starter)
{
    const QFileInfo program(QFileInfo(starter).canonicalPath() + QLatin1String("/soffice.bin"));
    return program.isExecutable() ? program.filePath() : starter;
}

/// What concerns fonts and language; paper is the fax's. A session's services are nobody's business there.
QProcessEnvironment EnvironmentFor(const QString &workFolder)
{
    const QProcessEnvironment system = QProcessEnvironment::systemEnvironment();
    const QString all = system.value(QStringLiteral("LC_ALL")); // it would outdo the paper
    QProcessEnvironment environment;
    for (const char *kept :
         {"PATH", "HOME", "TZ", "LANG", "LANGUAGE", "LC_CTYPE", "LC_NUMERIC", "LC_TIME", "LC_MONETARY",
          "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "FONTCONFIG_FILE", "FONTCONFIG_PATH"}) {
        const QString name = QLatin1String(kept);
        if (system.contains(name) && (all.isEmpty() || !name.startsWith(QLatin1String("LC_"))))
            environment.insert(name, system.value(name));
    }
    if (!all.isEmpty())
        environment.insert(QStringLiteral("LANG"), all);
    environment.insert(QStringLiteral("LC_PAPER"), QStringLiteral("C"));
    environment.insert(QStringLiteral("PAPERSIZE"), QStringLiteral("a4"));
    environment.insert(QStringLiteral("SAL_USE_VCLPLUGIN"), QStringLiteral("svp"));
    environment.insert(QStringLiteral("TMPDIR"), workFolder + QStringLiteral("/tmp"));
    return environment;
}

QString ProfileOf(const QString &workFolder)
{
    return QUrl::fromLocalFile(workFolder + QLatin1String("/profile")).toEncoded();
}

QStringList ArgumentsFor(const QString &workFolder, const QStringList &files)
{
    return QStringList{QStringLiteral("-env:UserInstallation=") + ProfileOf(workFolder),
                       QStringLiteral("--headless"),
                       QStringLiteral("--norestore"),
                       QStringLiteral("--nologo"),
                       QStringLiteral("--convert-to"),
                       QStringLiteral("pdf"),
                       QStringLiteral("--outdir"),
                       workFolder + QLatin1String("/pdf")} +
           files;
}

/// The process leads a group of its own.
void EndAll(QProcess &process)
{
    constexpr int reaping = 5000; // nothing outlives this signal, but a stuck disk may hold it
    if (process.processId() > 0)
        kill(-static_cast<pid_t>(process.processId()), SIGKILL);
    process.kill();
    process.waitForFinished(reaping);
}

OfficeEnd EndOf(const QProcess &process)
{
    if (process.exitStatus() == QProcess::CrashExit || process.exitCode() == crashCode)
        return OfficeEnd::Died;
    // A document never changes the code: the program itself cannot work.
    const bool worked = process.exitCode() == 0 || process.exitCode() == restartCode;
    return worked ? OfficeEnd::Finished : OfficeEnd::NotStarted;
}

OfficeEnd WaitFor(QProcess &process, Deadline deadline, const std::stop_token &stop,
                  const std::function<void()> &look)
{
    constexpr int slice = 50;
    while (!process.waitForFinished(slice)) {
        if (process.state() == QProcess::NotRunning)
            break;
        const bool late = std::chrono::steady_clock::now() >= deadline;
        if (late || stop.stop_requested()) {
            EndAll(process);
            return late ? OfficeEnd::TimedOut : OfficeEnd::Stopped;
        }
        look();
    }
    return EndOf(process);
}

} // namespace

OfficeProgram OfficeProgram::Find()
{
    OfficeProgram program;
    program.strPath = qEnvironmentVariable("VELMAR_OFFICE");
    for (const char *name : {"soffice", "libreoffice"}) {
        if (program.strPath.isEmpty())
            program.strPath = QStandardPaths::findExecutable(QLatin1String(name));
    }
    return program;
}

OfficeEnd OfficeProgram::Convert(const QString &workFolder, const QStringList &files,
                                 const std::stop_token &stop, const std::function<void()> &look) const
{
    const QString program = BehindStarter(strPath);
    const Confinement walls(workFolder, program);
    const Deadline deadline = std::chrono::steady_clock::now() + limit;
    QProcess process;
    process.setProgram(program);
    process.setArguments(ArgumentsFor(workFolder, files));
    process.setProcessEnvironment(EnvironmentFor(workFolder));
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.setChildProcessModifier([&walls] { walls.Enter(); });
    OfficeEnd end = OfficeEnd::NotStarted;
    for (int starts = 0; starts < 2; ++starts) {
        process.start();
        if (!process.waitForStarted())
            return OfficeEnd::NotStarted;
        end = WaitFor(process, deadline, stop, look);
        if (end != OfficeEnd::Finished || process.exitCode() != restartCode)
            break;
    }
    return end;
}

/// Its name is made from that of the profile: the bytes of its digest, without leading zeros.
void OfficeProgram::RemoveSocket(const QString &workFolder)
{
    const QString profile = ProfileOf(workFolder);
    const QByteArrayView utf16(reinterpret_cast<const char *>(profile.utf16()), profile.size() * 2);
    QString name = QStringLiteral("/tmp/OSL_PIPE_%1_SingleOfficeIPC_").arg(getuid());
    for (const char byte : QCryptographicHash::hash(utf16.toByteArray(), QCryptographicHash::Md5))
        name += QString::number(static_cast<uchar>(byte), 16);
    QFile::remove(name);
}
