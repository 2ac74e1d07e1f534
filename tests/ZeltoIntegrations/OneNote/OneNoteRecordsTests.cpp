#include <ZeltoIntegrations/OneNote/OneNoteConstants.h>
#include <ZeltoIntegrations/OneNote/OneNoteExportConfiguration.h>
#include <ZeltoIntegrations/OneNote/OneNoteResponses.h>

#include <Platform/JSON/JSONCoding.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using State = IntegrationAttachmentState;

template <class T> void expectJSON(const T& value, const std::string& text) {
    EXPECT_EQ(JSONEncoder().encode(value).value(), text);
    EXPECT_EQ(JSONDecoder().decode<T>(text).value(), value);
}

template <class T> T decoded(const std::string& text) {
    return JSONDecoder().decode<T>(text).value();
}

template <class T> bool decodes(const std::string& text) {
    return JSONDecoder().decode<T>(text).has_value();
}

bool hasAt(const std::string& text) {
    return text.contains('@');
}

OneNoteUser userOf(const std::string& text) {
    return toOneNoteUser(decoded<OneNoteUserResponse>(text), hasAt);
}

std::vector<OneNoteNotebook> notebooksOf(const std::string& notebooks, const std::string& sections) {
    return toOneNoteNotebooks(decoded<OneNoteNotebooksResponse>(notebooks),
                              decoded<OneNoteSectionsResponse>(sections));
}

const OneNoteSection section{.id = "s1", .name = "Plan", .notebookId = "n1"};
const std::string sectionJSON = R"({"id":"s1","name":"Plan","notebookId":"n1"})";
const OneNoteNotebook notebook{.id = "n1", .name = "Work", .sections = {section}};
const std::string notebookJSON = R"({"id":"n1","name":"Work","sections":[)" + sectionJSON + "]}";
const OneNoteSaveToInfo saveTo{.notebook = notebook, .section = section};
const std::string saveToJSON = R"({"notebook":)" + notebookJSON + R"(,"section":)" + sectionJSON + "}";

} // namespace

TEST(OneNoteRecords, KeysAreTheFieldNamesAndAbsentOnesAreLeftOut) {
    expectJSON(OneNoteUser{.id = "u1", .name = "Me", .email = "e"}, R"({"id":"u1","name":"Me","email":"e"})");
    expectJSON(OneNoteUser{.id = "u"}, R"({"id":"u"})");
    expectJSON(section, sectionJSON);
    expectJSON(OneNoteSection{.id = "s"}, R"({"id":"s"})");
    expectJSON(notebook, notebookJSON);
    expectJSON(OneNoteNotebook{.id = "n"}, R"({"id":"n","sections":[]})");
    expectJSON(OneNoteFullData{.user = {.id = "u"}, .notebooks = {notebook}},
               R"({"user":{"id":"u"},"notebooks":[)" + notebookJSON + "]}");
    expectJSON(saveTo, saveToJSON);
}

TEST(OneNoteRecords, ConfigurationHasItsFieldsInOrder) {
    expectJSON(OneNoteExportConfiguration{.saveTo = saveTo,
                                          .saveAs = IntegrationExportContentType::externalLink,
                                          .userNote = "n",
                                          .userTitle = "t",
                                          .attachments = {{{7, "a", 3, State::selected}}},
                                          .externalLink = "l",
                                          .supportedContentTypes = {IntegrationExportContentType::pdf}},
               R"({"saveTo":)" + saveToJSON +
                   R"(,"saveAs":4,"userNote":"n","userTitle":"t",)"
                   R"("attachments":{"list":[{"id":7,"name":"a","size":3,"state":2}]},"externalLink":"l",)"
                   R"("supportedContentTypes":[0]})");
    expectJSON(OneNoteExportConfiguration{},
               R"({"saveAs":1,"attachments":{"list":[]},"supportedContentTypes":[]})");
}

TEST(OneNoteResponses, AreReadAsTheServiceWritesThem) {
    EXPECT_EQ(decoded<OneNoteUserResponse>(
                  R"({"@odata.context":"c","id":"1","displayName":"a","mail":null,"userPrincipalName":"p"})"),
              (OneNoteUserResponse{.id = "1", .displayName = "a", .userPrincipalName = "p"}));
    EXPECT_EQ(decoded<OneNoteSectionResponse>(
                  R"({"id":"1","displayName":"a","parentNotebook":{"id":"n","displayName":"b"}})")
                  .parentNotebookId(),
              "n");
    EXPECT_EQ(decoded<OneNoteSectionResponse>(R"({"id":"1","parentNotebook":{}})").parentNotebookId(),
              std::nullopt);
    EXPECT_EQ(decoded<OneNoteSectionResponse>(R"({"id":"1","parentNotebook":null})").parentNotebookId(),
              std::nullopt);
}

