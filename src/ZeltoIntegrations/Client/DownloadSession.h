#pragma once

#include <Platform/HTTP/URLSession.h>

#include <memory>

namespace zelto {

// The one session of all downloads of a client, so that its limit of simultaneous transfers counts for them
// together. It has no limit on the size of a response. Any thread.
class DownloadSession {
  public:
    explicit DownloadSession(URLSessionConfiguration configuration);

    // A task whose events go to a delegate of its own, which is released after the last one.
    std::shared_ptr<URLSessionDataTask> dataTask(URLRequest request,
                                                 std::shared_ptr<URLSessionDataDelegate> delegate);

  private:
    class Dispatcher;

    const std::shared_ptr<Dispatcher> dispatcher_;
    URLSession session_;
};

} // namespace zelto
