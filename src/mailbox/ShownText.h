#pragma once

#include <QString>

/// Text from outside as one line of a list or a tree: line breaks and other characters that steer the drawing
/// become blanks, and what is longer than any column ends in "…".
QString ToListText(const QString &text);
