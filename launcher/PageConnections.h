// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <unordered_map>

#include <netinet/in.h>

struct MHD_Connection;

/// The connections of a page server: of this user alone, not too many, and none that asks for nothing.
class PageConnections
{
public:
    explicit PageConnections(const sockaddr_in &server);

    /// Whether a new connection is one of this user's. If it is, there is room for it, if need be in place of another.
    bool admits(const sockaddr_in &client);
    void open(MHD_Connection *connection, int socket);
    void close(MHD_Connection *connection);
    /// What a connection waits for: its client's next request, or that the client takes the answer.
    void waitForRequest(MHD_Connection *connection);
    void waitForReader(MHD_Connection *connection);

    /// Ends those that have been waiting too long for a request. Returns when to do so again, in milliseconds, -1 if
    /// nothing waits.
    int endIdle();

private:
    using Clock = std::chrono::steady_clock;

    struct Connection
    {
        int socket;
        bool isAnswered; // which may take any time, if a player pauses
        Clock::time_point waitsSince;
    };
    using Connections = std::unordered_map<MHD_Connection *, Connection>;

    static std::chrono::milliseconds idleTime(const Connection &connection);
    Connections::iterator end(Connections::iterator connection);
    void makeRoom();

    const sockaddr_in m_server;
    Connections m_connections; // without those that are ended
    bool m_refusalIsTold = false;
};
