#include "platform/DesktopShell.h"

#include "core/ports/Folders.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace {
bool IsAddress(const QString &file)
{
    const QString scheme = QUrl(file).scheme();
    return scheme == QLatin1String("http") || scheme == QLatin1String("https") ||
           scheme == QLatin1String("mailto");
}

int StartDetached(const QString &program, const QStringList &arguments, const QString &folder)
{
    return QProcess::startDetached(program, arguments, folder) ? DesktopShell::Started
                                                               : DesktopShell::AccessDenied;
}

class ChildProgram final : public RunningProgram
{
public:
    explicit ChildProgram(std::unique_ptr<QProcess> started)
        : process(started.release())
    {
    }
    /// Deleting the process would end it: it deletes itself when it has ended.
    ~ChildProgram() override
    {
        if (IsRunning())
            QObject::connect(process, &QProcess::finished, process, &QObject::deleteLater);
        else
            process->deleteLater();
    }

    bool IsRunning() override { return process->state() != QProcess::NotRunning; }
    void Kill() override { process->kill(); }

private:
    Q_DISABLE_COPY(ChildProgram)

    QProcess *process;
};
} // namespace

QString DesktopShell::FindProgram(const QString &file) const
{
    if (!file.contains(u'/'))
        return QStandardPaths::findExecutable(file);
    const QFileInfo program(file);
    const bool ours = program.absolutePath() == QFileInfo(folders.Program()).absoluteFilePath();
    return ours && program.isFile() && program.isExecutable() ? program.absoluteFilePath() : QString();
}

int DesktopShell::Open(const QString &file, const QString &, const QStringList &parameters,
                       const QString &folder, int)
{
    if (file.isEmpty())
        return FileNotFound;
    const bool address = IsAddress(file);
    const QString program = address ? QString() : FindProgram(file);
    if (!program.isEmpty())
        return StartDetached(program, parameters, folder);
    if (!address && !QFileInfo::exists(file))
        return FileNotFound;
    const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    if (opener.isEmpty())
        return NoAssociation;
    return StartDetached(opener, {address ? file : QFileInfo(file).absoluteFilePath()}, folder);
}

std::unique_ptr<RunningProgram> DesktopShell::Start(const QString &file, const QStringList &parameters)
{
    const QString program = FindProgram(file);
    if (program.isEmpty())
        return nullptr;
    auto process = std::make_unique<QProcess>();
    process->setProcessChannelMode(QProcess::ForwardedChannels);
    process->setStandardInputFile(QProcess::nullDevice());
    process->start(program, parameters);
    if (process->state() == QProcess::NotRunning)
        return nullptr;
    return std::make_unique<ChildProgram>(std::move(process));
}
