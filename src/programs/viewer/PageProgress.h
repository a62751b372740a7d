#pragma once

#include <functional>

/// Told after each page how many are done. False asks to end the work early.
using PageProgress = std::function<bool(int pagesDone)>;
