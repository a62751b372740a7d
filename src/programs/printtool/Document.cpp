#include "Document.h"

#include "core/Utilities.h"

QString Document::Name() const
{
    return GetBareName(strPath);
}
