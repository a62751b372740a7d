#include "OfficeConverter.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QUrl>

void ConvertOffice(QList<OfficeJob> &jobs, const QString &workFolder, std::stop_token stop,
                   const std::function<void(const QString &status)> &tell)
{
    const QDir folder(workFolder);
    QStringList arguments{QLatin1String("-env:UserInstallation=") +
                              QUrl::fromLocalFile(folder.filePath("profile")).toEncoded(),
                          "--headless",
                          "--norestore",
                          "--convert-to",
                          "pdf",
                          "--outdir",
                          folder.filePath("pdf")};
    for (qsizetype number = 0; number < jobs.size(); ++number) {
        const QString name =
            QStringLiteral("doc%1.%2").arg(number + 1, 4, 10, QLatin1Char('0')).arg(jobs[number].strEnding);
        QFile::copy(jobs[number].strPath, folder.filePath(name));
        arguments.append(folder.filePath(name));
        tell(QCoreApplication::translate("printtool", "Reading %1").arg(jobs[number].strName));
    }
    QProcess office;
    office.start("soffice", arguments);
    while (office.state() != QProcess::NotRunning && !stop.stop_requested())
        office.waitForFinished(100);
    office.kill();
    office.waitForFinished();
    for (qsizetype number = 0; number < jobs.size(); ++number) {
        const QString pdf =
            folder.filePath(QStringLiteral("pdf/doc%1.pdf").arg(number + 1, 4, 10, QLatin1Char('0')));
        if (QFile::exists(pdf))
            jobs[number].strPdf = pdf;
        else
            jobs[number].strReason =
                QCoreApplication::translate("printtool", "It is damaged or protected by a password.");
    }
}
