#include "CommandLine.h"

#include "ConversionError.h"
#include "HeaderChoice.h"
#include "StatusTexts.h"
#include "WatchedRun.h"
#include "core/Utilities.h"
#include "platform/SystemFolders.h"
#include "platform/SystemIds.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <cstdio>

#include <unistd.h>

namespace {

constexpr int exitDone = 0, exitFailed = 1, exitUsage = 2;

QString Translate(const char *text)
{
    return QCoreApplication::translate("printtool", text);
}

/// A command line that makes no sense. The text is a sentence.
class UsageError : public ConversionError
{
    using ConversionError::ConversionError;
};

void Print(const QString &line)
{
    std::fprintf(stderr, "%s\n", line.toLocal8Bit().constData());
}

/// Lines that replace each other where a person looks on, one below the other in a file.
class ProgressLine
{
public:
    void Tell(const QString &status)
    {
        if (status == strShown)
            return;
        strShown = status;
        const char *form = bTerminal ? "\r\033[K%s" : "%s\n";
        std::fprintf(stderr, form, status.toLocal8Bit().constData());
        std::fflush(stderr);
    }
    void Clear()
    {
        if (bTerminal && !strShown.isEmpty())
            std::fprintf(stderr, "\r\033[K");
    }

private:
    bool bTerminal = isatty(STDERR_FILENO) == 1;
    QString strShown;
};

void AddOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        Translate("Makes one fax file (TIFF) of documents: PDF, office documents, pictures, fax files.\n"
                  "Without arguments it serves the client's request."));
    parser.addVersionOption();
    parser.addOptions({
        {{"h", "help"}, Translate("Displays this help.")},
        {{"o", "out"}, Translate("The fax file to write."), Translate("file")},
        {"fine", Translate("204 x 196 dpi, which it is without a choice.")},
        {"standard", Translate("204 x 98 dpi.")},
        {"threshold", Translate("What is darker becomes black, 0 to 255."), Translate("number"), "200"},
        {"fitting", Translate("How pictures are fitted: match, stretch, width, height or original."),
         Translate("way"), "match"},
        {"header", Translate("Header and footer: General, Compact, Detailed or a .GNI file."),
         Translate("profile")},
        {"company", Translate("The company's name in the header."), Translate("text")},
        {"recipients", Translate("The recipients in the header."), Translate("text")},
    });
    parser.addPositionalArgument("documents", Translate("The documents, in the order of the fax."),
                                 Translate("document..."));
}

int ReadThreshold(const QCommandLineParser &parser)
{
    constexpr int highest = 255;
    bool isNumber = false;
    const int number = parser.value("threshold").toInt(&isNumber);
    if (!isNumber || number < 0 || number > highest)
        throw UsageError(Translate("--threshold takes a number from 0 to 255."));
    return number;
}

Fitting ReadFitting(const QCommandLineParser &parser)
{
    static const QStringList names{"match", "stretch", "width", "height", "original"};
    const qsizetype index = names.indexOf(parser.value("fitting"));
    if (index < 0)
        throw UsageError(Translate("--fitting takes one of: %1.").arg(names.join(QLatin1String(", "))));
    return static_cast<Fitting>(index);
}

PageOptions ReadOptions(const QCommandLineParser &parser)
{
    if (parser.isSet("fine") && parser.isSet("standard"))
        throw UsageError(Translate("--fine and --standard exclude each other."));
    PageOptions options;
    options.format.bFine = !parser.isSet("standard");
    options.lThreshold = ReadThreshold(parser);
    options.fitting = ReadFitting(parser);
    options.strCompanyName = parser.value("company");
    options.strRecipients = parser.value("recipients");
    options.dateTime = QDateTime::currentDateTime();
    options.header = HeaderChoice::Load(
        HeaderChoice::FindForShell(parser.value("header"), SystemFolders().Program()), options.format);
    return options;
}

QString ReadOutput(const QCommandLineParser &parser)
{
    if (parser.value("out").isEmpty())
        throw UsageError(Translate("--out FILE is missing; --help tells the options."));
    const QFileInfo file(parser.value("out"));
    if (file.isDir())
        throw UsageError(Translate("\"%1\" is a folder.").arg(file.filePath()));
    if (file.exists() && !file.isFile()) // a device would be replaced by the file
        throw UsageError(Translate("\"%1\" is no ordinary file.").arg(file.filePath()));
    return file.absoluteFilePath();
}

ConversionJob ReadJob(const QCommandLineParser &parser)
{
    ConversionJob job;
    job.strOutput = ReadOutput(parser);
    SystemIds ids;
    job.strPartFile = job.strOutput + u'.' + NewFaxID(ids) + QLatin1String(".part");
    for (const QString &path : parser.positionalArguments()) {
        Document document;
        document.strPath = QFileInfo(path).absoluteFilePath();
        job.aDocuments.append(document);
    }
    if (job.aDocuments.isEmpty())
        throw UsageError(Translate("No document is named; --help tells the options."));
    job.options = ReadOptions(parser);
    return job;
}

int Convert(const ConversionJob &job, WatchedRun &run)
{
    ProgressLine progress;
    const ConversionResult result = run.Convert(job, [&progress](const QString &status) {
        progress.Tell(status);
        return true;
    });
    progress.Clear();
    if (result.bStopped) {
        Print(Translate("Cancelled."));
        return exitFailed;
    }
    Print(result.lPages > 0 ? StatusTexts::Success(result.lPages)
                            : StatusTexts::Failure(result).remove(u'\r'));
    return result.lPages > 0 ? exitDone : exitFailed;
}

} // namespace

int RunCommandLine(const QStringList &arguments, WatchedRun &run)
{
    QCommandLineParser parser;
    AddOptions(parser);
    try {
        if (!parser.parse(arguments))
            throw UsageError(parser.errorText());
        if (parser.isSet("help"))
            parser.showHelp();
        if (parser.isSet("version"))
            parser.showVersion();
        return Convert(ReadJob(parser), run);
    } catch (const UsageError &error) {
        Print(QStringLiteral("ZemPrint: ") + error.Text());
        return exitUsage;
    }
}
