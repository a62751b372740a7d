#include "platform/SystemPorts.h"

SystemPorts::SystemPorts(Sockets &sockets)
    : ports{pump, timers, clock, ids, message, folders, shell, sound, blocks, instance, sockets}
{
}
