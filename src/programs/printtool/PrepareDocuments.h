#pragma once

#include "Document.h"

#include <QList>
#include <QString>

#include <functional>
#include <stop_token>

/// A document that cannot be faxed, for the final text.
struct FailedDocument
{
    QString strName;   ///< its bare name
    QString strReason; ///< a sentence
};

/// Finds out what each document is, and has those that need a converter converted: fills `kind` and
/// `strReadable`, so that `OpenDocument` can open it. Files are made in `workFolder` only. `tell` is given
/// lines for the user. What cannot be faxed is added to `failed`, and its `strReadable` stays empty; nothing
/// is raised for it. Returns within 0.3 s of a request to stop, with the documents half done.
void PrepareDocuments(QList<Document> &documents, const QString &workFolder, std::stop_token stop,
                      const std::function<void(const QString &status)> &tell, QList<FailedDocument> &failed);
