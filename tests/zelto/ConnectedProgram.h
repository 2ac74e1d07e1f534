#pragma once

#include <zelto/StoredAccount.h>
#include <zelto/ZeltoProgram.h>

#include <ZeltoSandbox/SandboxServer.h>

#include <gtest/gtest.h>

namespace zelto {

// Whom the sandbox signs in.
inline const std::string sandboxAccount = "Trello+robin@sandbox.example";

// The program with its key chain in a file, and a sandbox for the services.
class ConnectedProgram : public testing::Test {
  protected:
    void SetUp() override {
        auto started = SandboxServer::start();
        ASSERT_TRUE(started) << started.error().message;
        sandbox = std::move(*started);
    }

    ProgramOutcome run(ZeltoProgram::Arguments arguments, const std::string& input = {}) const {
        arguments.insert(arguments.begin(),
                         {"--keychain", "file", "--sandbox", sandbox->url().absoluteString()});
        return zelto.run(arguments, input);
    }

    ServiceAccountCredentials stored(const std::string& identifier) const {
        return storedTokens(zelto, identifier);
    }

    // A program that stands for the browser: it gets the page's address as its last argument.
    std::string browser(const std::string& python) const {
        const auto path = zelto.home.write("browser", "#!/usr/bin/python3\nimport sys, urllib.request\n"
                                                      "address = sys.argv[-1]\n" +
                                                          python);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    // Runs the program under a driver, which sees its standard error as it comes.
    ProgramOutcome drive(const std::string& python, const std::string& arguments) const {
        const auto path = zelto.home.write(
            "driver", "import re, signal, subprocess, sys, urllib.error, urllib.request\n"
                      "zelto = subprocess.Popen(sys.argv[1:], stdin=subprocess.PIPE, stderr=subprocess.PIPE, "
                      "text=True)\n"
                      "seen = ''\n"
                      "def until(pattern):\n"
                      "    global seen\n"
                      "    while not re.search(pattern, seen, re.M):\n"
                      "        line = zelto.stderr.readline()\n"
                      "        if not line: sys.exit('no ' + pattern + ' in ' + seen)\n"
                      "        seen += line\n"
                      "    return re.search(pattern, seen, re.M).group(1)\n" +
                          python);
        return zelto.runShell("python3 " + path.string() + " zelto --keychain file --sandbox " +
                              sandbox->url().absoluteString() + " " + arguments);
    }

    ZeltoProgram zelto;
    std::unique_ptr<SandboxServer> sandbox;
};

} // namespace zelto
