#pragma once

#include "core/CSharedString.h"
#include "core/formats/PrintRequest.h"
#include "platform/SystemFolders.h"
#include "platform/SystemSharedBlocks.h"

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class PrintTool;

/// A desk at which the tool is asked for faxes, without a client: the user's folders, documents, and the
/// folders that the tool inherits. One at a time.
class PrintDesk final
{
public:
    PrintDesk();

    /// Full paths; what `Write...` makes stands in the folder of the documents.
    QString Path(const QString &name) const { return root.filePath(name); }
    QString WriteFile(const QString &name, const QByteArray &bytes) const;
    /// A PDF of A4 pages that show `content`, in the operators of ISO 32000.
    QString WritePdf(const QString &name, int pages, const QByteArray &content = "100 700 200 50 re f") const;
    /// A page that takes minutes.
    QString WriteSlowPdf(const QString &name) const;

    PrintRequest RequestFor(const QStringList &files) const;
    /// Writes the request as the client does.
    void Ask(const QStringList &files) { Ask(RequestFor(files)); }
    void Ask(const PrintRequest &request) { shared->SetItem(request.Pack()); }
    /// Runs the tool to its end, and keeps what it told; false when it takes longer than a minute.
    bool Serve(PrintTool &tool);

    QStringList OutBox() const;
    /// True while a process works for the tool whose command line holds that text.
    bool HasProcess(const QByteArray &program) const;
    /// True when no file and no process is left of the tool's work.
    bool IsClean() const;
    int Progress() const;

    QTemporaryDir root;
    std::unique_ptr<CSharedString> shared; ///< null for a desk that nobody sits at
    QStringList aStatuses;                 ///< without the last text
    QString strFinal;

private:
    SystemSharedBlocks blocks;
    SystemFolders folders;
};

/// The print tool as a process that works at a desk.
class PrintTool final : public QProcess
{
public:
    explicit PrintTool(const PrintDesk &desk, const QStringList &arguments = {});
    ~PrintTool() override;

    void Start();
    /// What the tool has written on its error output so far.
    QByteArray Errors() { return abErrors += readAllStandardError(); }

private:
    QByteArray abErrors;
};
