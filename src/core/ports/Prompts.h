#pragma once

#include <QString>

/// What may stand in the `flags` of a message box; one of each group is added to the others.
enum MessageFlag : long {
    mbOKOnly = 0,
    mbOKCancel = 1,
    mbYesNoCancel = 3,
    mbYesNo = 4,
    mbCritical = 16,
    mbQuestion = 32,
    mbExclamation = 48,
    mbInformation = 64,
    mbDefaultButton2 = 256
};

enum MessageAnswer : long { mbAnswerOK = 1, mbAnswerCancel = 2, mbAnswerYes = 6, mbAnswerNo = 7 };

/// Modal questions to the user. Only `Message` and the form opener ask it.
class Prompts
{
public:
    virtual ~Prompts() = default;

    /// Shows a box and waits for its answer, a `MessageAnswer`. `text` is plain text, never markup.
    virtual long Show(const QString &text, long flags, const QString &title) = 0;

    /// Asks for one line of text, which starts empty. Empty when the user has cancelled.
    virtual QString AskText(const QString &prompt, const QString &title) = 0;
};
