#pragma once
// Virtual cameras served over USB/IP on this machine's loopback address, for `usbip attach` or another client.

#include "Directory.h"
#include "ExportedCamera.h"

#include <deque>
#include <list>
#include <thread>

namespace Orvi::UsbIp {

class Server {
  public:
    /// Port 0 takes any free one. Throws std::system_error.
    Server(const std::vector<std::shared_ptr<Vcam::VirtualCamera>> &cameras, std::uint16_t port);
    ~Server();

    std::uint16_t Port() const { return port_; }

  private:
    struct Connection {
        int descriptor = -1; ///< -1 once a session owns it
        bool isOver = false;
        std::thread thread;
    };

    void Accept();
    void Talk(Connection &connection, Socket socket);
    void List(const Socket &socket);
    void Import(Connection &connection, Socket &socket, const std::string &busId);
    void Forget(Connection &connection);
    void JoinEnded();

    std::deque<ExportedCamera> cameras_;
    Socket listener_;
    std::uint16_t port_;
    std::mutex mutex_;
    std::list<Connection> connections_;
    bool isStopping_ = false;
    std::thread acceptor_;
};

} // namespace Orvi::UsbIp
