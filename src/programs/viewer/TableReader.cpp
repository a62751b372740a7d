#include "TableReader.h"

TableReader::TableReader()
{
    pool.setMaxThreadCount(1);
}

TableReader::~TableReader()
{
    pool.clear();
    pool.waitForDone();
}

void TableReader::Read(const QString &path)
{
    const int call = ++lCalls;
    pool.clear();
    pool.start([this, path, call] {
        const FaxPages pages(path);
        QMetaObject::invokeMethod(
            this,
            [this, path, pages, call] {
                if (call == lCalls)
                    emit TableRead(path, pages);
            },
            Qt::QueuedConnection);
    });
}
