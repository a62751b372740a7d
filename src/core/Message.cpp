#include "core/Message.h"

#include "core/ProgramTitle.h"

#include <QCoreApplication>
#include <QScopeGuard>

long Message::ShowMessage(const QString &text, long flags, const QString &title)
{
    if (bBoxOpen)
        return mbAnswerOK;
    bBoxOpen = true;
    const auto closed = qScopeGuard([this] { bBoxOpen = false; });
    return prompts.Show(text, flags,
                        title.isEmpty() ? QCoreApplication::translate("core", programTitle) : title);
}
