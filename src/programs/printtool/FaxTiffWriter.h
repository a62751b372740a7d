#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include <memory>

struct tiff;

/// A sheet as it stands in a fax file.
struct EncodedPage
{
    int lWidth = 0;        ///< pixels
    int lHeight = 0;       ///< pixels
    int lDotsPerInchY = 0; ///< across it is 204
    QByteArray abData;     ///< Group 4 (ITU-T T.6), most significant bit first, 1 is black
};

/// Writes a fax file: a TIFF of Group 4 pages, each in one strip. All raise `ConversionError`.
class FaxTiffWriter final
{
public:
    /// No fax file has more: readers refuse it.
    static constexpr int MostPages = 5000;

    /// Compresses a sheet of `Format_Mono` whose 1 is black, with its resolution. Safe in several threads.
    static EncodedPage Encode(const QImage &sheet);

    /// A file of that name is replaced. `pageCount` is written on each page; 0 when it is not known.
    explicit FaxTiffWriter(const QString &path, int pageCount = 0);
    /// A file that was not finished is deleted.
    ~FaxTiffWriter();
    FaxTiffWriter(const FaxTiffWriter &) = delete;
    FaxTiffWriter &operator=(const FaxTiffWriter &) = delete;

    void Append(const EncodedPage &page);
    /// Writes everything through to the disk and closes the file.
    void Finish();

private:
    struct Closer
    {
        void operator()(tiff *file) const;
    };

    void SetFields(const EncodedPage &page);

    QString strPath;
    std::unique_ptr<tiff, Closer> file;
    int lPageCount;
    int lPages = 0;
    bool bFinished = false;
};
