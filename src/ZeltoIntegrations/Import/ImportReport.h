#pragma once

#include <ZeltoIntegrations/Client/FileDownload.h>
#include <ZeltoIntegrations/Import/DownloadFileInfo.h>

#include <optional>
#include <vector>

namespace zelto {

// What came of each file of one call of downloadFiles(), for a host to show when only some of them came: no
// file that has come whole is removed.
struct ImportReport {
    struct File {
        DownloadFileInfo info;
        std::optional<DownloadResult> result; // no value for a download that was not begun or has not ended

        bool operator==(const File&) const = default;
    };

    std::vector<File> files; // in the order that was asked for

    bool operator==(const ImportReport&) const = default;
};

} // namespace zelto