TEST(OneNoteResponses, WhatIsRequiredMustBeThere) {
    EXPECT_FALSE(decodes<OneNoteUserResponse>(R"({"mail":"m"})"));
    EXPECT_FALSE(decodes<OneNoteUserResponse>(R"({"id":1})"));
    EXPECT_FALSE(decodes<OneNoteNotebooksResponse>("{}"));
    EXPECT_FALSE(decodes<OneNoteNotebooksResponse>(R"({"value":[{"displayName":"n"}]})"));
    EXPECT_FALSE(decodes<OneNoteSectionsResponse>("{}"));
    EXPECT_FALSE(decodes<OneNoteSectionsResponse>(R"({"value":[{"parentNotebook":{"id":"n"}}]})"));
    EXPECT_FALSE(decodes<OneNoteSectionsResponse>(R"({"value":[{"id":"s","parentNotebook":"n"}]})"));
}

TEST(OneNoteUsers, HaveTheirMailOrANameToSignInWithThatIsAnEmail) {
    EXPECT_EQ(userOf(R"({"id":"1","displayName":"a","mail":"m@x","userPrincipalName":"p@x"})"),
              (OneNoteUser{.id = "1", .name = "a", .email = "m@x"}));
    EXPECT_EQ(userOf(R"({"id":"1","mail":null,"userPrincipalName":"p@x"})"),
              (OneNoteUser{.id = "1", .email = "p@x"}));
    EXPECT_EQ(userOf(R"({"id":"1"})"), OneNoteUser{.id = "1"});
}

TEST(OneNoteUsers, HaveNoEmailWhereTheNameToSignInWithIsNone) {
    EXPECT_EQ(userOf(R"({"id":"1","userPrincipalName":"live.com#someone"})"), OneNoteUser{.id = "1"});
    EXPECT_EQ(toOneNoteUser({.id = "1", .userPrincipalName = "p@x"}, nullptr), OneNoteUser{.id = "1"});
}

TEST(OneNoteNotebooks, HaveTheirSectionsInTheOrderOfTheResponse) {
    EXPECT_EQ(notebooksOf(R"({"value":[{"id":"n2"},{"id":"n1","displayName":"Work"}]})",
                          R"({"value":[{"id":"s3","parentNotebook":{"id":"n1"}},)"
                          R"({"id":"s2","displayName":"b","parentNotebook":{"id":"n2"}},)"
                          R"({"id":"s1","displayName":"a","parentNotebook":{"id":"n1"}}]})"),
              (std::vector<OneNoteNotebook>{
                  {.id = "n2", .sections = {{.id = "s2", .name = "b", .notebookId = "n2"}}},
                  {.id = "n1",
                   .name = "Work",
                   .sections = {{.id = "s3", .notebookId = "n1"},
                                {.id = "s1", .name = "a", .notebookId = "n1"}}}}));
}

TEST(OneNoteNotebooks, WithoutASectionAreLeftOut) {
    EXPECT_EQ(notebooksOf(R"({"value":[{"id":"empty"},{"id":"n1"}]})",
                          R"({"value":[{"id":"s","parentNotebook":{"id":"n1"}},)"
                          R"({"id":"t","parentNotebook":{"id":"other"}},{"id":"u"}]})"),
              (std::vector<OneNoteNotebook>{{.id = "n1", .sections = {{.id = "s", .notebookId = "n1"}}}}));
    EXPECT_EQ(notebooksOf(R"({"value":[]})", R"({"value":[]})"), std::vector<OneNoteNotebook>{});
}

TEST(OneNoteConstants, TheLimitIsThatOfTheService) {
    EXPECT_EQ(OneNoteConstants::attachmentSizeLimit, 104'857'600);
}

TEST(OneNoteExportConfiguration, DifferencesAreNamedInTheirOrder) {
    using Names = std::vector<std::string>;
    const OneNoteExportConfiguration offered{
        .saveTo = saveTo,
        .userTitle = "t",
        .attachments = {{{1, "a", 1, State::allowed}, {2, "b", 1, State::restricted}}}};
    EXPECT_EQ(offered.diff(offered, false), Names{});
    EXPECT_EQ(offered.diff(offered, true), Names{"attachments"});

    auto edited = offered;
    edited.attachments.list.front().state = State::selected;
    EXPECT_EQ(offered.diff(edited, true), Names{});
    edited.saveAs = IntegrationExportContentType::pdf;
    edited.userNote = "n";
    edited.userTitle = "u";
    edited.externalLink = "l";
    edited.saveTo->section.id = "s2";
    EXPECT_EQ(offered.diff(edited, false),
              (Names{"saveAs", "userNote", "userTitle", "attachments", "externalLink", "section"}));
    edited.saveTo = std::nullopt;
    EXPECT_EQ(offered.diff(edited, true),
              (Names{"saveAs", "userNote", "userTitle", "externalLink", "notebook", "section"}));
}

} // namespace zelto
