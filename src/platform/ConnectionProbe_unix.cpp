#include "platform/ConnectionProbe.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

ConnectionProbe::ConnectionProbe(qintptr socketDescriptor)
    : lDescriptor(fcntl(static_cast<int>(socketDescriptor), F_DUPFD_CLOEXEC, 0))
{
}

ConnectionProbe::~ConnectionProbe()
{
    if (lDescriptor >= 0)
        close(lDescriptor);
}

bool ConnectionProbe::IsReset() const
{
    tcp_info info{};
    socklen_t length = sizeof info;
    return getsockopt(lDescriptor, IPPROTO_TCP, TCP_INFO, &info, &length) == 0 &&
           info.tcpi_state == TCP_CLOSE;
}
