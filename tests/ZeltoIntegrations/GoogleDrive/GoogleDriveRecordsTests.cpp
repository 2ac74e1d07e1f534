#include <ZeltoIntegrations/GoogleDrive/GoogleDriveRecords.h>

#include <ZeltoIntegrations/GoogleDrive/GoogleDriveResponses.h>

#include <gtest/gtest.h>

namespace zelto {

TEST(GoogleDriveRecords, ANameIsComparedWithTheExtensionOfItsType) {
    struct Row {
        std::string name;
        std::optional<std::string> mimeType;
        std::string compared;
    };

    const Row rows[] = {
        {"Title", "application/pdf", "Title.pdf"},
        {"Title.pdf", "application/pdf", "Title.pdf"},
        {"Title.PDF", "application/pdf", "Title.PDF"},
        {"Title.txt", "application/pdf", "Title.txt"},
        {"photo", "image/jpeg", "photo.jpg"},
        {"photo.", "image/jpeg", "photo..jpg"},
        {".hidden", "text/plain", ".hidden.txt"},
        {"a/b", "text/plain", "a/b.txt"},
        {"Title", std::nullopt, "Title"},
        {"Title", "x-unknown/type", "Title"},
        {"Title", "", "Title"},
        {"Title", "application/vnd.google-apps.document", "Title"},
        {"Title", "application/vnd.google-apps.folder", "Title"},
        {"", "text/plain", ".txt"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(getNameWithExtension({.id = "1", .name = row.name, .mimeType = row.mimeType}), row.compared)
            << row.name << " " << row.mimeType.value_or("");
    }
}

TEST(GoogleDriveRecords, AnEntryIsAFolderByItsType) {
    EXPECT_EQ(
        toIntegrationImportFile({.id = "1", .name = "n", .mimeType = "application/vnd.google-apps.folder"}),
        IntegrationImportFile::folder("1", "n"));
    for (const auto& type : {std::optional<std::string>(), std::optional<std::string>("text/plain"),
                             std::optional<std::string>("application/vnd.google-apps.document")}) {
        EXPECT_EQ(toIntegrationImportFile({.id = "1", .name = "n", .mimeType = type}),
                  IntegrationImportFile::file("1", "n"));
    }
}

TEST(GoogleDriveRecords, AUserIsKeptByItsFields) {
    const GoogleDriveUser user{.displayName = "Me", .email = "me@example.org"};
    const auto text = JSONEncoder().encode(user).value();
    EXPECT_EQ(text, R"({"displayName":"Me","email":"me@example.org"})");
    EXPECT_EQ(JSONDecoder().decode<GoogleDriveUser>(text), user);
}

} // namespace zelto
