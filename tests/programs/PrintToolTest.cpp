#include "PrintToolTest.h"

#include "core/PrinterProgress.h"
#include "core/SettingsFile.h"
#include "core/Utilities.h"
#include "fixtures/PdfFile.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>

PrintTool::PrintTool(const PrintDesk &desk, const QStringList &arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", desk.Path("tmp"));
    setProcessEnvironment(environment);
    setProgram(qEnvironmentVariable("VELMAR_BIN_DIR") + "/ZemPrint.exe");
    setArguments(arguments);
    setReadChannel(StandardError);
}

PrintTool::~PrintTool()
{
    kill();
    waitForFinished();
}

void PrintTool::Start()
{
    start();
    waitForStarted();
}

PrintDesk::PrintDesk()
    : shared(std::make_unique<CSharedString>())
{
    for (const char *folder : {"run", "config", "tmp", "docs", "Anna/OutputBox", "Anna/Header"})
        CreateFolder(Path(folder));
    QFile::setPermissions(Path("run"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", Path("run").toUtf8());
    qputenv("XDG_CONFIG_HOME", Path("config").toUtf8());
    shared->Create(blocks, PrintConversation::SharedName);
}

QString PrintDesk::WriteFile(const QString &name, const QByteArray &bytes) const
{
    QFile file(Path("docs/" + name));
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? file.fileName() : QString();
}

QString PrintDesk::WritePdf(const QString &name, int pages, const QByteArray &content) const
{
    return WriteFile(name, PdfOf(pages, content));
}

QString PrintDesk::WriteSlowPdf(const QString &name) const
{
    return WritePdf(name, 1, "/G gs " + QByteArray("0 0 595 842 re f\n").repeated(200000));
}

PrintRequest PrintDesk::RequestFor(const QStringList &files) const
{
    PrintRequest request;
    request.aFiles = files;
    request.strUserFolder = Path("Anna/");
    request.strHeader = "<None>";
    request.strApplicationData = Path("");
    return request;
}

bool PrintDesk::Serve(PrintTool &tool)
{
    constexpr int longest = 60000;
    const auto listen = [this] {
        const QString text = shared->Item();
        if (text != strFinal)
            aStatuses.append(std::exchange(strFinal, text));
    };
    QElapsedTimer time;
    time.start();
    aStatuses.clear();
    strFinal = shared->Item();
    tool.Start();
    while (tool.state() != QProcess::NotRunning && !time.hasExpired(longest)) {
        tool.waitForFinished(10);
        listen();
    }
    aStatuses = aStatuses.mid(1); // the request
    return tool.state() == QProcess::NotRunning;
}

QStringList PrintDesk::OutBox() const
{
    return QDir(Path("Anna/OutputBox")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
}

/// Whatever the tool starts has a path below the desk in its command line.
bool PrintDesk::HasProcess(const QByteArray &program) const
{
    for (const QString &process : QDir("/proc").entryList({"[0-9]*"}, QDir::Dirs)) {
        QFile file("/proc/" + process + "/cmdline");
        const QByteArray commandLine = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        if (commandLine.contains(root.path().toUtf8()) && commandLine.contains(program))
            return true;
    }
    return false;
}

bool PrintDesk::IsClean() const
{
    const auto any = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
    return OutBox().isEmpty() && QDir(Path("tmp")).isEmpty(any) && !HasProcess("");
}

int PrintDesk::Progress() const
{
    return ToNumber(ReadIniValue("PROGRESS", "Status", PrinterProgressFile(folders)));
}
