#include "core/Message.h"

#include "core/ProgramTitle.h"
#include "core/RaisedError.h"

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

QString Message::AskText(const QString &prompt, const QString &title)
{
    if (bBoxOpen)
        return {};
    bBoxOpen = true;
    const auto closed = qScopeGuard([this] { bBoxOpen = false; });
    return prompts.AskText(prompt, title);
}

bool Message::RunGuarded(const QString &heading, const std::function<void()> &run)
{
    try {
        run();
        return true;
    } catch (const RaisedError &error) {
        ShowMessage(heading + "\r\n" + error.Description(), mbExclamation);
        return false;
    }
}
