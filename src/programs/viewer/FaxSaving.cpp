#include "FaxSaving.h"

#include "FaxDocument.h"
#include "FaxExport.h"
#include "ProgressRun.h"
#include "controls/BusyPointer.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QStandardPaths>

namespace {

QString Tr(const char *text)
{
    return QCoreApplication::translate("FaxSaving", text);
}

void Warn(QWidget *parent, const QString &title, const QString &problem)
{
    QMessageBox box(QMessageBox::Warning, title, problem, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

/// The last one of this session; the fax itself lies among files that are not the user's own.
QString &LastFolder()
{
    static QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return folder;
}

bool IsPdf(const QString &pathOrFilter)
{
    return pathOrFilter.contains(QStringLiteral(".pdf"), Qt::CaseInsensitive);
}

/// Empty when the user did not choose one.
QString AskForPath(const FaxDocument &fax, QWidget *parent)
{
    QFileDialog dialog(parent, Tr("Save a Copy"), LastFolder());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters({Tr("Fax files (*.tif *.tiff)"), Tr("PDF documents (*.pdf)")});
    const auto useSuffixOf = [&dialog](const QString &filter) {
        dialog.setDefaultSuffix(IsPdf(filter) ? QStringLiteral("pdf") : QStringLiteral("tif"));
    };
    useSuffixOf(dialog.selectedNameFilter());
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, useSuffixOf);
    dialog.selectFile(QFileInfo(fax.Path()).completeBaseName());
    if (dialog.exec() != QDialog::Accepted)
        return {};
    LastFolder() = dialog.directory().path();
    return dialog.selectedFiles().value(0);
}

} // namespace

void FaxSaving::SaveCopy(const FaxDocument &fax, QWidget *parent)
{
    const QString path = AskForPath(fax, parent);
    if (path.isEmpty())
        return;
    const std::shared_ptr<const FaxDocument> shown = fax.Copy();
    const auto problem = std::make_shared<QString>();
    const auto save = QFileInfo(path).suffix().compare(QLatin1String("pdf"), Qt::CaseInsensitive) == 0
                          ? FaxExport::SavePdf
                          : FaxExport::SaveTiff;
    const bool ended =
        RunWithProgress(parent, Tr("Saving the copy..."), shown->PageCount(),
                        [=](const PageProgress &progress) { save(*shown, path, *problem, progress); });
    if (ended && !problem->isEmpty())
        Warn(parent, Tr("Save a Copy"), *problem);
}

void FaxSaving::CopyPage(const FaxDocument &fax, int page, QWidget *parent)
{
    const BusyPointer busy;
    const QImage image = FaxExport::PageImage(fax, page);
    if (image.isNull())
        Warn(parent, Tr("Copy Page"), Tr("Page %1 can no longer be read.").arg(page + 1));
    else
        QGuiApplication::clipboard()->setImage(image);
}
