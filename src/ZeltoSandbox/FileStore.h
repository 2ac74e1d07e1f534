#pragma once

#include <ZeltoSandbox/HTTP/SandboxResponse.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// The files that services received, for the page to open below "/files/".
class FileStore {
  public:
    // The path at which the file can be opened.
    std::string add(SpoolRange content, std::string name, std::string contentType);

    // `path` is what follows "/files/": "7". No content can run in the browser: what could is served as text
    // or as a download.
    SandboxResponse response(std::string_view path) const;

    void clear() { files_.clear(); }

  private:
    struct File {
        SpoolRange content;
        std::string name;
        std::string contentType;
    };

    std::map<std::uint64_t, File> files_;
    std::uint64_t last_ = 0;
};

} // namespace zelto::sandbox
