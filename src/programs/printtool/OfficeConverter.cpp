#include "OfficeConverter.h"

#include "ConversionError.h"
#include "OfficeContents.h"
#include "OfficeProfile.h"
#include "StatusTexts.h"
#include "WorkFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

/// Each start may lose one document; a request that loses more takes too long to find out about the rest.
constexpr int mostStarts = 5, mostTimeOuts = 2;

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

QString WhyUnreadable(const OfficeJob &job)
{
    if (OfficeContents::AsksForPassword(job.strPath))
        return Translate("The document is protected by a password.");
    if (WorkFolder::IsFull(QFileInfo(job.strFile).path()))
        return Translate("The disk with the temporary files is full.");
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

/// The program went through all of them.
void FailUnread(const QList<OfficeJob *> &open)
{
    for (OfficeJob *job : open) {
        if (job->IsOpen())
            job->strReason = WhyUnreadable(*job);
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
    QDir(strWorkFolder + QLatin1String("/pdf")).removeRecursively();
    QList<OfficeJob *> open = HandOver(jobs);
    for (int starts = 0; starts < mostStarts && !open.isEmpty(); ++starts) {
        if (stop.stop_requested() || !RunOnce(open))
            return;
    }
    FailAll(open, Translate("The office program broke down too often."));
}

/// Those that can be converted.
QList<OfficeJob *> OfficeConverter::HandOver(QList<OfficeJob> &jobs) const
{
    QList<OfficeJob *> open;
    for (OfficeJob &job : jobs) {
        try {
            job.HandOver(strWorkFolder, static_cast<int>(&job - jobs.data()) + 1, stop);
            open.append(&job);
        } catch (const ConversionError &error) {
            job.strReason = error.Text();
        }
    }
    return open;
}

/// False when there is nothing more to be tried.
bool OfficeConverter::RunOnce(QList<OfficeJob *> &open)
{
    if (!MakeProfile(open))
        return false;
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
        FailUnread(open);
    else
        FailGuilty(open, end);
    open.removeIf([](const OfficeJob *job) { return !job->IsOpen(); });
    return true;
}

/// The one that the program was at when it ended; or one before that it could not read, which is no loss.
void OfficeConverter::FailGuilty(const QList<OfficeJob *> &open, OfficeEnd end)
{
    const qsizetype at = FirstBehindReady(open, [](const OfficeJob &job) { return !job.IsOpen(); });
    if (at == open.size()) // it had gone through all of them
        FailUnread(open);
    else
        open[at]->strReason = WhyEnded(end);
    if (end == OfficeEnd::TimedOut && ++lTimeOuts == mostTimeOuts)
        FailAll(open, WhyEnded(end));
}

/// A new one for each start: what a broken one has left may break the next.
bool OfficeConverter::MakeProfile(const QList<OfficeJob *> &open) const
{
    const QString profile = strWorkFolder + QLatin1String("/profile");
    QDir(profile).removeRecursively();
    try {
        if (program.strPath.isEmpty())
            throw ConversionError(Translate("LibreOffice is not installed."));
        if (!WriteOfficeProfile(profile, program.strPath))
            RaiseNotWritten(strWorkFolder);
    } catch (const ConversionError &error) {
        FailAll(open, error.Text());
        return false;
    }
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
    tell(Translate("Reading %1").arg(StatusTexts::ShownName(now->strName)));
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
