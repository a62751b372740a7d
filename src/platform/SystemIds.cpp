#include "platform/SystemIds.h"

#include <QUuid>

QByteArray SystemIds::NewGuid()
{
    const QUuid guid = QUuid::createUuid();
    static_assert(sizeof guid == 16, "a GUID is its sixteen bytes");
    if (guid.isNull())
        return {};
    return QByteArray(reinterpret_cast<const char *>(&guid), sizeof guid);
}
