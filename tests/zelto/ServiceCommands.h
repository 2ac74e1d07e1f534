#pragma once

#include <zelto/StoredAccount.h>
#include <zelto/ZeltoProgram.h>

#include <ZeltoIntegrations/Accounts/ServiceType.h>

#include <Platform/ASCII.h>

#include <Support/ServiceServer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <concepts>
#include <string>
#include <vector>

namespace zelto {

// What the suites in `Suites` have to know of a service on the web to test the commands with it. The targets
// that `listTargets` makes the service list are three or more, of names with ASCII letters, blanks and "/"
// alone. Each suite says which further facts it needs. A service that tells the failures of its sign-in and
// of the connection from others has `static constexpr bool tellsErrorsApart = true`; one whose exports have
// the mail's subject for their title, `static constexpr bool takesTitle = false`; one that shows its first
// target otherwise than it is typed, `firstTarget`; one that goes nowhere unless a target was chosen once,
// `static constexpr bool offersTarget = false`: of its account the first target was.
template <class T>
concept CommandFacts = requires(typename T::Server& service) {
    { T::name } -> std::convertible_to<std::string>; // as the program shows it
    { T::type } -> std::convertible_to<ServiceType>;
    { T::exportType } -> std::convertible_to<std::string>; // of exports where the type does not matter
    T::listTargets(service);
    { T::targetPaths } -> std::convertible_to<std::string>; // as `targets --paths` prints them
    { T::made } -> std::convertible_to<std::string>;        // of an export of "Title", as it prints it
};

// They have `uploadURL` where the service takes files.
template <class T>
concept TakesFiles = requires {
    T::uploadURL;
};

// The command that a failure suggests: a line, or arguments in any order.
struct ExpectedNext {
    ExpectedNext(const char* line) : line(line) {}

    ExpectedNext(std::string line) : line(std::move(line)) {}

    ExpectedNext(ZeltoProgram::Arguments arguments) : arguments(std::move(arguments)) {}

