#pragma once

#include "Support/Completed.h"

#include <Platform/HTTP/URLSession.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

namespace zelto {

// How a task with a completion ended.
struct TaskEnd {
    std::optional<Data> data;
    std::shared_ptr<const URLResponse> response;
    std::optional<URLError> error;

    std::string text() const { return data ? std::string(viewOf(*data)) : "(nothing)"; }

    const HTTPURLResponse& http() const { return dynamic_cast<const HTTPURLResponse&>(*response); }

    int status() const { return response ? http().statusCode() : 0; }

    std::optional<URLErrorCode> code() const { return error ? std::optional(error->code) : std::nullopt; }

    static DataTaskCompletion into(Completed<TaskEnd>& end) {
        return [callback = end.callback<Callback<TaskEnd>>()](auto data, auto response, auto error) mutable {
            callback(TaskEnd{std::move(data), std::move(response), std::move(error)});
        };
    }

    // Sends the request and waits for the end.
    static TaskEnd of(URLSession& session, URLRequest request) {
        Completed<TaskEnd> end;
        session.dataTask(std::move(request), into(end))->resume();
        return end.value();
    }
};

} // namespace zelto
