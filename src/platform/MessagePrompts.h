#pragma once

#include "core/ports/Prompts.h"

/// Message and input boxes of the desktop, over the active window.
class MessagePrompts final : public Prompts
{
public:
    long Show(const QString &text, long flags, const QString &title) override;
    QString AskText(const QString &prompt, const QString &title) override;
};
