#pragma once

#include <zelto/ConnectedProgram.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// The program with accounts of both drives in a sandbox, and a folder for what is fetched.
class ConnectedDrives : public ConnectedProgram {
  protected:
    using Texts = std::vector<std::string>;

    void SetUp() override {
        ConnectedProgram::SetUp();
        for (const auto* service : {"dropbox", "googledrive"}) {
            const auto connected = run({"connect", service, "--follow"});
            ASSERT_EQ(connected.status, 0) << connected.errorOutput;
        }
    }

    // The entry of a listing by its name.
    JSONValue entry(const std::string& service, const std::string& name,
                    const std::string& folder = "/") const {
        const auto listed = run({"files", service, folder, "--json"});
        EXPECT_EQ(listed.status, 0) << listed.output;
        const auto document = listed.json();
        for (const auto& each : *document.find("files")->asArray()) {
            if (*each.find("name")->asString() == name) {
                return each;
            }
        }
        ADD_FAILURE() << name << " is not in " << listed.output;
        return {};
    }

    std::string idOf(const std::string& service, const std::string& name,
                     const std::string& folder = "/") const {
        const auto found = entry(service, name, folder);
        const auto* id = found.find("id");
        return id ? *id->asString() : "";
    }

    ProgramOutcome fetch(const std::string& service, const Texts& files,
                         ZeltoProgram::Arguments more = {}) const {
        ZeltoProgram::Arguments arguments{"fetch", service, "--out", out.string()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        arguments.insert(arguments.end(), files.begin(), files.end());
        return run(arguments);
    }

    // The names in the folder, in order.
    Texts names() const {
        Texts all;
        if (std::filesystem::exists(out)) {
            for (const auto& each : std::filesystem::directory_iterator(out)) {
                all.push_back(each.path().filename().native());
            }
        }
        std::ranges::sort(all);
        return all;
    }

    std::string content(const std::string& name) const { return TemporaryFolder::read(out / name); }

    std::string path(const std::string& name) const { return (out / name).native(); }

    // A member of a document as JSON; empty if there is none.
    static std::string textOf(const JSONValue& document, std::string_view key) {
        const auto* member = document.find(key);
        return member ? member->text().value() : std::string();
    }

    const std::filesystem::path out = zelto.home / "fetched";
};

// The text of "Read me.txt" in the root of both drives.
inline const std::string readMe = "Welcome to the sandbox.\n";

} // namespace zelto
