#include "commandline/ManPages.h"

#include "commandline/HelpText.h"
#include "commandline/KnownValues.h"

#include <Platform/ASCII.h>
#include <Platform/Joined.h>
#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <algorithm>

namespace zelto::cli {

namespace {

constexpr auto environmentStart = R"(
# ENVIRONMENT

*XDG\_DATA\_HOME*
	Accounts are kept in its folder "zelto" unless *--data-dir* names another one; ~/.local/share where it is
	not set.

*ZELTO\_KEYCHAIN\_PASSPHRASE*
	The passphrase of the key chain in a file. It is never asked for in an argument.

*ZELTO\_SERVICE\_CLIENT\_ID*, *ZELTO\_SERVICE\_CLIENT\_SECRET*
	A client that you have registered at a service yourself, in place of the one that was built in. SERVICE is
	one of )";

constexpr auto environmentEnd = R"(.

*NO\_COLOR*
	If it is set and not empty, nothing is coloured.

# FILES

_$XDG\_DATA\_HOME/zelto/accounts.sqlite_
	The connected accounts.

_$XDG\_DATA\_HOME/zelto/keychain_
	The secrets, encrypted, where the desktop has no key chain or *--keychain file* asks for it.
)";

constexpr auto exitStatus = R"(
# EXIT STATUS

*0*
	It worked.

*1*
	It failed. Standard error names the case, says in one sentence what is wrong, and which command to try next;
	that command runs as it stands.

*2*
	The command line was wrong.

*130*
	The export was interrupted by Ctrl-C.

With *--json* every outcome is one JSON document on standard output: {"result":"success",...} or
{"error":"the case's name","message":"...","next":"..."}. Of an export that failed it lists what was _made_, what was
_refused_, and what is _unsure_: sent, but without a response. _nothingWasSent_ says that nothing has left the machine.
)";

std::string environment() {
    return environmentStart +
           joined(Secrets::serviceNames(), ", ", [](std::string_view name) { return toASCIIUpper(name); }) +
           environmentEnd;
}

// Text in which nothing is markup; `words` between backquotes become bold.
std::string plain(std::string_view text) {
    constexpr std::string_view marked = "\\*_#[|]~";
    std::string result;
    for (const char c : text) {
        if (c == '`') {
            result += '*';
            continue;
        }
        if (marked.find(c) != std::string_view::npos) {
            result += '\\';
        }
        result += c;
    }
    return result;
}

std::string bold(std::string_view text) {
    return "*" + plain(text) + "*";
}

std::string title(const std::string& name) {
    return name + "(1)\n\n";
}

std::string entry(const std::string& label, const std::string& text) {
    return label + "\n\t" + text + "\n\n";
}

std::string described(std::string_view help, ValueKind kind, const std::vector<std::string_view>& choices) {
    const auto values = knownValues(kind, choices);
    return plain(help) + "." + (values.empty() ? "" : " Known values: " + plain(joined(values, " ")) + ".");
}

std::string optionEntries(std::span<const OptionSpec> options) {
    std::string entries;
    for (const auto& option : options) {
        const auto value = option.value.empty() ? "" : " _" + plain(option.value) + "_";
        entries += entry(bold(option.name) + value, described(option.help, option.kind, option.choices) +
                                                        (option.repeatable ? " May be repeated." : ""));
    }
    return entries;
}

std::string examples(const CommandSpec& command) {
    std::string lines = "\n# EXAMPLES\n\n```\n";
    for (const auto& example : command.examples) {
        lines += std::string(example) + "\n";
    }
    return lines + "```\n";
}

std::string seeAlso(const CommandSpec* own) {
    std::string text = "\n# SEE ALSO\n\n";
    if (own) {
        text += "*zelto*(1)";
    }
    for (const auto& command : commands()) {
        if (&command != own) {
            text += (text.ends_with('\n') ? "" : ", ") + bold(manPageName(command)) + "(1)";
        }
    }
    return text + "\n";
}

} // namespace

std::string manPageName(const CommandSpec& command) {
    auto name = "zelto-" + std::string(command.name);
    std::ranges::replace(name, ' ', '-');
    return name;
}

std::string manPage() {
    auto text = title("zelto") +
                "# NAME\n\nzelto - send a mail or a meeting note to the services that you use\n\n"
                "# SYNOPSIS\n\n*zelto* _COMMAND_ [options]\n\n# COMMANDS\n\n";
    for (const auto& command : commands()) {
        text += entry(bold(command.name),
                      plain(command.summary) + "; see " + bold(manPageName(command)) + "(1).");
    }
    text += "# OPTIONS OF EVERY COMMAND\n\n" + optionEntries(globalOptions());
    return text + examples(*findCommand("export")) + environment() + exitStatus + seeAlso(nullptr);
}

std::string manPage(const CommandSpec& command) {
    std::string summary(command.summary);
    summary.front() = toASCIILower(summary.front());
    auto text = title(manPageName(command)) + "# NAME\n\n" + manPageName(command) + " - " + plain(summary) +
                "\n\n# SYNOPSIS\n\n" + plain(usageLine(command)) + "\n\n# DESCRIPTION\n\n" +
                plain(command.description) + "\n\n";
    if (!command.arguments.empty()) {
        text += "# ARGUMENTS\n\n";
        for (const auto& argument : command.arguments) {
            text += entry(bold(argument.name), described(argument.help, argument.kind, argument.choices));
        }
    }
    if (!command.options.empty()) {
        text += "# OPTIONS\n\n" + optionEntries(command.options);
    }
    text += "# OPTIONS OF EVERY COMMAND\n\n" + optionEntries(globalOptions());
    return text + examples(command) + exitStatus + seeAlso(&command);
}

} // namespace zelto::cli
