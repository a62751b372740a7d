#pragma once

#include <QString>

/// What the demonstration's user has on her disk: an offer (PDF, two pages), the letter to it (RTF) and a
/// drawing of the goods (PNG). Writes them as "offer.pdf", "letter.rtf" and "bench.png" into `folder`, which
/// must exist. False when one cannot be written.
bool WriteDocuments(const QString &folder);
