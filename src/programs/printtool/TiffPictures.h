#pragma once

#include "PictureFile.h"

#include <QList>

struct tiff;

/// The pages of a TIFF file of any form, without those that only show another one smaller.
class TiffPictures final : public PictureFile
{
public:
    explicit TiffPictures(const QString &path);

    int Count() const override { return static_cast<int>(aPages.size()); }
    StoredPicture Look(int number) override { return aPages[number].picture; }
    QImage ReadGray(int number, const QSize &least) override;

private:
    struct Page
    {
        quint64 lOffset; ///< of its entry in the file
        StoredPicture picture;
    };

    void ListPages();

    std::unique_ptr<tiff, void (*)(tiff *)> file;
    QList<Page> aPages;
};
