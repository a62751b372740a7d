#include "compose/forms/LongTextEdit.h"

#include <QMimeData>

namespace {

constexpr qsizetype lLongestLine = 1000; // characters

/// Characters of the first of several lines that such a line is cut into.
qsizetype FirstPiece(QStringView line)
{
    const QStringView start = line.left(lLongestLine);
    const qsizetype separator = start.lastIndexOf(u';');
    if (separator >= 0)
        return separator + 1;
    const qsizetype blank = start.lastIndexOf(u' ');
    if (blank > 0)
        return blank;
    return start.back().isHighSurrogate() ? start.size() - 1 : start.size();
}

QString CutLongLines(const QString &text)
{
    QString cut;
    cut.reserve(text.size() + text.size() / 64);
    for (QStringView line : QStringView(text).split(u'\n')) {
        while (line.size() > lLongestLine) {
            const qsizetype piece = FirstPiece(line);
            cut.append(line.left(piece)).append('\n');
            line = line.mid(line[piece] == ' ' ? piece + 1 : piece); // a line break is a blank to its reader
        }
        cut.append(line).append('\n');
    }
    cut.chop(1);
    return cut;
}

} // namespace

void LongTextEdit::SetText(const QString &text)
{
    setPlainText(CutLongLines(text));
}

void LongTextEdit::ReplaceText(const QString &text)
{
    QTextCursor all(document());
    all.select(QTextCursor::Document);
    all.insertText(CutLongLines(text));
    moveCursor(QTextCursor::End);
}

void LongTextEdit::insertFromMimeData(const QMimeData *source)
{
    if (isReadOnly() || !source->hasText())
        return;
    textCursor().insertText(CutLongLines(source->text()));
    ensureCursorVisible();
}
