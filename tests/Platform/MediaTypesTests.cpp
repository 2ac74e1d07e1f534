#include <Platform/MediaTypeTableInternal.h>
#include <Platform/MediaTypes.h>

#include <gtest/gtest.h>

#include <algorithm>

using namespace zelto;

TEST(MediaTypes, KnowTheFilesThatMailsBring) {
    const std::map<std::string, std::string> expected{
        {"pdf", "application/pdf"},
        {"txt", "text/plain"},
        {"html", "text/html"},
        {"csv", "text/csv"},
        {"md", "text/markdown"},
        {"rtf", "application/rtf"},
        {"json", "application/json"},
        {"xml", "application/xml"},
        {"yaml", "application/yaml"},
        {"doc", "application/msword"},
        {"xls", "application/vnd.ms-excel"},
        {"ppt", "application/vnd.ms-powerpoint"},
        {"docx", "application/vnd.openxmlformats-officedocument.wordprocessingml.document"},
        {"xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
        {"pptx", "application/vnd.openxmlformats-officedocument.presentationml.presentation"},
        {"odt", "application/vnd.oasis.opendocument.text"},
        {"ods", "application/vnd.oasis.opendocument.spreadsheet"},
        {"odp", "application/vnd.oasis.opendocument.presentation"},
        {"pages", "application/vnd.apple.pages"},
        {"numbers", "application/vnd.apple.numbers"},
        {"key", "application/vnd.apple.keynote"},
        {"epub", "application/epub+zip"},
        {"ics", "text/calendar"},
        {"vcf", "text/vcard"},
        {"eml", "message/rfc822"},
        {"msg", "application/vnd.ms-outlook"},
        {"p7s", "application/pkcs7-signature"},
        {"jpg", "image/jpeg"},
        {"jpeg", "image/jpeg"},
        {"png", "image/png"},
        {"gif", "image/gif"},
        {"svg", "image/svg+xml"},
        {"webp", "image/webp"},
        {"avif", "image/avif"},
        {"heic", "image/heic"},
        {"heif", "image/heif"},
        {"jxl", "image/jxl"},
        {"tif", "image/tiff"},
        {"ico", "image/vnd.microsoft.icon"},
        {"psd", "image/vnd.adobe.photoshop"},
        {"mp3", "audio/mpeg"},
        {"m4a", "audio/mp4"},
        {"wav", "audio/wav"},
        {"flac", "audio/flac"},
        {"ogg", "audio/ogg"},
        {"opus", "audio/ogg"},
        {"mp4", "video/mp4"},
        {"mov", "video/quicktime"},
        {"mkv", "video/x-matroska"},
        {"webm", "video/webm"},
        {"avi", "video/x-msvideo"},
        {"3gp", "video/3gpp"},
        {"zip", "application/zip"},
        {"7z", "application/x-7z-compressed"},
        {"rar", "application/vnd.rar"},
        {"gz", "application/gzip"},
        {"bz2", "application/x-bzip2"},
        {"xz", "application/x-xz"},
        {"zst", "application/zstd"},
        {"tar", "application/x-tar"},
        {"wasm", "application/wasm"},
        {"js", "text/javascript"},
        {"css", "text/css"},
        {"py", "text/x-python"},
        {"ttf", "font/ttf"},
        {"woff2", "font/woff2"},
        {"sqlite", "application/vnd.sqlite3"},
        {"apk", "application/vnd.android.package-archive"},
        {"exe", "application/vnd.microsoft.portable-executable"},
    };
    for (const auto& [extension, type] : expected) {
        EXPECT_EQ(mediaTypeForExtension(extension), type) << extension;
    }
}

TEST(MediaTypes, AreFoundInAnyCase) {
    EXPECT_EQ(mediaTypeForExtension("HEIC"), "image/heic");
    EXPECT_EQ(mediaTypeForExtension("Pdf"), "application/pdf");
}

TEST(MediaTypes, OfUnknownExtensionsAreNone) {
    for (const auto* extension : {"", "nosuchextension", ".pdf", "pdf ", "pd", "\u0436"}) {
        EXPECT_EQ(mediaTypeForExtension(extension), std::nullopt) << extension;
    }
}

TEST(MediaTypes, GiveTheUsualExtensionBack) {
    const std::map<std::string, std::string> expected{
        {"text/plain", "txt"},
        {"text/html", "html"},
        {"text/markdown", "md"},
        {"text/calendar", "ics"},
        {"text/vcard", "vcf"},
        {"text/javascript", "js"},
        {"message/rfc822", "eml"},
        {"image/jpeg", "jpg"},
        {"image/jpg", "jpg"},
        {"image/tiff", "tiff"},
        {"image/svg+xml", "svg"},
        {"image/heic", "heic"},
        {"audio/mpeg", "mp3"},
        {"audio/ogg", "ogg"},
        {"audio/mp4", "m4a"},
        {"audio/x-wav", "wav"},
        {"video/mp4", "mp4"},
        {"video/mpeg", "mpeg"},
        {"video/quicktime", "mov"},
        {"application/octet-stream", "bin"},
        {"application/pdf", "pdf"},
        {"application/zip", "zip"},
        {"application/x-zip-compressed", "zip"},
        {"application/msword", "doc"},
        {"application/vnd.ms-excel", "xls"},
        {"application/vnd.openxmlformats-officedocument.wordprocessingml.document", "docx"},
        {"application/pkcs7-mime", "p7m"},
        {"application/x-pkcs7-signature", "p7s"},
        {"Application/PDF", "pdf"},
        {"text/plain; charset=utf-8", "txt"},
        {"text/plain ;charset=utf-8", "txt"},
        {"APPLICATION/VND.MS-EXCEL.SHEET.MACROENABLED.12", "xlsm"},
    };
    for (const auto& [type, extension] : expected) {
        EXPECT_EQ(extensionForMediaType(type), extension) << type;
    }
    for (const auto* type : {"", "text", "text/", "no/such", ";", "text/plain2"}) {
        EXPECT_EQ(extensionForMediaType(type), std::nullopt) << type;
    }
}

TEST(MediaTypes, LieInSortedTablesWithoutDoubles) {
    const auto types = mediaTypesOfExtensions();
    EXPECT_GT(types.size(), 1000u);
    const auto notRising = [](auto key) {
        return [key](const auto& a, const auto& b) { return !(a.*key < b.*key); };
    };
    EXPECT_EQ(std::ranges::adjacent_find(types, notRising(&MediaTypeOfExtension::extension)), types.end());
    const auto preferred = preferredExtensions();
    EXPECT_EQ(std::ranges::adjacent_find(preferred, notRising(&ExtensionOfMediaType::type)), preferred.end());
}

TEST(MediaTypes, EveryTypeHasAnExtensionThatLeadsBackToIt) {
    for (const auto& row : mediaTypesOfExtensions()) {
        const auto extension = extensionForMediaType(row.type);
        ASSERT_TRUE(extension) << row.type;
        EXPECT_EQ(mediaTypeForExtension(*extension), row.type);
    }
    for (const auto& row : preferredExtensions()) {
        EXPECT_TRUE(mediaTypeForExtension(row.extension)) << row.type;
    }
}
