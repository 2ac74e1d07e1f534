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

    // What a suggested command ends with, to reach the same accounts.
    std::string surroundings() const {
        return " --keychain file --sandbox " + sandbox->url().absoluteString();
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
        return driven("import re, signal, subprocess, sys, urllib.error, urllib.request\n"
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
                          python,
                      arguments);
    }

    // A thread sanitizer loses signals that come just before a thread waits.
    static constexpr auto asleep = "def waitUntilAsleep():\n"
                                   "    while zelto.poll() is None:\n"
                                   "        stat = open('/proc/%d/stat' % zelto.pid).read()\n"
                                   "        if stat.rsplit(')', 1)[1].split()[0] == 'S': break\n";

    // Runs the program under a driver, which types at its terminal and sees what is shown there. Standard
    // output goes to `output`, before what the driver prints.
    ProgramOutcome driveTerminal(const std::string& python, const std::string& arguments) const {
        return driven(
            asleep +
                std::string(
                    "import fcntl, os, re, signal, subprocess, sys, termios\n"
                    "terminal, inner = os.openpty()\n"
                    "def settings(): return termios.tcgetattr(inner)\n"
                    "before = settings()\n"
                    "def adopt():\n"
                    "    os.setsid()\n"
                    "    fcntl.ioctl(inner, termios.TIOCSCTTY, 0)\n"
                    "zelto = subprocess.Popen(sys.argv[1:], stdin=inner, stderr=inner, preexec_fn=adopt)\n"
                    "seen = ''\n"
                    "def until(pattern):\n"
                    "    global seen\n"
                    "    while not re.search(pattern, seen, re.M):\n"
                    "        seen += os.read(terminal, 4096).decode()\n"
                    "    waitUntilAsleep()\n"
                    "def type(text): os.write(terminal, text.encode())\n"
                    "def hides(): return not settings()[3] & termios.ECHO\n"
                    "def end():\n"
                    "    status = zelto.wait()\n"
                    "    print('the terminal is', 'as before' if settings() == before else settings())\n"
                    "    os.close(inner)\n"
                    "    sys.stderr.write(seen)\n"
                    "    try:\n"
                    "        while True: sys.stderr.write(os.read(terminal, 4096).decode())\n"
                    "    except OSError: sys.exit(status)\n") +
                python,
            arguments);
    }

    // Runs the program and gives it Ctrl-C as soon as it takes one, while its standard input is open.
    ProgramOutcome interruptWhileReading(const std::string& arguments) const {
        return driven(
            asleep +
                std::string(
                    "import signal, subprocess, sys\n"
                    "zelto = subprocess.Popen(sys.argv[1:], stdin=subprocess.PIPE)\n"
                    "def takes():\n"
                    "    status = dict(line.split(':', 1) for line in open('/proc/%d/status' % zelto.pid))\n"
                    "    return int(status.get('SigCgt', '0'), 16) >> signal.SIGINT - 1 & 1\n"
                    "while zelto.poll() is None and not takes(): pass\n"
                    "waitUntilAsleep()\n"
                    "zelto.send_signal(signal.SIGINT)\n"
                    "sys.exit(zelto.wait())\n"),
            arguments);
    }

    ProgramOutcome driven(const std::string& python, const std::string& arguments) const {
        const auto path = zelto.home.write("driver", python);
        return zelto.runShell("python3 " + path.string() + " zelto --keychain file --sandbox " +
                              sandbox->url().absoluteString() + " " + arguments);
    }

    ZeltoProgram zelto;
    std::unique_ptr<SandboxServer> sandbox;
};

} // namespace zelto
