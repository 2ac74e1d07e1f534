#pragma once

#include <zelto/ServiceCommands.h>

#include <algorithm>
#include <string>

namespace zelto {

// How targets are listed, completed and chosen, for CommandFacts that also have
//
//     static void listNoTarget(Server&);         // the account has none
//     static constexpr auto targetLines;         // as `targets` prints them
//     static constexpr auto targetData;          // the members of `targets --json`, without braces
//     static constexpr auto noTarget;            // what `targets` prints of that account
//     static constexpr auto noTargetError;       // the case of an export without a target
//     static constexpr auto chosen;              // a target that is not the first one: its path,
//     static constexpr auto chosenName;          // a text that names it without the level above, or in
//                                                // other letters,
//     static constexpr auto chosenData;          // and the member "saveTo" of a configuration with it
//     static constexpr auto ambiguousName;       // of several targets,
//     static constexpr auto ambiguity;           // and what is said of that name
//     static constexpr auto unknownName;         // of none,
//     static constexpr auto absence;             // and what is said of that name
template <CommandFacts Facts> class TargetCommands : public ServiceCommands<Facts> {
  protected:
    void loseTargets() {
        Facts::listNoTarget(this->service);
        ASSERT_EQ(this->run({"targets", this->account, "--refresh"}).output,
                  std::string(Facts::noTarget) + "\n");
    }

    void expectWrong(const std::string& target, const std::string& message) {
        const ExpectedFailure expected{2, "wrongUsage", message, this->refresh};
        for (const auto* command : {"export", "config"}) {
            this->expectFailure(this->withMail(command, {"--target", target}), expected);
        }
        EXPECT_EQ(this->sent().size(), 0U);
    }

    // The configuration that `config` prints.
    JSONObject offered(const ZeltoProgram::Arguments& more = {}) const {
        const auto outcome = this->run(this->withMail("config", more));
        EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
        const auto document = outcome.json();
        return document.asObject() ? *document.asObject() : JSONObject();
    }

    static std::string savedTo(const JSONObject& configuration) {
        const auto* target = configuration.find("saveTo");
        return target ? target->text().value() : "";
    }
};

TYPED_TEST_SUITE_P(TargetCommands);

TYPED_TEST_P(TargetCommands, ShowWhatIsRemembered) {
    EXPECT_EQ(this->run({"targets", this->to}).output, TypeParam::targetLines);
    EXPECT_EQ(this->run({"targets", this->account, "--json"}).output,
              std::string(R"({"result":"success",)") + TypeParam::targetData + "}\n");
    EXPECT_EQ(this->sent().size(), 0U);
}

TYPED_TEST_P(TargetCommands, ShowPathsThatTheOptionTakes) {
    EXPECT_EQ(this->run({"targets", this->to, "--paths"}).output, TypeParam::targetPaths);
    std::vector<std::string> all;
    for (const auto& path : this->targets()) {
        all.push_back(this->savedTo(this->offered({"--target", path})));
        EXPECT_NE(all.back(), "") << path;
    }
    std::ranges::sort(all);
    EXPECT_EQ(std::ranges::adjacent_find(all), all.end());
}

TYPED_TEST_P(TargetCommands, CompleteTheTargetsOfTheNamedAccount) {
    const auto completed = [&](const std::string& words) {
        return this->zelto
            .runShell("source <(zelto completion bash)\nCOMP_WORDS=(zelto export a.eml " + words +
                      ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_zelto\nprintf '%s\\n' \"${COMPREPLY[@]}\"")
            .output;
    };
    const auto start = this->targets().front().substr(0, 2);
    std::string expected;
    for (auto path : this->targets()) {
        for (auto at = path.find(' '); at != std::string::npos; at = path.find(' ', at + 2)) {
            path.insert(at, "\\");
        }
        expected += path.starts_with(start) ? path + "\n" : "";
    }
    EXPECT_EQ(completed("--to " + this->to + " --target " + start), expected);
    EXPECT_EQ(completed("--to = " + this->account + " --target = " + start), expected);
    EXPECT_EQ(completed("--target " + start), "\n");
    EXPECT_EQ(this->sent().size(), 0U);
}

TYPED_TEST_P(TargetCommands, ShowNothingToChooseOnceTheServiceListsNone) {
    TypeParam::listNoTarget(this->service);
    EXPECT_EQ(this->run({"targets", this->to}).output, TypeParam::targetLines);
    this->loseTargets();
    const auto requests = this->sent().size();
    EXPECT_GT(requests, 0U);
    EXPECT_EQ(this->run({"targets", this->to}).output, std::string(TypeParam::noTarget) + "\n");
    EXPECT_EQ(this->sent().size(), requests);
}

TYPED_TEST_P(TargetCommands, TakeTheFirstTargetWhereNoneIsNamed) {
    EXPECT_EQ(this->exportTitle().output, this->madeIn(this->usualTarget()));
}

TYPED_TEST_P(TargetCommands, TakeAPathOrANameThatIsUnique) {
    for (const auto* named : {TypeParam::chosen, TypeParam::chosenName}) {
        EXPECT_EQ(this->savedTo(this->offered({"--target", named})), TypeParam::chosenData);
        EXPECT_EQ(this->exportTitle({"--target", named}).output, this->madeIn(TypeParam::chosen));
    }
}

TYPED_TEST_P(TargetCommands, OfferTheLastTargetAgain) {
    ASSERT_EQ(this->exportTitle({"--target", TypeParam::chosen}).status, 0);
    EXPECT_EQ(this->savedTo(this->offered()), TypeParam::chosenData);
    EXPECT_EQ(this->exportTitle().output, this->madeIn(TypeParam::chosen));
}

TYPED_TEST_P(TargetCommands, RefuseANameOfSeveralTargets) {
    this->expectWrong(TypeParam::ambiguousName, TypeParam::ambiguity);
}

TYPED_TEST_P(TargetCommands, RefuseANameOfNoTarget) {
    this->expectWrong(TypeParam::unknownName, TypeParam::absence);
}

TYPED_TEST_P(TargetCommands, MakeNothingForAnAccountWithoutTargets) {
    this->useNewAccount();
    this->loseTargets();
    EXPECT_EQ(this->savedTo(this->offered()), "");
    const auto before = this->sent().size();
    const auto document = this->expectFailure(
        this->exportOf(), {1, TypeParam::noTargetError,
                           std::string("No target is chosen: ") + TypeParam::noTarget, this->refresh});
    EXPECT_EQ(document.find("made"), nullptr);
    EXPECT_EQ(this->sent().size(), before);
}

TYPED_TEST_P(TargetCommands, MakeNothingOfAConfigurationWithoutATarget) {
    auto configuration = this->offered();
    EXPECT_TRUE(configuration.erase("saveTo"));
    const auto file = this->zelto.home.write("config.json", JSONValue(configuration).text().value()).string();
    const auto withFirst = this->exportOf({"--config", file, "--target", this->targets().front()});
    this->expectFailure(
        this->exportOf({"--config", file}),
        {1, TypeParam::noTargetError, "No target is chosen.",
         this->offersTarget() ? ExpectedNext(withFirst) : ExpectedNext("zelto targets " + this->account)});
    EXPECT_EQ(this->sent().size(), 0U);
    EXPECT_EQ(this->exportTitle({"--config", file, "--target", TypeParam::chosen}).output,
              this->madeIn(TypeParam::chosen));
}

TYPED_TEST_P(TargetCommands, TakeAConfigurationThatWasPrinted) {
    const auto exported = [&](const ZeltoProgram::Arguments& target) {
        const auto printed = this->run(this->withMail("config", target));
        const auto file = this->zelto.home.write("config.json", printed.output).string();
        return this->exportTitle({"--config", file}).output;
    };
    EXPECT_EQ(exported({}), this->madeIn(this->usualTarget()));
    EXPECT_EQ(exported({"--target", TypeParam::chosen}), this->madeIn(TypeParam::chosen));
}

TYPED_TEST_P(TargetCommands, WriteNamesThatAreReadAgain) {
    auto printed = this->run(this->withMail("config", {"--names", "--target", TypeParam::chosen}));
    EXPECT_EQ(printed.status, 0) << printed.errorOutput;
    const auto document = printed.json();
    std::string path;
    for (const auto& [key, name] : *document.find("saveTo")->asObject()) {
        path += (path.empty() ? "" : "/") + *name.asString();
    }
    EXPECT_TRUE((path + "/").starts_with(std::string(TypeParam::chosen) + "/")) << path;
    EXPECT_NE(document.find("saveAs")->asString(), nullptr);
    const auto file = this->zelto.home.write("config.json", printed.output).string();
    EXPECT_EQ(this->exportTitle({"--config", file}).output, this->madeIn(TypeParam::chosen));
    const auto requests = this->sent();
    EXPECT_EQ(this->exportTitle({"--config-over", file}).output, this->madeIn(TypeParam::chosen));
    EXPECT_EQ(this->sent().size(), 2 * requests.size());
}

TYPED_TEST_P(TargetCommands, ReplaceMembersOfTheOfferedConfiguration) {
    const auto over = [this](const std::string& json) {
        return this->zelto.home.write("over.json", json).string();
    };
    const auto target = JSONValue(TypeParam::chosen).text().value();
    EXPECT_EQ(this->exportTitle({"--config-over", over("{\"saveTo\":" + target + "}")}).output,
              this->madeIn(TypeParam::chosen));
    const auto before = this->sent().size();
    const auto unknown = this->exportTitle({"--config-over", over(R"({"savedTo":1})"), "--json"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(unknown.text("message").contains("\"savedTo\"; it knows saveTo, saveAs, "))
        << unknown.text("message");
    const auto cleared = this->exportTitle({"--config-over", over(R"({"saveTo":null})"), "--json"});
    EXPECT_EQ(cleared.text("message"), "No target is chosen.");
    EXPECT_EQ(this->sent().size(), before);
}

REGISTER_TYPED_TEST_SUITE_P(TargetCommands, ShowWhatIsRemembered, ShowPathsThatTheOptionTakes,
                            CompleteTheTargetsOfTheNamedAccount, ShowNothingToChooseOnceTheServiceListsNone,
                            TakeTheFirstTargetWhereNoneIsNamed, TakeAPathOrANameThatIsUnique,
                            OfferTheLastTargetAgain, RefuseANameOfSeveralTargets, RefuseANameOfNoTarget,
                            MakeNothingForAnAccountWithoutTargets, MakeNothingOfAConfigurationWithoutATarget,
                            TakeAConfigurationThatWasPrinted, WriteNamesThatAreReadAgain,
                            ReplaceMembersOfTheOfferedConfiguration);

} // namespace zelto
