#pragma once

#include "server/Progress.h"

#include <QStringList>

/// Writes down what the button of the progress window asks for.
struct FakeProgressOwner final : ProgressOwner
{
    bool IsConnected() const override { return bConnected; }
    void CancelTransfer() override
    {
        aCalls.append("cancel");
        bConnected = false;
    }
    void SetCommMenu(bool enabled) override { aCalls.append(enabled ? "menu on" : "menu off"); }
    void EnableMainWindow() override { aCalls.append("enable"); }
    void SignalServerReply() override { aCalls.append("signal"); }
    void SetUserAbort() override { aCalls.append("abort"); }

    bool bConnected = true;
    QStringList aCalls;
};
