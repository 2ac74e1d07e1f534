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

    // The same for HTML, of which the page shows what the function makes of it: a document that neither loads
    // nor runs anything, in a frame.
    using ShowHTML = std::string (*)(std::string_view html);
    std::string addDocument(SpoolRange html, ShowHTML show);

    // `path` is what follows "/files/": "7". No content can run in the browser: what could is served as text
    // or as a download.
    SandboxResponse response(std::string_view path) const;

    void clear() { files_.clear(); }

  private:
    struct File {
        SpoolRange content;
        std::string name;
        std::string contentType;
        ShowHTML show = nullptr;
    };

    std::map<std::uint64_t, File> files_;
    std::uint64_t last_ = 0;
};

} // namespace zelto::sandbox
