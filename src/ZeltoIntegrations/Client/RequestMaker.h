#pragma once

#include <Platform/HTTP/URLRequest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace zelto {

// Makes a request when it is about to be sent, unsigned; on any thread. Without one there is nothing to send.
using RequestMaker = std::function<std::optional<URLRequest>()>;

class FileDownload;

// What a client is asked to send.
struct RequestSource {
    RequestMaker make;
    std::optional<std::string> method; // where it is known beforehand
    // Where the body of a success goes; without it, into memory.
    std::shared_ptr<FileDownload> download = nullptr;

    static RequestSource of(URLRequest request) {
        auto method = request.method;
        return {[request = std::move(request)] { return std::optional(request); }, std::move(method)};
    }
};

} // namespace zelto
