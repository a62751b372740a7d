#include "FaxSaving.h"

#include "FaxDocument.h"
#include "FaxExport.h"
#include "ProgressRun.h"

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

/// What the user chose last in this session.
struct LastChoice
{
    /// The fax itself lies among files that are not the user's own.
    QString strFolder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QString strFilter;
};

LastChoice &Last()
{
    static LastChoice last;
    return last;
}

QString SuffixOf(const QString &filter)
{
    return filter.contains(QStringLiteral(".pdf")) ? QStringLiteral("pdf") : QStringLiteral("tif");
}

/// Empty when the user did not choose one.
QString AskForPath(const FaxDocument &fax, QWidget *parent)
{
    QFileDialog dialog(parent, Tr("Save a Copy"), Last().strFolder);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters({Tr("Fax files (*.tif *.tiff)"), Tr("PDF documents (*.pdf)")});
    dialog.selectNameFilter(Last().strFilter);
    dialog.setDefaultSuffix(SuffixOf(dialog.selectedNameFilter()));
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog,
                     [&dialog](const QString &filter) { dialog.setDefaultSuffix(SuffixOf(filter)); });
    dialog.selectFile(QFileInfo(fax.Path()).completeBaseName());
    if (dialog.exec() != QDialog::Accepted)
        return {};
    Last() = {dialog.directory().path(), dialog.selectedNameFilter()};
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
    const std::shared_ptr<const FaxDocument> shown = fax.Copy();
    const auto image = std::make_shared<QImage>();
    const bool ended = RunWithProgress(parent, Tr("Copying the page..."), 0, [=](const PageProgress &) {
        *image = FaxExport::PageImage(*shown, page);
    });
    if (ended && image->isNull())
        Warn(parent, Tr("Copy Page"), Tr("Page %1 can no longer be read.").arg(page + 1));
    else if (ended)
        QGuiApplication::clipboard()->setImage(*image);
}
