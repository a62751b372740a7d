#pragma once

class WatchedRun;

/// Serves the request that the client has left in the shared string, to its end. The result is the program's
/// exit code: 0 for a fax, 1 for none, 2 when there is nobody who asks. Raises the system's error when the
/// string cannot be had.
int ServeRequest(WatchedRun &run);
