#include "FaxDocument.h"

#include <QFileInfo>

namespace {

/// The resolution that a page of a fax has when its file names none.
constexpr int usualDotsPerInchX = 204;
constexpr int usualDotsPerInchY = 196;

/// What lies beyond makes a page of the size of a stamp, or of a house.
constexpr int fewestDotsPerInch = 30, mostDotsPerInch = 2400;

bool IsSane(int dotsPerInch)
{
    return dotsPerInch >= fewestDotsPerInch && dotsPerInch <= mostDotsPerInch;
}

bool LiesOnItsSide(int rotation)
{
    return rotation % 180 != 0;
}

} // namespace

bool FaxDocument::Open(const QString &path)
{
    return Take(path, FaxPages(path));
}

bool FaxDocument::Take(const QString &path, const FaxPages &readPages)
{
    strPath = path;
    pages = readPages;
    aRotations = QList<int>(pages.Count(), 0);
    strProblem = pages.Count() > 0 ? QString() : ProblemOf(path);
    emit Opened();
    return pages.Count() > 0;
}

std::unique_ptr<FaxDocument> FaxDocument::Copy() const
{
    auto copy = std::make_unique<FaxDocument>();
    copy->pages = pages;
    copy->aRotations = aRotations;
    copy->strPath = strPath;
    copy->strProblem = strProblem;
    return copy;
}

void FaxDocument::TakeAgain(const FaxPages &readPages)
{
    pages = readPages;
    if (aRotations.size() != pages.Count())
        aRotations = QList<int>(pages.Count(), 0);
    emit Reopened();
}

QString FaxDocument::ProblemOf(const QString &path)
{
    const QFileInfo file(path);
    if (!file.exists())
        return tr("This file does not exist.");
    if (!file.isFile())
        return tr("This is no file.");
    return file.isReadable() ? tr("This file is damaged, or no fax.") : tr("This file may not be read.");
}

void FaxDocument::Turn(int page, int degrees)
{
    aRotations[page] = ((aRotations[page] + degrees) % 360 + 360) % 360;
}

void FaxDocument::Rotate(int page, int degrees)
{
    Turn(page, degrees);
    emit Turned();
}

void FaxDocument::RotateAll(int degrees)
{
    for (int page = 0; page < PageCount(); ++page)
        Turn(page, degrees);
    emit Turned();
}

bool FaxDocument::HasResolution(int page) const
{
    const TiffPage &entry = pages.Page(page);
    return IsSane(entry.lDotsPerInchX) && IsSane(entry.lDotsPerInchY);
}

QSizeF FaxDocument::PageSize(int page) const
{
    const TiffPage &entry = pages.Page(page);
    const int x = HasResolution(page) ? entry.lDotsPerInchX : usualDotsPerInchX;
    const int y = HasResolution(page) ? entry.lDotsPerInchY : usualDotsPerInchY;
    const QSizeF size(double(entry.lWidth) / x, double(entry.lHeight) / y);
    return LiesOnItsSide(Rotation(page)) ? size.transposed() : size;
}

PageBits FaxDocument::LoadPage(int page) const
{
    return pages.Load(page, (360 - Rotation(page)) % 360);
}
