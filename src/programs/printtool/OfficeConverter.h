#pragma once

#include "OfficeProgram.h"

#include <QList>
#include <QString>

#include <functional>
#include <stop_token>

/// One office document on its way to pages.
struct OfficeJob
{
    QString strPath;   ///< the document
    QString strEnding; ///< what tells its form, as `FileType` has it
    QString strName;   ///< for texts that a user reads
    QString strFile;   ///< what the office program is given: a copy under a name without meaning
    QString strPdf;    ///< the result's full path; empty when it failed
    QString strReason; ///< why it failed: a sentence

    bool IsOpen() const { return strPdf.isEmpty() && strReason.isEmpty(); }
};

/// Office documents to PDF files, all in one start of the office program. When that dies or hangs, it is
/// started again without the document that it was at, so that one cannot spoil the others.
class OfficeConverter final
{
public:
    using Tell = std::function<void(const QString &status)>;

    OfficeConverter(OfficeProgram officeProgram, const QString &workFolder, std::stop_token stopToken,
                    Tell tellStatus);

    /// Fills `strPdf` or `strReason` of every job, unless it is asked to stop meanwhile. Raises nothing.
    void Convert(QList<OfficeJob> &jobs);

private:
    void HandOver(OfficeJob &job, int number) const;
    bool RunOnce(QList<OfficeJob *> &open);
    void TellProgress(const QList<OfficeJob *> &open);
    void TakeResults(const QList<OfficeJob *> &open) const;
    QString PdfOf(const OfficeJob &job) const;

    OfficeProgram program;
    QString strWorkFolder;
    std::stop_token stop;
    Tell tell;
    const OfficeJob *told = nullptr;
};
