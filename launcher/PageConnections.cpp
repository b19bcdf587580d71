// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PageConnections.h"

#include "LoopbackPeer.h"
#include "Report.h"

#include <algorithm>
#include <tuple>

#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

const auto longestIdleTime = 10s;
const size_t mostConnections = 64; // the web engine has 6, a player 1 or 2

} // namespace

PageConnections::PageConnections(const sockaddr_in &server)
    : m_server(server)
{
}

bool PageConnections::admits(const sockaddr_in &client)
{
    const auto user = LoopbackPeer::user(client, m_server);
    if (user == geteuid()) {
        makeRoom();
        return true;
    }
    if (user && !m_refusalIsTold) {
        report(QString("user %1 of this PC was refused the pages, which are for the user of the desk box alone; this "
                       "is not said again")
                   .arg(*user));
        m_refusalIsTold = true;
    }
    return false;
}

void PageConnections::open(MHD_Connection *connection, int socket)
{
    m_connections[connection] = {socket, false, Clock::now()};
}

void PageConnections::close(MHD_Connection *connection)
{
    m_connections.erase(connection);
}

void PageConnections::waitForRequest(MHD_Connection *connection)
{
    const auto found = m_connections.find(connection);
    if (found != m_connections.end())
        found->second = {found->second.socket, false, Clock::now()};
}

void PageConnections::waitForReader(MHD_Connection *connection)
{
    const auto found = m_connections.find(connection);
    if (found != m_connections.end())
        found->second.isAnswered = true;
}

int PageConnections::endIdle()
{
    const auto now = Clock::now();
    auto next = Clock::time_point::max();
    for (auto connection = m_connections.begin(); connection != m_connections.end();) {
        const auto last = connection->second.waitsSince + longestIdleTime;
        const bool isWaiting = !connection->second.isAnswered;
        if (isWaiting && last <= now) {
            connection = end(connection);
            continue;
        }
        if (isWaiting)
            next = std::min(next, last);
        ++connection;
    }
    return next == Clock::time_point::max() ? -1
                                            : int(std::chrono::ceil<std::chrono::milliseconds>(next - now).count());
}

std::chrono::milliseconds PageConnections::idleTime(const Connection &connection)
{
    if (!connection.isAnswered)
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - connection.waitsSince);
    tcp_info info = {};
    socklen_t size = sizeof info;
    getsockopt(connection.socket, IPPROTO_TCP, TCP_INFO, &info, &size);
    return std::chrono::milliseconds(info.tcpi_last_data_sent);
}

PageConnections::Connections::iterator PageConnections::end(Connections::iterator connection)
{
    shutdown(connection->second.socket, SHUT_RDWR); // which its server sees, and closes it
    return m_connections.erase(connection);
}

void PageConnections::makeRoom()
{
    if (m_connections.size() < mostConnections)
        return;
    // Those that wait for a request go first, whatever they did before, then answers that are read no more.
    end(std::min_element(m_connections.begin(), m_connections.end(), [](const auto &one, const auto &other) {
        return std::make_tuple(one.second.isAnswered, idleTime(other.second))
            < std::make_tuple(other.second.isAnswered, idleTime(one.second));
    }));
}
