#pragma once

#include <QList>
#include <QString>

struct ConversionResult;
struct Document;

/// What the tool tells its user, one or several lines, with "\r\n" between them. Texts hold what documents
/// are called, so they may hold anything that a file name can hold; see `StatusChannel` for what the client
/// reads.
namespace StatusTexts {

/// A document's name as one short line: what would steer a screen becomes a blank, a long one is cut in its
/// middle.
QString ShownName(const QString &name);

/// "Converting letter.pdf (page 3 of 12)", all counted from 1; the document's number only where there are
/// several.
QString ConvertingPage(const Document &document, int page, int pageCount, int number, int documentCount);

/// Every document that failed, with its reason, a line each; or why there is no fax at all. Each line holds
/// "failed.". Documents beyond a few hundred are counted only.
QString Failure(const ConversionResult &result);

QString Success(int pages);

} // namespace StatusTexts
