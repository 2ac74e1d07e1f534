#include <export/Targets.h>

#include <gtest/gtest.h>

namespace zelto::cli {

namespace {

const TargetTree tree{.levels = {"board", "list"},
                      .nodes = {{"b1", "Work", {{"l1", "To Do"}, {"l2", "Done"}}},
                                {"b2", "Home", {{"l3", "To Do"}}},
                                {"b3", "A/B", {{"l4", "C/D"}, {"l5", ""}}},
                                {"b4", "Twins", {{"l6", "Same"}, {"l7", "Same"}}},
                                {"b5", "work", {{"l8", "Done"}}},
                                {"b6", "", {{"l9", "Ärger"}}}}};

std::string found(const std::string& text) {
    const auto path = findTarget(tree, text, "Trello+me");
    return path ? targetName(tree, *path) : path.error().message;
}

// Folders of a drive.
const TargetTree folders{.levels = {"folder"},
                         .nodes = {{"/", "/"},
                                   {"f1", "Team", {{"f2", "Plans", {{"f3", "Old"}}}, {"f4", "Ärger"}}},
                                   {"f5", "Home", {{"f6", "Plans"}}}},
                         .isNested = true};

std::string foundFolder(const std::string& text) {
    const auto path = findTarget(folders, text, "Dropbox+me");
    return path ? targetName(folders, *path) + " " + nodeAt(folders, *path).id : path.error().message;
}

// Channels and people of a chat.
const TargetTree conversations{.levels = {"channel or person"},
                               .nodes = {{"C1", "#general", {}, {"general"}, {}, "channel"},
                                         {"C2", "#anna", {}, {"anna"}, "private", "channel"},
                                         {"U1", "@anna", {}, {"anna", "Ärger", "@Ärger"}, "Ärger", "user"},
                                         {"U2", "@robin", {}, {"robin", "anna", "@anna"}, "anna", "user"},
                                         {"U3", "@sam", {}, {"sam", "Twin", "@Twin"}, "Twin", "user"},
                                         {"U4", "@kim", {}, {"kim", "Twin", "@Twin"}, "Twin", "user"}},
                               .kinds = {"channel", "user"}};

std::string foundConversation(const std::string& text) {
    const auto path = findTarget(conversations, text, "Slack+me");
    return path ? nodeAt(conversations, *path).id : path.error().message;
}

} // namespace

TEST(Targets, OfOneLevelAreAlsoFoundByTheirOtherNames) {
    for (const auto* text : {"#general", "general", "C1", "#General", "GENERAL", "c1"}) {
        EXPECT_EQ(foundConversation(text), "C1") << text;
    }
    for (const auto* text : {"@robin", "robin", "U2", "Robin"}) {
        EXPECT_EQ(foundConversation(text), "U2") << text;
    }
    for (const auto* text : {"Ärger", "@Ärger", "ärger", "@ÄRGER"}) {
        EXPECT_EQ(foundConversation(text), "U1") << text;
    }
}

TEST(Targets, GoByTheirNamesBeforeTheOtherNamesOfOthers) {
    EXPECT_EQ(foundConversation("@anna"), "U1");
    EXPECT_EQ(foundConversation("@Anna"), "U1");
    EXPECT_EQ(foundConversation("#anna"), "C2");
}

TEST(Targets, WithAnotherNameInCommonNeedTheIdentifier) {
    EXPECT_EQ(foundConversation("Twin"),
              "--target: \"Twin\" means several: @sam (U3), @kim (U4); give the identifier.");
    EXPECT_EQ(foundConversation("@twin"),
              "--target: \"@twin\" means several: @sam (U3), @kim (U4); give the identifier.");
    EXPECT_EQ(foundConversation("anna"), "--target: \"anna\" means several: #anna (C2), @anna (U1), "
                                         "@robin (U2); give the identifier.");
    EXPECT_EQ(foundConversation("nobody"), "--target: there is no channel or person \"nobody\"; there are "
                                           "#general, #anna, @anna, @robin, @sam, @kim.");
}

TEST(Targets, AreListedWithARemarkAndAreNamedWithoutIt) {
    EXPECT_EQ(linesOf(conversations, {}), "#general  (C1)\n#anna  (C2, private)\n@anna  (U1, Ärger)\n"
                                          "@robin  (U2, anna)\n@sam  (U3, Twin)\n@kim  (U4, Twin)\n");
    EXPECT_EQ(pathLinesOf(conversations), "general\n#anna\n@anna\n@robin\n@sam\n@kim\n");
    EXPECT_EQ(pathLinesOf({.levels = {"channel"}, .nodes = {{"C1", "#a", {}, {"C2"}}, {"C2", "#b"}}}),
              "#a\n#b\n");
    EXPECT_EQ(pathLinesOf({.levels = {"channel"}, .nodes = {{"C1", "#a\nb", {}, {"a\nb"}}}}), "C1\n");
    EXPECT_EQ(linesOf({.levels = {"channel"}, .nodes = {{"C1", "", {}, {}, "private"}}}, {}),
              "C1  (private)\n");
}

TEST(Targets, OfWhichNoneIsChosenAreSuggestedOrListed) {
    TargetTree channels{.levels = {"channel"}, .nodes = {{"C1", "general"}}};
    EXPECT_EQ(noTarget(channels, "Slack", "Slack+me").next, NextCommand::again("--target", "general"));
    channels.suggestsFirst = false;
    EXPECT_EQ(noTarget(channels, "Slack", "Slack+me").next, "zelto targets Slack+me");
    EXPECT_EQ(noTarget(channels, "Slack", "Slack+me").message, "No target is chosen.");
    channels.nodes.clear();
    EXPECT_EQ(noTarget(channels, "Slack", "Slack+me").next, "zelto targets Slack+me --refresh");
}

TEST(Targets, OfAnotherOptionAreNamedForIt) {
    const TargetTree stages{.levels = {"stage"}, .nodes = {}, .option = "--stage"};
    EXPECT_EQ(nothingToChoose(stages, "CRM"), "CRM shows no stage for --stage; make one there first.");
    EXPECT_EQ(nothingToChoose(tree, "CRM"),
              "CRM shows no board with a list to put it into; make one there first.");
    EXPECT_EQ(targetsUnknown("CRM", "CRM+me", "--stage").message,
              "What --stage names is not known: the data of CRM were never loaded.");
}

TEST(Targets, OfFoldersInFoldersAreNamedByPathIdentifierOrAUniqueName) {
    for (const auto* text : {"/Team/Plans", "Team/Plans", "/Team/Plans/", "/team/PLANS", "f2"}) {
        EXPECT_EQ(foundFolder(text), "/Team/Plans f2") << text;
    }
    for (const auto* text : {"Old", "old", "/Team/Plans/Old"}) {
        EXPECT_EQ(foundFolder(text), "/Team/Plans/Old f3") << text;
    }
    EXPECT_EQ(foundFolder("ärger"), "/Team/Ärger f4");
    for (const auto* text : {"/", "", "//"}) {
        EXPECT_EQ(foundFolder(text), "/ /") << text;
    }
    EXPECT_EQ(foundFolder("Plans"), "--target: \"Plans\" means several: /Team/Plans (f2), /Home/Plans (f6); "
                                    "give the identifier.");
    EXPECT_EQ(foundFolder("/Plans"), "--target: there is no folder \"/Plans\"; there are /, /Team, "
                                     "/Team/Plans, /Team/Plans/Old, /Team/Ärger, /Home, /Home/Plans.");
}

TEST(Targets, OfFoldersInFoldersAreListedAsATreeAndByPath) {
    EXPECT_EQ(linesOf(folders, {}), "/\nTeam  (f1)\n  Plans  (f2)\n    Old  (f3)\n  Ärger  (f4)\n"
                                    "Home  (f5)\n  Plans  (f6)\n");
    EXPECT_EQ(pathLinesOf(folders),
              "/\n/Team\n/Team/Plans\n/Team/Plans/Old\n/Team/Ärger\n/Home\n/Home/Plans\n");
    EXPECT_TRUE(holdsTargets(folders));
}

TEST(Targets, AreNamedByNamesOrIdentifiersInAnyMixture) {
    for (const auto* text : {"Work/To Do", "b1/To Do", "Work/l1", "b1/l1", "l1"}) {
        EXPECT_EQ(found(text), "Work/To Do") << text;
    }
    EXPECT_EQ(found("A/B/C/D"), "A/B/C/D");
    EXPECT_EQ(found("A/B/l5"), "A/B/l5");
    EXPECT_EQ(found("b6/Ärger"), "b6/Ärger");
}

TEST(Targets, AreFoundWithoutRegardToCaseWhereNothingFitsExactly) {
    EXPECT_EQ(found("home/TO DO"), "Home/To Do");
    EXPECT_EQ(found("b6/ÄRGER"), "b6/Ärger");
    EXPECT_EQ(found("work/Done"), "work/Done");
    EXPECT_EQ(found("Work/Done"), "Work/Done");
    EXPECT_EQ(found("WORK/Done"),
              "--target: \"WORK/Done\" means several: Work/Done (l2), work/Done (l8); give the identifier.");
}

TEST(Targets, AreNamedAloneWhereNoOtherHasTheName) {
    EXPECT_EQ(found("Ärger"), "b6/Ärger");
    EXPECT_EQ(found("ärger"), "b6/Ärger");
    EXPECT_EQ(found("C/D"), "A/B/C/D");
    EXPECT_EQ(found("Same"), "--target: \"Same\" is a list; name its board too: Twins/Same, Twins/Same.");
    EXPECT_EQ(found("Done"), "--target: \"Done\" is a list; name its board too: Work/Done, work/Done.");
}

TEST(Targets, ThatAreNamedTwiceNeedTheIdentifier) {
    EXPECT_EQ(
        found("Twins/Same"),
        "--target: \"Twins/Same\" means several: Twins/Same (l6), Twins/Same (l7); give the identifier.");
    EXPECT_EQ(found("Twins/l7"), "Twins/Same");
}

TEST(Targets, ThatAreMissingAreReportedWithWhatThereIs) {
    EXPECT_EQ(found("Work"), "--target: \"Work\" is a board; add one of its lists: Work/To Do, Work/Done.");
    EXPECT_EQ(found("Work/Doing"),
              "--target: there is no list \"Work/Doing\"; the board \"Work\" has To Do, Done.");
    EXPECT_EQ(found("To Do"), "--target: \"To Do\" is a list; name its board too: Work/To Do, Home/To Do.");
    EXPECT_EQ(found("Elsewhere/To Do"),
              "--target: there is no board \"Elsewhere/To Do\"; there are Work, Home, A/B, Twins, work, b6.");
    EXPECT_EQ(found(""), "--target: there is no board \"\"; there are Work, Home, A/B, Twins, work, b6.");
    const auto failed = findTarget(tree, "x", "Trello+me and you");
    EXPECT_EQ(failed.error().next, "zelto targets 'Trello+me and you' --refresh");
    EXPECT_EQ(failed.error().status, ExitStatus::wrongUsage);
}

TEST(Targets, OfOneLevelAreNamedAlone) {
    const TargetTree projects{.levels = {"project"}, .nodes = {{"p1", "Inbox"}, {"p2", "A/B"}}};
    EXPECT_EQ(findTarget(projects, "inbox", "a"), TargetPath{0});
    EXPECT_EQ(findTarget(projects, "A/B", "a"), TargetPath{1});
    EXPECT_EQ(findTarget(projects, "p2", "a"), TargetPath{1});
    EXPECT_EQ(findTarget(projects, "x", "a").error().message,
              "--target: there is no project \"x\"; there are Inbox, A/B.");
}

TEST(Targets, AreListedAsPathsOfWhichEachMeansOne) {
    EXPECT_EQ(pathLinesOf(tree), "Work/To Do\nWork/Done\nHome/To Do\nA/B/C/D\nA/B/l5\nl6\nl7\nwork/Done\n"
                                 "b6/Ärger\n");
    EXPECT_EQ(pathLinesOf({.levels = {"project"}, .nodes = {{"p1", "a\nb"}, {"p2", "p3"}, {"p3", ""}}}),
              "p1\np2\np3\n");
    EXPECT_EQ(pathLinesOf({.levels = {"board", "list"},
                           .nodes = {{"b1", "A/B", {{"l1", "C"}}}, {"b2", "A", {{"l2", "B/C"}}}}}),
              "l1\nl2\n");
}

TEST(Targets, AHundredThousandAreSearchedAndListedAtMostTen) {
    TargetTree large{.levels = {"board", "list"}, .nodes = {}};
    constexpr auto count = 100'000;
    for (int i = 0; i < count; ++i) {
        const auto id = std::to_string(i);
        large.nodes.push_back({"b" + id, "Board " + id, {{"l" + id, "To Do"}}});
    }
    EXPECT_EQ(findTarget(large, "Board 99999/To Do", "a"), (TargetPath{99'999, 0}));
    EXPECT_EQ(findTarget(large, "l77777", "a"), (TargetPath{77'777, 0}));
    const auto message = findTarget(large, "none", "a").error().message;
    EXPECT_TRUE(message.ends_with("Board 8, Board 9 and 99990 more.")) << message;
}

TEST(Targets, AreShownAsATreeWithNothingThatControlsATerminal) {
    Terminal terminal;
    terminal.outputIsTerminal = true;
    EXPECT_EQ(linesOf({.levels = {"board", "list"},
                       .nodes = {{"b\x1b", "W\x1b]52;c;x\x07", {{"l1", "a\nb"}, {"l2", ""}}}}},
                      terminal),
              "W\\u{1B}]52;c;x\\u{7}  (b\\u{1B})\n  a\\nb  (l1)\n  l2\n");
}

} // namespace zelto::cli
