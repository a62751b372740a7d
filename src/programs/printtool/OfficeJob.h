#pragma once

#include <QString>

#include <stop_token>

/// One office document on its way to pages.
struct OfficeJob
{
    QString strPath;   ///< the document
    QString strEnding; ///< what tells its form, as `FileType` has it
    QString strName;   ///< for texts that a user reads
    QString strFile;   ///< what the office program is given: a copy under a name without meaning
    QString strPdf;    ///< the result's full path; empty when it failed
    QString strReason; ///< why it failed: a sentence

    bool IsOpen() const { return strPdf.isEmpty() && strReason.isEmpty(); }

    /// Names `strFile`, the document of that number in the folder, and writes it there in a form that the
    /// office program reads right. Half done when it is asked to stop. Raises `ConversionError`.
    void HandOver(const QString &folder, int number, const std::stop_token &stop);

private:
    void Copy(const std::stop_token &stop) const;
    void WriteText(const std::stop_token &stop) const;
};

/// Raises the `ConversionError` that tells why a file in that folder could not be written.
[[noreturn]] void RaiseNotWritten(const QString &folder);
