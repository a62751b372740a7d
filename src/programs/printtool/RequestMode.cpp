#include "RequestMode.h"

#include "ConversionError.h"
#include "HeaderChoice.h"
#include "StatusChannel.h"
#include "StatusTexts.h"
#include "WatchedRun.h"
#include "core/RaisedError.h"
#include "core/Utilities.h"
#include "core/formats/PrintRequest.h"
#include "platform/SystemFolders.h"
#include "platform/SystemIds.h"
#include "platform/SystemSharedBlocks.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>
#include <optional>

namespace {

constexpr int exitDone = 0, exitFailed = 1, exitNobodyAsks = 2;

const QString partEnding = QStringLiteral(".part");

QList<Document> DocumentsOf(const PrintRequest &request)
{
    QList<Document> documents;
    for (const QString &entry : request.aFiles) {
        Document document;
        document.bReady = entry.startsWith('*');
        document.strPath = document.bReady ? entry.mid(1) : entry;
        documents.append(document);
    }
    return documents;
}

/// Made when it is missing; the user's own folder never is.
QString FindOutBox(const QString &userFolder)
{
    const QString outBox = QDir(userFolder).filePath(QStringLiteral("OutputBox/"));
    if (!FolderExists(userFolder) || !CreatePrivateFolder(outBox))
        throw ConversionError(
            QCoreApplication::translate("printtool", "There is no folder \"%1\".").arg(outBox));
    return outBox;
}

/// What a killed tool left behind. Another that still works there has been told to stop.
void SweepParts(const QString &outBox)
{
    const QDir folder(outBox);
    const QString form = QStringLiteral("tmp~") + QString(32, u'?') + QStringLiteral(".tif") + partEnding;
    for (const QString &name : folder.entryList({form}, QDir::Files))
        QFile::remove(folder.filePath(name));
}

QString NewFaxName()
{
    SystemIds ids;
    const QString id = NewFaxID(ids);
    if (id.isEmpty())
        throw ConversionError(QCoreApplication::translate("printtool", "The fax file gets no name."));
    return QStringLiteral("tmp~%1.tif").arg(id);
}

ConversionJob JobOf(const PrintRequest &request, const Folders &folders)
{
    const QString outBox = FindOutBox(request.strUserFolder);
    SweepParts(outBox);
    ConversionJob job;
    job.aDocuments = DocumentsOf(request);
    job.options.format.bFine = request.IsFine();
    job.options.lThreshold = request.lThreshold;
    job.options.fitting = static_cast<Fitting>(request.lFitting);
    job.options.strCompanyName = request.strCompanyName;
    job.options.strRecipients = request.strRecipients;
    job.options.dateTime = QDateTime::currentDateTime();
    job.options.header = HeaderChoice::Load(
        HeaderChoice::FindForUser(request.strHeader, request.strUserFolder, folders.Program()),
        job.options.format);
    job.strOutput = outBox + NewFaxName();
    job.strPartFile = job.strOutput + partEnding;
    return job;
}

/// The request; nothing when it is none, and the client has been told so.
std::optional<PrintRequest> ReadRequest(StatusChannel &channel)
{
    try {
        return PrintRequest::Parse(channel.Request());
    } catch (const RaisedError &error) {
        std::fprintf(stderr, "ZemPrint: %s.\n", error.what());
        channel.ReportError();
        return {};
    }
}

ConversionResult Convert(const PrintRequest &request, const Folders &folders, StatusChannel &channel,
                         WatchedRun &run, QString &output)
{
    ConversionResult result;
    try {
        const ConversionJob job = JobOf(request, folders);
        output = job.strOutput;
        result = run.Convert(job, [&channel](const QString &status) { return channel.Tell(status); });
    } catch (const std::exception &error) {
        result.strReason = QString::fromUtf8(error.what());
    }
    if (result.bStopped) // for the case that nobody in the conversation has asked for it
        result.strReason = QCoreApplication::translate("printtool", "The print tool was ended.");
    return result;
}

/// The final text. A fax that nobody waits for any more is taken back.
int Conclude(const ConversionResult &result, StatusChannel &channel, const QString &output)
{
    const bool isDone = result.lPages > 0;
    const bool isTold = isDone ? channel.Finish(StatusTexts::Success(result.lPages), GetBareName(output))
                               : channel.Fail(StatusTexts::Failure(result));
    if (isTold)
        return isDone ? exitDone : exitFailed;
    if (isDone)
        QFile::remove(output);
    channel.Leave();
    return exitFailed;
}

} // namespace

int ServeRequest(WatchedRun &run)
{
    SystemSharedBlocks blocks;
    const SystemFolders folders;
    StatusChannel channel(blocks, folders);
    if (!channel.IsOpen()) {
        std::fprintf(stderr, "ZemPrint: nobody asks for a fax. --help tells how to use it from a shell.\n");
        return exitNobodyAsks;
    }
    channel.Begin();
    const std::optional<PrintRequest> request = ReadRequest(channel);
    if (!request)
        return exitFailed;
    QString output;
    const ConversionResult result = Convert(*request, folders, channel, run, output);
    return Conclude(result, channel, output);
}
