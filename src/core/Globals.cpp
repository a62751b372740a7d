#include "core/Globals.h"

Globals &Global()
{
    static Globals globals;
    return globals;
}
