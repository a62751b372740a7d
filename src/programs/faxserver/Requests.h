#pragma once

#include "server/wire/Frames.h"

#include <QByteArray>

/// Cuts the bytes that a client sends into requests.
///
/// Only some requests tell their length. The others end where the client stopped writing; where their text
/// shows that it is complete they are taken at once, otherwise the caller waits a moment for more.
namespace Requests {

struct Request
{
    qint32 lCommand = 0;
    QByteArray abBody;    ///< for the frame of a file its first block
    qint32 lFileSize = 0; ///< the frame of a file only
};

enum Outcome {
    cutNeedMore,   ///< a frame has begun and is not complete
    cutOpenEnded,  ///< a request as far as it goes; more of it may come
    cutWhole,      ///< a request has been taken
    cutPermission, ///< a "GoOn" has been taken
    cutBroken      ///< no frame of the protocol: the connection cannot be followed any more
};

/// Takes the first frame from `input`. An open-ended request stays in `input` until `isAll` says that
/// nothing more came.
Outcome Take(QByteArray &input, bool isAll, Request &request);

/// Replies with their length in front and a "GoOn" between their pieces; all others are short.
bool HasLongReply(qint32 command);

inline constexpr qsizetype lMostText = 64 * 1024;
inline constexpr qint32 lMostIds = 16 * 1024 * 1024;

} // namespace Requests
