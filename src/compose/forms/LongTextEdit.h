#pragma once

#include <QPlainTextEdit>

/// A text box that stays quick with a megabyte in it. A line is laid out as a whole at each key, so what
/// comes in at once is cut into lines that are short enough: behind a ";" where there is one, else at a
/// blank.
class LongTextEdit final : public QPlainTextEdit
{
    Q_OBJECT

public:
    using QPlainTextEdit::QPlainTextEdit;

    /// In place of `setPlainText`.
    void SetText(const QString &text);
    /// Puts another text in place of the user's, who can undo it. The caret goes to the end.
    void ReplaceText(const QString &text);

protected:
    void insertFromMimeData(const QMimeData *source) override;
};
