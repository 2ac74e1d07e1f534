#pragma once

#include <string>
#include <utility>

namespace zelto {

// Which file of a drive to bring to disk, and the name that it is to have there.
class DownloadFileInfo {
  public:
    DownloadFileInfo(std::string fileId, std::string fileName)
        : fileId_(std::move(fileId)), fileName_(std::move(fileName)) {}

    const std::string& fileId() const { return fileId_; }

    const std::string& fileName() const { return fileName_; }

    bool operator==(const DownloadFileInfo&) const = default;

  private:
    std::string fileId_;
    std::string fileName_;
};

} // namespace zelto
