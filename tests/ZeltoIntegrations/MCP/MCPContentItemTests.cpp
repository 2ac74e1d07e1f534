#include "MCPText.h"

#include <ZeltoIntegrations/MCP/MCPContentItem.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

template <class Case> const Case* caseOf(const MCPResult<MCPContentItem>& item) {
    return item ? std::get_if<Case>(&item->value) : nullptr;
}

TEST(MCPContentItem, WritesEachKnownTypeInTheOrderOfItsKeys) {
    for (
        const auto* text : {
            R"({"type":"text","text":"t","annotations":{"z":1,"a":2},"_meta":{"k":1e400}})",
            R"({"type":"image","data":"AAAA","mimeType":"image/png","annotations":[1],"_meta":false})",
            R"({"type":"audio","data":"%not base64","mimeType":"audio/wav","annotations":{},"_meta":{}})",
            R"({"type":"resource","resource":{"uri":"u","mimeType":"m","text":"t","blob":"b","_meta":{}},"annotations":1,"_meta":2})",
            R"({"type":"resource_link","uri":"u","name":"n","title":"t","description":"d","mimeType":"m","annotations":1,"_meta":2})",
            R"({"type":"text","text":""})",
            R"({"type":"image","data":"","mimeType":""})",
            R"({"type":"audio","data":"","mimeType":""})",
            R"({"type":"resource","resource":{"uri":""}})",
            R"({"type":"resource_link","uri":""})",
        }) {
        EXPECT_EQ(rewritten<MCPContentItem>(text), text);
    }
}

TEST(MCPContentItem, ReadsKeysInAnyOrderAndNullsAsAbsent) {
    EXPECT_EQ(rewritten<MCPContentItem>(
                  R"({"_meta":null,"mimeType":"m","x":1,"annotations":null,"data":"d","type":"image"})"),
              R"({"type":"image","data":"d","mimeType":"m"})");
    EXPECT_EQ(rewritten<MCPContentItem>(R"({"name":null,"uri":"u","type":"resource_link"})"),
              R"({"type":"resource_link","uri":"u"})");
}

TEST(MCPContentItem, AnUnknownTypeIsKeptWhole) {
    const std::string video = R"({"type":"video","url":"x"})";
    const auto item = decodedFrom<MCPContentItem>(video);
    const auto* unknown = caseOf<MCPContentItem::Unknown>(item);
    ASSERT_NE(unknown, nullptr);
    EXPECT_EQ(unknown->type, "video");
    EXPECT_EQ(unknown->payload, JSONValue(JSONObject{{"type", "video"}, {"url", "x"}}));
    EXPECT_EQ(encodedFrom(*item), video);
    for (const auto* text :
         {R"({"type":"Text","text":1})", R"({"type":"","a":[1.0,1e999,12345678901234567890123]})",
          R"({"z":1,"type":"text ","a":2})", R"({"type":"resourceLink"})",
          R"({"n":{"type":"text"},"type":"😀"})"}) {
        EXPECT_EQ(rewritten<MCPContentItem>(text), text);
    }
}

TEST(MCPContentItem, AnUnknownItemIsWrittenAsItsPayloadAlone) {
    EXPECT_EQ(encodedFrom(MCPContentItem::unknown("video", JSONValue(JSONObject{{"type", "other"}}))),
              R"({"type":"other"})");
    EXPECT_EQ(encodedFrom(MCPContentItem::unknown("video", 7)), "7");
}

TEST(MCPContentItem, AKnownTypeThatLacksAKeyFails) {
    EXPECT_EQ(decodingErrorOf<MCPContentItem>(R"({"type":"image","data":"AAAA"})"),
              (DecodingError{DecodingError::Reason::missingKey, "mimeType", "the required key is missing"}));
    EXPECT_EQ(decodingErrorOf<MCPContentItem>(R"({"type":"audio","mimeType":"m"})").path, "data");
    EXPECT_EQ(decodingErrorOf<MCPContentItem>(R"({"type":"text"})").path, "text");
    EXPECT_EQ(decodingErrorOf<MCPContentItem>(R"({"type":"resource"})").path, "resource");
    EXPECT_EQ(decodingErrorOf<MCPContentItem>(R"({"type":"resource","resource":{}})").path, "resource.uri");
    EXPECT_EQ(decodingErrorOf<MCPContentItem>(R"({"type":"resource_link","name":"n"})").path, "uri");
    EXPECT_EQ(
        decodingErrorOf<std::vector<MCPContentItem>>(R"([{"type":"text","text":"t"},{"type":"text"}])").path,
        "[1].text");
}

TEST(MCPContentItem, NeedsATypeThatIsText) {
    EXPECT_EQ(decodingErrorOf<MCPContentItem>(R"({"text":"t"})").path, "type");
    EXPECT_EQ(decodingErrorOf<MCPContentItem>(R"({"type":1})").reason, DecodingError::Reason::mismatch);
    EXPECT_EQ(decodingErrorOf<MCPContentItem>(R"({"type":null})").reason, DecodingError::Reason::mismatch);
    EXPECT_EQ(decodingErrorOf<MCPContentItem>(R"("text")").reason, DecodingError::Reason::mismatch);
}

TEST(MCPContentItem, ALinkNeedsNothingButItsAddress) {
    const auto item = decodedFrom<MCPContentItem>(R"({"type":"resource_link","uri":"x"})");
    const auto* link = caseOf<MCPContentItem::ResourceLink>(item);
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->content, MCPResourceLinkContent{"x"});
}

TEST(MCPContentItem, TextIsWrittenWithItsTypeThoughReadingNeverLooksAtIt) {
    EXPECT_EQ(rewritten<MCPTextContent>(R"({"text":"t"})"), R"({"type":"text","text":"t"})");
    EXPECT_EQ(rewritten<MCPTextContent>(R"({"type":9,"text":"t"})"), R"({"type":"text","text":"t"})");
    EXPECT_EQ(rewritten<MCPResourceLinkContent>(R"({"uri":"u"})"), R"({"type":"resource_link","uri":"u"})");
    EXPECT_EQ(rewritten<MCPResourceContent>(R"({"resource":{"uri":"u"}})"),
              R"({"type":"resource","resource":{"uri":"u"}})");
}

TEST(MCPContentItem, BinaryContentReadsAndWritesItsType) {
    const auto item = decodedFrom<MCPContentItem>(R"({"type":"audio","data":"d","mimeType":"m"})");
    const auto* audio = caseOf<MCPContentItem::Audio>(item);
    ASSERT_NE(audio, nullptr);
    EXPECT_EQ(audio->content.contentType, MCPContentItem::RawType::audio);
    EXPECT_EQ(decodingErrorOf<MCPBinaryContent>(R"({"data":"d","mimeType":"m"})").path, "type");
    EXPECT_EQ(decodingErrorOf<MCPBinaryContent>(R"({"type":"video","data":"d","mimeType":"m"})").path,
              "type");
    EXPECT_EQ(encodedFrom(MCPContentItem::image({MCPContentItem::RawType::audio, "d", "m"})),
              R"({"type":"audio","data":"d","mimeType":"m"})");
}

TEST(MCPContentItem, ThereAreFiveKnownTypesInOrder) {
    std::vector<std::string> texts;
    for (const auto& each : casesOf<MCPContentItem::RawType>()) {
        texts.push_back(encodedFrom(each.value));
    }
    EXPECT_EQ(texts, (std::vector<std::string>{R"("text")", R"("image")", R"("audio")", R"("resource")",
                                               R"("resource_link")"}));
}

} // namespace
} // namespace zelto
