#pragma once
// What goes back to the host: a queue that a thread of its own writes to the socket, so that neither the device nor
// the reading of further messages ever waits for the host.

#include "Messages.h"
#include "Socket.h"
#include "Transfer.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace Orvi::UsbIp {

/// A header and the data that follows it, held by its transfer.
struct Reply {
    Header header;
    std::unique_ptr<Transfer> transfer; ///< null when there is no data
};

class Replies {
  public:
    Replies(const Socket &socket, TransferPool &pool);
    ~Replies();

    /// Never waits.
    void Push(Reply reply);
    /// Writes what is queued, if the host takes it within a second, then ends the connection. Does not wait for it.
    void Finish();
    /// Ends the connection at once.
    void Abort();

  private:
    void Run();
    bool Write(const std::vector<Reply> &batch);

    const Socket &socket_;
    TransferPool &pool_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Reply> queue_;
    bool isFinishing_ = false, isAborted_ = false;
    std::thread writer_;
};

} // namespace Orvi::UsbIp
