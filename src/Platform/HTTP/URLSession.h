#pragma once

#include <Platform/Completion.h>
#include <Platform/Data.h>
#include <Platform/HTTP/URLError.h>
#include <Platform/HTTP/URLRequest.h>
#include <Platform/HTTP/URLResponse.h>
#include <Platform/HTTP/URLSessionConfiguration.h>
#include <Platform/HTTP/URLSessionDataDelegate.h>
#include <Platform/HTTP/URLSessionTask.h>
#include <Platform/Operations/OperationQueue.h>

#include <memory>
#include <optional>

namespace zelto {

// The end of a task with a completion: body and response, or an error. With an error after the head has come,
// the response is there too.
using DataTaskCompletion =
    Callback<std::optional<Data>, std::shared_ptr<const URLResponse>, std::optional<URLError>>;

class URLSessionState;

// Sends requests over HTTP. All sessions of the process share one I/O thread and one pool of connections
// (HTTP/2 where offered), so a session is cheap to make and to release. Any thread.
//
// https, and plain http to loopback hosts alone. Redirects are followed to the same scheme, host and port
// alone, five at most: GET by 301, 302, 303, 307 and 308, other methods by 307 and 308 with the same body;
// any other redirect is the answer. A POST, PATCH or DELETE is never sent twice: when its connection dies
// before an answer, it ends with `connectionLost`.
//
// When the process ends by exit() or by returning from main, what is begun late ends with `cancelled`, and
// what is under way has no end unless it is cancelled.
//
// Completions and the delegate are called on the delegate queue, never on the I/O thread and never before
// resume() has returned to a caller on that queue.
class URLSession {
  public:
    // Without a queue the session makes its own, a serial one. A queue that is given must be serial. The
    // delegate is held until the session is invalidated or released and its last task has ended.
    explicit URLSession(URLSessionConfiguration configuration,
                        std::shared_ptr<URLSessionDataDelegate> delegate = nullptr,
                        std::shared_ptr<OperationQueue> delegateQueue = nullptr);

    // Tasks go on to their end without it.
    ~URLSession();
    URLSession(const URLSession&) = delete;
    URLSession& operator=(const URLSession&) = delete;

    // A task that the delegate hears of. Nothing when the session is invalidated.
    std::shared_ptr<URLSessionDataTask> dataTask(URLRequest request);

    // A task with its own completion, called once; the delegate does not hear of it. When the session is
    // invalidated there is no task, and the completion is abandoned uncalled.
    std::shared_ptr<URLSessionDataTask> dataTask(URLRequest request, DataTaskCompletion completion);

    // Tasks that were made end as they would, new ones are not made, and the delegate is let go after that.
    void finishTasksAndInvalidate();

    const URLSessionConfiguration& configuration() const;

  private:
    std::shared_ptr<URLSessionDataTask> makeTask(URLRequest request, DataTaskCompletion completion);

    std::shared_ptr<URLSessionState> state_;
};

} // namespace zelto
