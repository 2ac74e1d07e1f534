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

// Ends a task: the body and the response, or an error. If the error came after the head, the response is
// given too.
using DataTaskCompletion =
    Callback<std::optional<Data>, std::shared_ptr<const URLResponse>, std::optional<URLError>>;

class URLSessionState;

// Sends requests over HTTP. All sessions of the process share one I/O thread and one pool of connections
// (HTTP/2 where offered), so a session is cheap to create and to release. Any thread.
//
// https, and plain http to loopback hosts only. Redirects are followed only to the same scheme, host and
// port, five at most: GET by 301, 302, 303, 307 and 308, other methods by 307 and 308 with the same body; any
// other redirect is the final response. A POST, PATCH or DELETE is never sent twice: when its connection dies
// before a response, it ends with `connectionLost`.
//
// When the process ends by exit() or by returning from main, tasks that begin after that end with
// `cancelled`, and running tasks do not end unless they are cancelled.
//
// Completions and the delegate are called on the delegate queue: never on the I/O thread, and, for a caller
// on that queue, never before resume() has returned.
class URLSession {
  public:
    // Without a delegate queue the session creates its own; one that is given must be serial. The delegate is
    // held until the session is invalidated or released and its last task has ended.
    explicit URLSession(URLSessionConfiguration configuration,
                        std::shared_ptr<URLSessionDataDelegate> delegate = nullptr,
                        std::shared_ptr<OperationQueue> delegateQueue = nullptr);

    // Running tasks continue without the session.
    ~URLSession();
    URLSession(const URLSession&) = delete;
    URLSession& operator=(const URLSession&) = delete;

    // A task whose events go to the delegate. Null when the session is invalidated.
    std::shared_ptr<URLSessionDataTask> dataTask(URLRequest request);

    // A task with its own completion, called once; the delegate gets none of its events. When the session is
    // invalidated the result is null, and the completion is abandoned without a call.
    std::shared_ptr<URLSessionDataTask> dataTask(URLRequest request, DataTaskCompletion completion);

    // Existing tasks continue to their end, no new ones can be made, and the delegate is released after that.
    void finishTasksAndInvalidate();

    const URLSessionConfiguration& configuration() const;

  private:
    std::shared_ptr<URLSessionDataTask> makeTask(URLRequest request, DataTaskCompletion completion);

    std::shared_ptr<URLSessionState> state_;
};

} // namespace zelto
