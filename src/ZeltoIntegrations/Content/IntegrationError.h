#pragma once

#include <Platform/Enum.h>
#include <Platform/Result.h>

namespace zelto {

// How an export failed. The case names are also the texts that analytics gets.
enum class IntegrationExportError : int {
    canceled = 0,
    internalError = 1,
    createBodyError = 2,
    convertError = 3,
    unsupportedFormat = 4,
    fileAlreadyExists = 5,
    oauthError = 6,
    connectionError = 7,
    createTaskError = 8,
    uploadAttachmentError = 9,
    urlEncodeError = 10,
    createUrlError = 11,
    xUrlCallbackError = 12,
};
ZELTO_ENUM(IntegrationExportError);

// How the loading of a service's data failed.
enum class IntegrationLoadError : int { internalError = 0, oauthError = 1, connectionError = 2 };
ZELTO_ENUM(IntegrationLoadError);

template <class T> using ExporterResult = Result<T, IntegrationExportError>;

} // namespace zelto
