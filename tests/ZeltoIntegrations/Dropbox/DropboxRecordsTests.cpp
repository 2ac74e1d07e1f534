#include <ZeltoIntegrations/Dropbox/DropboxRecords.h>

#include <ZeltoIntegrations/Dropbox/DropboxResponses.h>

#include <gtest/gtest.h>

namespace zelto {

TEST(DropboxRecords, AnEntryHasItsTagUnderAKeyWithADot) {
    const DropboxMetadata entry{.tag = "file", .name = "A", .path_lower = "/a", .id = "id:a"};
    const auto text = JSONEncoder().encode(entry).value();
    EXPECT_EQ(text, R"({".tag":"file","name":"A","path_lower":"/a","id":"id:a"})");
    EXPECT_EQ(JSONDecoder().decode<DropboxMetadata>(text), entry);
    EXPECT_EQ(JSONDecoder().decode<DropboxMetadata>(R"({".tag":"file","name":"A","id":"id:a","rev":"1"})"),
              (DropboxMetadata{.tag = "file", .name = "A", .path_lower = std::nullopt, .id = "id:a"}));
    for (const auto* incomplete :
         {R"({"name":"A","id":"a"})", R"({".tag":"file","id":"a"})", R"({".tag":"file","name":"A"})"}) {
        EXPECT_FALSE(JSONDecoder().decode<DropboxMetadata>(incomplete)) << incomplete;
    }
}

TEST(DropboxRecords, AnEntryIsAFolderByItsTagAndKnownByItsIdentifier) {
    EXPECT_EQ(toIntegrationImportFile({.tag = "folder", .name = "n", .path_lower = "/n", .id = "id:1"}),
              IntegrationImportFile::folder("id:1", "n"));
    for (const auto* tag : {"file", "deleted", ""}) {
        EXPECT_EQ(toIntegrationImportFile({.tag = tag, .name = "n", .path_lower = {}, .id = "id:1"}),
                  IntegrationImportFile::file("id:1", "n"));
    }
}

TEST(DropboxRecords, AMatchIsTheMetadataOfItsMetadata) {
    const auto response = JSONDecoder().decode<DropboxSearchResponse>(
        R"({"has_more":true,"cursor":"c","matches":[{"match_type":{".tag":"filename"},"metadata":)"
        R"({".tag":"metadata","metadata":{".tag":"file","name":"A","id":"id:a"}}}]})");
    ASSERT_TRUE(response);
    EXPECT_EQ(toDropboxMatches(*response),
              (std::vector<DropboxMetadata>{{.tag = "file", .name = "A", .path_lower = {}, .id = "id:a"}}));
}

} // namespace zelto
