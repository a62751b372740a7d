#pragma once

#include "OfficeJob.h"
#include "OfficeProgram.h"

#include <QList>
#include <QString>

#include <functional>
#include <stop_token>

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
    QList<OfficeJob *> HandOver(QList<OfficeJob> &jobs) const;
    bool RunOnce(QList<OfficeJob *> &open);
    bool MakeProfile(const QList<OfficeJob *> &open) const;
    void TellProgress(const QList<OfficeJob *> &open);
    void FailGuilty(const QList<OfficeJob *> &open, OfficeEnd end);
    void TakeResults(const QList<OfficeJob *> &open) const;
    QString PdfOf(const OfficeJob &job) const;

    OfficeProgram program;
    QString strWorkFolder;
    std::stop_token stop;
    Tell tell;
    const OfficeJob *told = nullptr;
    int lTimeOuts = 0;
};
