#pragma once

#include <QString>

class FaxDocument;

/// Why a fax could not be saved or printed: a sentence for the user, empty when the user gave up himself.
struct SaveError
{
    QString strProblem;
};

/// The zero-based page cannot be read, or has changed since it was shown.
[[noreturn]] void RaiseUnreadable(const FaxDocument &fax, int page);
