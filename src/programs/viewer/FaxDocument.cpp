#include "FaxDocument.h"

#include <QFileInfo>

namespace {

/// The resolution that a page of a fax has when its file names none.
constexpr int usualDotsPerInchX = 204;
constexpr int usualDotsPerInchY = 196;

bool LiesOnItsSide(int rotation)
{
    return rotation % 180 != 0;
}

} // namespace

bool FaxDocument::Open(const QString &path)
{
    strPath = path;
    pages = FaxPages(path);
    aRotations = QList<int>(pages.Count(), 0);
    if (pages.Count() > 0)
        strProblem.clear();
    else if (!QFileInfo::exists(path))
        strProblem = tr("This file does not exist.");
    else
        strProblem = tr("This file is damaged, or no fax.");
    emit Opened();
    return pages.Count() > 0;
}

void FaxDocument::Rotate(int page, int degrees)
{
    aRotations[page] = ((aRotations[page] + degrees) % 360 + 360) % 360;
    emit PageTurned(page);
}

void FaxDocument::RotateAll(int degrees)
{
    for (int page = 0; page < PageCount(); ++page)
        Rotate(page, degrees);
}

QSizeF FaxDocument::PageSize(int page) const
{
    const TiffPage &entry = pages.Page(page);
    const int x = entry.lDotsPerInchX > 0 ? entry.lDotsPerInchX : usualDotsPerInchX;
    const int y = entry.lDotsPerInchY > 0 ? entry.lDotsPerInchY : usualDotsPerInchY;
    const QSizeF size(double(entry.lWidth) / x, double(entry.lHeight) / y);
    return LiesOnItsSide(Rotation(page)) ? size.transposed() : size;
}

PageBits FaxDocument::LoadPage(int page) const
{
    return pages.Load(page, (360 - Rotation(page)) % 360);
}