    std::string line;
    ZeltoProgram::Arguments arguments;
};

struct ExpectedFailure {
    int status = 1;
    std::string error;
    std::string message;
    ExpectedNext next;
};

// The program with an account that remembers the service's targets, and a stand-in of that service.
template <CommandFacts Facts> class ServiceCommands : public testing::Test {
  protected:
    using Arguments = ZeltoProgram::Arguments;
    using Texts = std::vector<std::string>;

    ServiceCommands() {
        addAccount(zelto, ServiceAccountConfiguration(Facts::type, "me@example.org", true));
        zelto.variables["ZELTO_SANDBOX"] = service.server.url().absoluteString();
        Facts::listTargets(service);
    }

    void SetUp() override {
        const auto loaded = run({"targets", account, "--refresh"});
        ASSERT_EQ(loaded.status, 0) << loaded.errorOutput;
        ASSERT_GT(service.lines().size(), 0U);
        if (!offersTarget()) {
            // Of the usual type, which is remembered too.
            const auto chosen = run(
                withMail("export", {"--target", targets().front(), "--web-link", "https://mail.example/1"}));
            ASSERT_EQ(chosen.status, 0) << chosen.errorOutput;
        }
        loadedBy_ = service.server.requests().size();
    }

    ProgramOutcome run(const Arguments& arguments) const { return zelto.run(arguments); }

    // What export, config and preview begin with.
    Arguments withMail(const std::string& command, const Arguments& more = {}) const {
        Arguments arguments{command, mail, "--to", to};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    // An export of "Title", with a PDF that is the same at each conversion.
    Arguments exportAs(const std::string& contentType, const Arguments& more = {}) const {
        auto arguments = withMail("export", {"--as", contentType, "--pdf-converter", "/bin/sh " + converter});
        if (takesTitle()) {
            arguments.insert(arguments.end(), {"--title", title()});
        }
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    Arguments exportOf(const Arguments& more = {}) const { return exportAs(Facts::exportType, more); }

    ProgramOutcome exportTitle(const Arguments& more = {}) const { return run(exportOf(more)); }

    // The call fails in the same way in text and JSON, of which the document is given.
    JSONValue expectFailure(Arguments arguments, const ExpectedFailure& expected) const {
        const auto asText = run(arguments);
        EXPECT_EQ(asText.status, expected.status);
        EXPECT_EQ(asText.output, "");
        const auto start = "zelto: " + expected.error + ": " + expected.message + "\nTry: ";
        EXPECT_EQ(asText.errorOutput.substr(0, start.size()), start);
        expectNext(asText.suggestion(), expected.next, {});
        arguments.emplace_back("--json");
        const auto asJSON = run(arguments);
        EXPECT_EQ(asJSON.status, expected.status);
        EXPECT_EQ(asJSON.text("error"), expected.error);
        EXPECT_EQ(asJSON.text("message"), expected.message);
        expectNext(asJSON.text("next"), expected.next, {"--json"});
        return asJSON.json();
    }

    void expectNext(const std::string& line, const ExpectedNext& expected, const Arguments& more) const {
        if (expected.arguments.empty()) {
            EXPECT_EQ(line, expected.line);
            return;
        }
        auto arguments = expected.arguments;
        arguments.insert(arguments.end(), more.begin(), more.end());
        arguments.insert(arguments.begin(), "zelto");
        auto words = zelto.wordsOf(line);
        std::ranges::sort(arguments);
        std::ranges::sort(words);
        EXPECT_EQ(words, arguments) << line;
    }

    // The requests that came after the targets were loaded.
    std::vector<ReceivedRequest> sent() const {
        const auto all = service.server.requests();
        return {all.begin() + static_cast<std::ptrdiff_t>(loadedBy_), all.end()};
    }

    Texts targets() const {
        Texts paths;
        std::string text = Facts::targetPaths;
        for (std::size_t end = 0; (end = text.find('\n')) != std::string::npos; text.erase(0, end + 1)) {
            paths.push_back(text.substr(0, end));
        }
        return paths;
    }

    // Where an export goes for which none is named, as it is shown; empty for the root of a drive.
    std::string usualTarget() const {
        if constexpr (requires { Facts::firstTarget; }) {
            return Facts::firstTarget;
        }
        const auto first = targets().front();
        return first == "/" ? "" : first;
    }

    static constexpr bool offersTarget() {
        if constexpr (requires { Facts::offersTarget; }) {
            return Facts::offersTarget;
        }
        return true;
    }

    // From here on the commands have another account, of which nothing is remembered.
    void useNewAccount() {
        const ServiceAccountConfiguration added(Facts::type, "new@example.org", true);
        addAccount(zelto, added);
        account = added.identifier();
        to = account;
        refresh = "zelto targets " + account + " --refresh";
        reconnect = "zelto reconnect " + account;
    }

    static constexpr bool takesTitle() {
        if constexpr (requires { Facts::takesTitle; }) {
            return Facts::takesTitle;
        }
        return true;
    }

    // That of an export, which is the sample's own where none is taken.
    static std::string title() {
        return takesTitle() ? "Title" : "Project kick-off: lighthouse relaunch & first week";
    }

    static std::string madeIn(const std::string& target) {
        return "On " + std::string(Facts::name) + (target.empty() ? "" : ", " + target) + ": " + Facts::made +
               ".\n";
    }

    // What a failure is called that is `error` where the service tells failures apart.
    static std::string errorOf(const std::string& error, const std::string& otherwise) {
        return requires {
            Facts::tellsErrorsApart;
        }
        ? error : otherwise;
    }

    // A member of a document as JSON; empty if there is none.
    static std::string textOf(const JSONValue& document, std::string_view key) {
        const auto* member = document.find(key);
        return member ? member->text().value() : std::string();
    }

    const std::string name = Facts::name;
    const std::string mail = ZeltoProgram::sample("project-kickoff.eml");
    std::string account = ServiceAccountConfiguration(Facts::type, "me@example.org", true).identifier();
    std::string to = toASCIILower(Facts::name);
    std::string refresh = "zelto targets " + account + " --refresh";
    std::string reconnect = "zelto reconnect " + account;
    ZeltoProgram zelto;
    const std::string converter = zelto.home.write("converter", "printf '%%PDF-1.7 page' > \"$2\"\n");
    typename Facts::Server service;

  private:
    std::size_t loadedBy_ = 0;
};

} // namespace zelto
