#pragma once

struct Call;

/// How one attempt to send a fax ends.
struct CallEnd
{
    int lStatus = 0;     ///< a `FaxKind`; `kindSending` for one that is to be tried again
    int lLastStatus = 0; ///< what it means instead when no further attempt is allowed
    int lSeconds = 0;    ///< what dialling, ringing and hanging up take at a real machine
    int lPages = 0;      ///< that have gone out behind that
};

/// The machines at the other end of the simulated lines.
namespace RemoteEnd {

/// The last three digits of the number decide; the README beside this lists them.
CallEnd Answer(const Call &call);

} // namespace RemoteEnd
