#pragma once

#include <Platform/FileError.h>
#include <Platform/HTTP/URLRequest.h>
#include <Platform/Result.h>
#include <ZeltoIntegrations/Accounts/ServiceType.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Helpers/ExporterHelperMultipartData.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// What every exporter and client reaches for: bodies of uploads, form encoding, file names, the services'
// names. Holds nothing; any thread. A body's files are opened when it is built and read when it is sent.
class ExportServiceHelper {
  public:
    using Parameters = std::map<std::string, std::string>;

    // No value for `Calendar`, the only service without a product name.
    static std::optional<std::string> getServiceProductNameFor(ServiceType type);

    // The product name, and "+" and the user name where one is given. A service without a product name gives
    // a new random text at each call.
    static std::string getServiceIdentifierFor(ServiceType type, const std::optional<std::string>& username);

    // The media type by the path's extension, else "application/octet-stream".
    static std::string mimeType(const std::filesystem::path& path);

    // The name and the extension, which brings its dot. When sanitised, a run of "/" is one "_", and the name
    // comes out in Latin letters without diacritics.
    static std::string fileName(std::string_view name, std::string_view extension, bool sanitise = true);
    static std::string pdfName(std::string_view name, bool sanitise = true);
    static std::string txtName(std::string_view name, bool sanitise = true);

    // A path of that name in a fresh folder of the temporary directory.
    static Result<std::filesystem::path, FileError> pdfFilePath(std::string_view name, bool sanitise = true);
    static Result<std::filesystem::path, FileError> txtFilePath(std::string_view name, bool sanitise = true);

    // False for `nullopt` and for a text of white space and line ends alone.
    static bool isNotEmpty(const std::optional<std::string>& text);

    // Sets a multipart/related body of the file's metadata and its content in Base64, as the drives'
    // multipart upload takes it. A file that cannot be read, or a name that is not UTF-8, leaves the request
    // as it is.
    static void makeDriveFileUploadRequest(const std::filesystem::path& filePath, const std::string& fileName,
                                           const std::optional<std::string>& parentId, URLRequest& request);

    // Set a multipart/form-data body. A file that cannot be read is left out.
    static void makeFilesUploadRequest(const Parameters& parameters,
                                       const std::vector<std::filesystem::path>& filePaths,
                                       URLRequest& request, std::string_view fieldName = "file");
    static void makeFilesUploadRequest(const Parameters& parameters,
                                       const std::vector<ExporterHelperMultipartData>& parts,
                                       URLRequest& request);

    // name=value pairs joined by "&"; all but letters and digits is escaped, so a blank is %20.
    static std::string urlEncodedString(const Parameters& parameters);

    // A form-encoded POST; no value for a text that is no URL.
    static std::optional<URLRequest> urlEncodedRequest(std::string_view url, const Parameters& parameters);

    // For JSON that is made by hand. Control characters other than \n, \b, \f, \r and \t pass as they are.
    static std::string escapeJSONString(std::string_view text);

    // The content type that a configuration starts with: the one used last if it is still supported, else the
    // default.
    static IntegrationExportContentType saveAs(std::optional<IntegrationExportContentType> lastUsed,
                                               const IntegrationExportContentTypes& contentTypes);
};

} // namespace zelto
