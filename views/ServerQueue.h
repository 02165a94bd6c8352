// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace starbloom {

/// What has been sent to the screen's server and not been read by it yet, asked of the system and not of the server,
/// which would have to answer and be waited for.
///
/// Borrows the connection's socket. Made on the GUI thread, used on any.
class ServerQueue {
public:
    /// Nothing is known of a negative socket, or one that is closed.
    explicit ServerQueue(int socket)
        : m_socket(socket) {}

    /// The application's connection to an X11 server; on other window systems nothing is known.
    static ServerQueue ofApplication();

    bool isKnown() const { return m_socket >= 0; }

    /// Whether the server has read all that was sent; false when nothing is known.
    bool isEmpty() const;

private:
    int m_socket;
};

} // namespace starbloom
