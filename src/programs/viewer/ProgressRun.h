#pragma once

#include "PageProgress.h"

#include <functional>

class QString;
class QWidget;

/// Runs `work` on a thread of its own while the event loop goes on, and returns when it has ended. After half
/// a second a window over `parent` tells how many of `pages` are done (0: nobody knows) and can cancel: then
/// the progress that `work` is given returns false. When the work has not ended a while after that, it is
/// left behind and this returns false; so `work` must own all that it uses, and raise nothing.
bool RunWithProgress(QWidget *parent, const QString &text, int pages,
                     std::function<void(const PageProgress &)> work);
