#include "accounts/PastedAddresses.h"

#include "base/StandardInput.h"
#include "base/Terminal.h"

namespace zelto::cli {

namespace {

constexpr std::size_t maximumLine = 64 * 1024;

bool isBlankLine(const Result<std::string, InputEnd>& line) {
    return line && line->find_first_not_of(" \t\r") == std::string::npos;
}

std::string complaint(PasteOutcome outcome, const SignIn& signIn) {
    switch (outcome) {
    case PasteOutcome::taken:
        return {};
    case PasteOutcome::noAddress:
    case PasteOutcome::otherAddress:
        return "that is not the address; it begins with " + signIn.redirect().absoluteString() +
               ". Paste the whole of it.";
    case PasteOutcome::cut:
        return "that address is not whole: its end is missing. Paste all of it.";
    case PasteOutcome::otherResponse:
        return "that address is the end of another sign-in. Paste that of this one.";
    }
    return {};
}

} // namespace

PastedAddresses::PastedAddresses(SignIn& signIn, std::stop_source& ending,
                                 std::function<bool(const std::stop_token&)> isWanted)
    : reading_([this, &signIn, &ending, isWanted = std::move(isWanted)](const std::stop_token& stop) {
          if (!isWanted(stop)) {
              return;
          }
          if (takes(signIn, stop)) {
              return;
          }
          if (!stop.stop_requested()) {
              hasEnded_ = true;
              if (!signIn.listens()) {
                  ending.request_stop();
              }
          }
      }) {}

bool PastedAddresses::takes(SignIn& signIn, const std::stop_token& stop) {
    // The browser's response may come all the same.
    StandardInput input(stop, InBackground::goesOn);
    for (;;) {
        const auto line = input.line(maximumLine);
        if (!line && line.error() != InputEnd::tooLong) {
            return false;
        }
        if (isBlankLine(line)) {
            continue;
        }
        const auto outcome = line ? signIn.paste(*line) : PasteOutcome::noAddress;
        if (outcome == PasteOutcome::taken) {
            return true;
        }
        complaint_ = complaint(outcome, signIn);
        writeError("zelto: " + complaint_ + "\n");
    }
}

std::optional<std::string> PastedAddresses::trouble() const {
    if (!hasEnded_) {
        return std::nullopt;
    }
    return complaint_.empty() ? "Standard input ended before the address was pasted."
                              : "Standard input ended before the right address was pasted: " + complaint_;
}

} // namespace zelto::cli
