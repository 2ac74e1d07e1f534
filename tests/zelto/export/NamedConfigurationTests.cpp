#include <export/NamedConfiguration.h>

#include <gtest/gtest.h>

namespace zelto::cli {

namespace {

using enum IntegrationAttachmentState;

JSONObject object(const std::string& json) {
    const auto value = JSONValue::parse(json);
    EXPECT_TRUE(value) << json;
    return value ? *value->asObject() : JSONObject();
}

JSONValue value(const std::string& json) {
    return *JSONValue::parse(json);
}

std::string text(const JSONObject& members) {
    return JSONValue(members).text().value();
}

constexpr auto record = R"({"saveAs":2,"dueDate":819795600,"deadline":820368000,"webLinkVisibility":1,)"
                        R"("teamId":7,"userTitle":"T","supportedContentTypes":[0,2,99],)"
                        R"("attachments":{"list":[{"id":4,"name":"a","size":9,"state":2}]}})";

TargetTree tree() {
    return {.levels = {"board", "list"},
            .nodes = {{"b1", "Work", {{"l1", "To Do"}, {"l2", "Done"}, {"l3", "Done"}, {"l4", ""}}},
                      {"b2", "Home/Garden", {{"l5", "To Do"}}}}};
}

std::string failureOf(const std::string& target, std::string_view otherKey = {}) {
    const auto found = findTarget(tree(), namedTarget(value(target)).value(), otherKey, "Trello+me");
    EXPECT_FALSE(found) << target;
    return found ? "" : found.error().message;
}

IntegrationAttachments message() {
    return {{{1, "a", 5, selected}, {2, "b", 6, allowed}, {3, "a", 7, allowed}, {4, "huge", 8, restricted}}};
}

std::vector<IntegrationAttachmentState> statesAfter(const std::string& list) {
    const auto named = attachmentsNamed(value(list), message(), "FILE");
    EXPECT_TRUE(named) << (named ? "" : named.error().message);
    std::vector<IntegrationAttachmentState> states;
    for (const auto& each : named->list) {
        states.push_back(each.state);
    }
    return states;
}

std::string attachmentsFailure(const std::string& list) {
    const auto named = attachmentsNamed(value(list), message(), "FILE");
    return named ? "" : named.error().message;
}

} // namespace

TEST(NamedConfiguration, HasNamesForNumbersAndDates) {
    auto configuration = object(record);
    writeNames(configuration);
    EXPECT_EQ(text(configuration),
              R"({"saveAs":"backLink","dueDate":"2026-12-24T09:00:00Z","deadline":"2026-12-31T00:00:00Z",)"
              R"("webLinkVisibility":"anyone","teamId":7,"userTitle":"T",)"
              R"("supportedContentTypes":["pdf","backLink",99],)"
              R"("attachments":{"list":[{"name":"a","size":9,"state":"selected"}]}})");
}

TEST(NamedConfiguration, IsReadInEitherForm) {
    auto configuration = object(record);
    EXPECT_TRUE(readNames(configuration, "FILE"));
    EXPECT_EQ(text(configuration), record);
    writeNames(configuration);
    EXPECT_TRUE(readNames(configuration, "FILE"));
    configuration.set("attachments", *object(record).find("attachments"));
    EXPECT_EQ(configuration, object(record));
}

TEST(NamedConfiguration, RefusesNamesThatThereAreNot) {
    const auto failureOf = [](const std::string& json) {
        auto configuration = object(json);
        const auto read = readNames(configuration, "FILE");
        return read ? "" : read.error().message;
    };
    EXPECT_EQ(failureOf(R"({"webLinkVisibility":"all"})"),
              "\"webLinkVisibility\" of FILE is one of onlyMe, anyone, team; not \"all\".");
    EXPECT_EQ(failureOf(R"({"attachments":{"list":[{"name":"a","state":"taken"}]}})"),
              "\"state\" of FILE is one of restricted, allowed, selected; not \"taken\".");
    EXPECT_TRUE(failureOf(R"({"saveAs":"PDF"})").starts_with("\"saveAs\" of FILE is one of pdf, "));
    EXPECT_TRUE(failureOf(R"({"supportedContentTypes":["x"]})").starts_with("\"supportedContentTypes\" of"));
    EXPECT_EQ(failureOf(R"({"dueDate":"soon"})"),
              "\"dueDate\" of FILE is no date like 2026-03-05 or 2026-03-05T14:00.");
}

TEST(NamedConfiguration, SelectsAttachmentsByNameAndThoseOfOneNameByTheirOrder) {
    using States = std::vector<IntegrationAttachmentState>;
    EXPECT_EQ(statesAfter(R"({"list":[{"name":"b","state":2}]})"),
              (States{allowed, selected, allowed, restricted}));
    EXPECT_EQ(statesAfter(R"(["a","b"])"), (States{selected, selected, allowed, restricted}));
    EXPECT_EQ(
        statesAfter(R"({"list":[{"name":"a","state":1},{"name":"a","state":2},{"name":"huge","state":0}]})"),
        (States{allowed, allowed, selected, restricted}));
    EXPECT_EQ(attachmentsFailure(R"(["c"])"), "The message has no attachment \"c\", which FILE names.");
    EXPECT_EQ(attachmentsFailure(R"(["b","b"])"), "The message has no attachment \"b\", which FILE names.");
    EXPECT_EQ(attachmentsFailure(R"(["huge"])"), "The service does not take the attachment \"huge\".");
    EXPECT_EQ(attachmentsFailure(R"([{"size":1}])"), "An attachment of FILE has no name.");
}

TEST(NamedConfiguration, AttachmentsAreNamedWhereAnIdentifierIsMissing) {
    EXPECT_TRUE(areNamed(value(R"(["a"])")));
    EXPECT_TRUE(areNamed(value(R"({"list":[{"id":1,"name":"a"},{"name":"b"}]})")));
    EXPECT_FALSE(areNamed(value(R"({"list":[{"id":1,"name":"a","size":1,"state":2}]})")));
    EXPECT_FALSE(areNamed(value(R"({"list":[]})")));
    EXPECT_FALSE(areNamed(value("7")));
}

TEST(NamedConfiguration, FindsATargetByTheNamesOrIdentifiersOfItsLevels) {
    const auto found = [](const std::string& target) {
        return findTarget(tree(), namedTarget(value(target)).value(), "user", "Trello+me").value();
    };
    EXPECT_EQ(found(R"({"board":"Work","list":"To Do"})"), (TargetPath{0, 0}));
    EXPECT_EQ(found(R"({"list":"to do","board":"home/garden","user":"x"})"), (TargetPath{1, 0}));
    EXPECT_EQ(found(R"({"board":"b1","list":"l3"})"), (TargetPath{0, 2}));
    EXPECT_EQ(found(R"("Work/To Do")"), (TargetPath{0, 0}));
    EXPECT_EQ(found(R"("l4")"), (TargetPath{0, 3}));
    EXPECT_FALSE(namedTarget(value(R"({"board":{"id":"b1"},"list":"To Do"})")));
}

TEST(NamedConfiguration, SaysWhichNameMeansNoTargetOrSeveral) {
    EXPECT_EQ(failureOf(R"({"board":"Play","list":"To Do"})"),
              "\"saveTo\": there is no board \"Play\"; there are Work, Home/Garden.");
    EXPECT_EQ(failureOf(R"({"board":"Work","list":"Done"})"),
              "\"saveTo\": \"Done\" means several: l2, l3; give the identifier.");
    EXPECT_EQ(failureOf(R"({"board":"Work"})"), "\"saveTo\" needs its list.");
    EXPECT_EQ(failureOf(R"({"board":"Work","list":"Done","user":"me"})"), "\"saveTo\" has no \"user\".");
    EXPECT_EQ(failureOf(R"("Play/To Do")"),
              "\"saveTo\": there is no board \"Play/To Do\"; there are Work, Home/Garden.");
}

TEST(NamedConfiguration, WritesAnIdentifierWhereANameMeansSeveralOrNone) {
    const auto names = [](const std::string& target) {
        const auto path = pathOf(tree(), value(target));
        return path ? text(namesOf(tree(), *path)) : "";
    };
    EXPECT_EQ(names(R"({"board":{"id":"b1"},"list":{"id":"l1"}})"), R"({"board":"Work","list":"To Do"})");
    EXPECT_EQ(names(R"({"board":{"id":"b1"},"list":{"id":"l3"}})"), R"({"board":"Work","list":"l3"})");
    EXPECT_EQ(names(R"({"board":{"id":"b1"},"list":{"id":"l4"}})"), R"({"board":"Work","list":"l4"})");
    EXPECT_EQ(names(R"({"board":{"id":"b1"},"list":{"id":"l5"}})"), "");
    EXPECT_EQ(names(R"({"board":"Work"})"), "");
}

TEST(NamedConfiguration, NamesATargetOfSeveralKindsUnderItsKind) {
    const TargetTree conversations{.levels = {"channel or person"},
                                   .nodes = {{"C1", "#general", {}, {"general"}, {}, "channel"},
                                             {"U1", "@general", {}, {"general"}, {}, "user"},
                                             {"U2", "@twin", {}, {}, {}, "user"},
                                             {"U3", "@twin", {}, {}, {}, "user"}},
                                   .kinds = {"channel", "user"}};
    const auto found = [&](const std::string& target) {
        const auto path = findTarget(conversations, namedTarget(value(target)).value(), {}, "Slack+me");
        return path ? nodeAt(conversations, *path).id : path.error().message;
    };
    EXPECT_EQ(found(R"({"channel":"#general"})"), "C1");
    EXPECT_EQ(found(R"({"channel":"General"})"), "C1");
    EXPECT_EQ(found(R"({"user":"general"})"), "U1");
    EXPECT_EQ(found(R"({"user":"U3"})"), "U3");
    EXPECT_EQ(found(R"("#general")"), "C1");
    EXPECT_EQ(found(R"({"user":"#general"})"),
              "\"saveTo\": there is no user \"#general\"; there are @general, @twin, @twin.");
    EXPECT_EQ(found(R"({"user":"@twin"})"),
              "\"saveTo\": \"@twin\" means several: @twin (U2), @twin (U3); give the identifier.");
    for (const auto* wrong : {R"({"team":"a"})", R"({"channel":"#general","user":"@general"})"}) {
        EXPECT_EQ(found(wrong), "\"saveTo\" takes one of channel, user.") << wrong;
    }
    EXPECT_EQ(text(namesOf(conversations, {0})), R"({"channel":"#general"})");
    EXPECT_EQ(text(namesOf(conversations, {1})), R"({"user":"@general"})");
    EXPECT_EQ(text(namesOf(conversations, {2})), R"({"user":"U2"})");
    EXPECT_EQ(indexWithIdentifier(conversations.nodes, "U2"), 2U);
    EXPECT_EQ(indexWithIdentifier(conversations.nodes, "u2"), std::nullopt);
}

TEST(NamedConfiguration, KnowsItsKeys) {
    constexpr std::string_view known[] = {"saveAs", "tags"};
    EXPECT_TRUE(checkKeys(object(R"({"tags":1})"), known, "FILE"));
    EXPECT_EQ(checkKeys(object(R"({"tags":1,"tag":2})"), known, "FILE").error().message,
              "FILE has a key that the service does not know: \"tag\"; it knows saveAs, tags.");
}

TEST(NamedConfiguration, MembersOfAnotherReplaceItsOwnAsAWhole) {
    auto configuration = object(R"({"saveTo":{"a":1},"tags":["x"],"userTitle":"T","saveAs":1})");
    replaceMembers(configuration, object(R"({"saveTo":{"b":2},"tags":null,"userTitle":null,"userNote":"N",)"
                                         R"("attachments":null,"dueDate":null})"));
    EXPECT_EQ(text(configuration),
              R"({"saveTo":{"b":2},"tags":[],"saveAs":1,"userNote":"N","attachments":{"list":[]}})");
}

} // namespace zelto::cli
