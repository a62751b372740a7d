#pragma once

#include "PageProgress.h"

#include <QImage>
#include <QList>

class FaxDocument;

/// The pages of a fax at screen size for a print preview, of which the toolkit keeps all in memory.
class PreviewPages final
{
public:
    explicit PreviewPages(const FaxDocument &fax);

    /// So many from the first on; all but for a very long fax.
    int Count() const { return lCount; }
    /// Raises `SaveError`, also when `progress` says no.
    QList<QImage> Load(const FaxDocument &fax, const PageProgress &progress) const;

private:
    int lDotsPerInch;
    int lCount = 0;
};
