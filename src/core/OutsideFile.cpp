#include "core/OutsideFile.h"

#include "core/ports/Instance.h"

OutsideFile::OutsideFile(SharedBlocks &blocks, Instance &instance)
{
    processHandle.Create(blocks, processHandleName);
    processHandle.SetItem(QString::number(instance.PublishWindow()));
    outsideFile.Create(blocks, outsideFileName);
}

QString OutsideFile::Take(int openForms)
{
    const QString path = outsideFile.Item();
    if (path.isEmpty() || openForms != 1)
        return {};
    outsideFile.SetItem({});
    return path;
}
