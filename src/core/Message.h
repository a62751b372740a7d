#pragma once

#include "core/ports/Prompts.h"

#include <functional>

/// The program's one message box: a box that comes while another stands is not shown.
class Message
{
public:
    explicit Message(Prompts &prompts)
        : prompts(prompts)
    {
    }

    /// Shows `text` and returns the answer. While a box of this routine stands, shows nothing and
    /// returns 1 (OK), so that two events that fail at once cannot stack boxes. An empty `title` means
    /// the program's own.
    long ShowMessage(const QString &text, long flags = mbOKOnly, const QString &title = {});

    /// Asks for one line of text; empty when the user has cancelled. While a box stands it asks nothing and
    /// the result is empty, too.
    QString AskText(const QString &prompt, const QString &title);

    /// Runs what an event asks for. An error of the program ends here, in a box with `heading` over its
    /// description; the result is then false.
    bool RunGuarded(const QString &heading, const std::function<void()> &run);

private:
    Prompts &prompts;
    bool bBoxOpen = false;
};
