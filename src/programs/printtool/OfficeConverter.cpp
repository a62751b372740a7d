#include "OfficeConverter.h"

#include "OfficeContents.h"
#include "OfficeProfile.h"
#include "TextFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

#include <algorithm>

namespace {

/// Each start may lose one document; a request that loses more takes too long to find out about the rest.
constexpr int mostStarts = 5;

QString Translate(const char *text)
{
    return QCoreApplication::translate("OfficeConverter", text);
}

/// A PDF file that was written to its end.
bool IsWholePdf(const QString &path)
{
    constexpr qint64 tailSize = 1024;
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.peek(5) == "%PDF-" &&
           file.seek(std::max<qint64>(file.size() - tailSize, 0)) && file.readAll().contains("%%EOF");
}

bool CopyText(const OfficeJob &job)
{
    constexpr qint64 most = 16 * 1024 * 1024; // some 5,000 pages
    QFile file(job.strPath);
    if (!file.open(QIODevice::ReadOnly) || file.size() > most)
        return false;
    const QByteArray bytes = file.read(most);
    return job.strEnding == QLatin1String("txt")
               ? TextFiles::WriteTextDocument(TextFiles::Decode(bytes), job.strFile)
               : TextFiles::WriteHtml(TextFiles::DecodeHtml(bytes), job.strFile);
}

bool Copy(const OfficeJob &job)
{
    if (job.strEnding == QLatin1String("txt") || job.strEnding == QLatin1String("html"))
        return CopyText(job);
    return QFile::copy(job.strPath, job.strFile) &&
           QFile::setPermissions(job.strFile, QFile::ReadOwner | QFile::WriteOwner);
}

bool IsDiskFull(const QString &folder)
{
    constexpr qint64 least = 4 * 1024 * 1024;
    const QStorageInfo disk(folder);
    return disk.isValid() && disk.bytesAvailable() < least;
}

QString WhyUnreadable(const OfficeJob &job)
{
    if (OfficeContents::AsksForPassword(job.strPath))
        return Translate("The document is protected by a password.");
    if (IsDiskFull(QFileInfo(job.strFile).path()))
        return Translate("There is no room for temporary files.");
    return Translate("The document is damaged, or of a kind that cannot be read.");
}

QString WhyEnded(OfficeEnd end)
{
    if (end == OfficeEnd::TimedOut)
        return Translate("The document takes too long to be read.");
    return Translate("The office program broke down over the document.");
}

/// Those behind the last one that is ready; the first of them is the one that is being read, or one that
/// could not be.
qsizetype FirstBehindReady(const QList<OfficeJob *> &open,
                           const std::function<bool(const OfficeJob &)> &ready)
{
    for (qsizetype number = open.size(); number > 0; --number) {
        if (ready(*open[number - 1]))
            return number;
    }
    return 0;
}

void FailAll(const QList<OfficeJob *> &open, const QString &reason)
{
    for (OfficeJob *job : open) {
        if (job->IsOpen())
            job->strReason = reason;
    }
}

} // namespace

OfficeConverter::OfficeConverter(OfficeProgram officeProgram, const QString &workFolder,
                                 std::stop_token stopToken, Tell tellStatus)
    : program(std::move(officeProgram))
    , strWorkFolder(workFolder)
    , stop(std::move(stopToken))
    , tell(std::move(tellStatus))
{
}

void OfficeConverter::Convert(QList<OfficeJob> &jobs)
{
    QList<OfficeJob *> open;
    for (OfficeJob &job : jobs) {
        if (stop.stop_requested())
            return;
        HandOver(job, static_cast<int>(&job - jobs.data()) + 1);
        if (job.IsOpen())
            open.append(&job);
    }
    for (int starts = 0; starts < mostStarts && !open.isEmpty(); ++starts) {
        if (!RunOnce(open))
            return;
    }
    FailAll(open, Translate("The office program broke down too often."));
}

/// The office program is given nothing of the name: it could be an option, a filter, or the name of another.
void OfficeConverter::HandOver(OfficeJob &job, int number) const
{
    const QString ending = job.strEnding == QLatin1String("txt") ? QStringLiteral("fodt") : job.strEnding;
    job.strFile =
        QStringLiteral("%1/doc%2.%3").arg(strWorkFolder).arg(number, 4, 10, QLatin1Char('0')).arg(ending);
    if (!Copy(job))
        job.strReason = IsDiskFull(strWorkFolder) ? Translate("There is no room for temporary files.")
                                                  : Translate("The file cannot be read.");
}

/// False when there is nothing more to be tried.
bool OfficeConverter::RunOnce(QList<OfficeJob *> &open)
{
    const QString profile = strWorkFolder + QLatin1String("/profile");
    QDir(profile).removeRecursively(); // what a broken run has left may break the next
    if (program.strPath.isEmpty() || !WriteOfficeProfile(profile)) {
        FailAll(open, program.strPath.isEmpty() ? Translate("LibreOffice is not installed.")
                                                : Translate("There is no room for temporary files."));
        return false;
    }
    QStringList files;
    for (const OfficeJob *job : std::as_const(open))
        files.append(job->strFile);
    const OfficeEnd end = program.Convert(strWorkFolder, files, stop, [&] { TellProgress(open); });
    if (end == OfficeEnd::Stopped)
        return false;
    TakeResults(open);
    if (end == OfficeEnd::NotStarted)
        FailAll(open, Translate("LibreOffice does not start."));
    else if (end == OfficeEnd::Finished)
        std::for_each(open.begin(), open.end(), [](OfficeJob *job) {
            job->strReason = job->IsOpen() ? WhyUnreadable(*job) : job->strReason;
        });
    else {
        const qsizetype guilty = FirstBehindReady(open, [](const OfficeJob &job) { return !job.IsOpen(); });
        open.value(guilty < open.size() ? guilty : 0)->strReason = WhyEnded(end);
    }
    open.removeIf([](const OfficeJob *job) { return !job->IsOpen(); });
    return true;
}

void OfficeConverter::TellProgress(const QList<OfficeJob *> &open)
{
    const qsizetype reading =
        FirstBehindReady(open, [this](const OfficeJob &job) { return QFile::exists(PdfOf(job)); });
    const OfficeJob *now = open.value(std::min(reading, open.size() - 1));
    if (now == told)
        return;
    told = now;
    tell(Translate("Reading %1").arg(now->strName));
}

void OfficeConverter::TakeResults(const QList<OfficeJob *> &open) const
{
    for (OfficeJob *job : open) {
        const QString pdf = PdfOf(*job);
        if (IsWholePdf(pdf))
            job->strPdf = pdf;
    }
}

QString OfficeConverter::PdfOf(const OfficeJob &job) const
{
    return strWorkFolder + QLatin1String("/pdf/") + QFileInfo(job.strFile).completeBaseName() +
           QLatin1String(".pdf");
}
