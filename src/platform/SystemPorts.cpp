#include "platform/SystemPorts.h"

SystemPorts::SystemPorts()
    : ports{pump,  timers, clock,    ids,     message,     folders,     shell,
            sound, blocks, instance, sockets, fileDialogs, fontDialogs, printers}
{
}
