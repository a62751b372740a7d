#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <stop_token>

/// One office document on its way to pages.
struct OfficeJob
{
    QString strPath;   ///< the document
    QString strEnding; ///< what tells its form, such as "docx"
    QString strName;   ///< for texts that a user reads
    QString strPdf;    ///< the result's full path; empty when it failed
    QString strReason; ///< why it failed: a sentence
};

/// Office documents to PDF files, all in one start of the office program, which gets a new profile, no
/// network and safe names. Fills `strPdf` or `strReason` of every job, unless it is told to stop.
void ConvertOffice(QList<OfficeJob> &jobs, const QString &workFolder, std::stop_token stop,
                   const std::function<void(const QString &status)> &tell);
