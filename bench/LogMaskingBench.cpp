// Masks a service's response of 1 MB with 300 live secrets. Prints the best of several rounds in processor
// time.

#include <ZeltoCommonLogger/LogMasking.h>
#include <ZeltoCommonLogger/SecretRegistry.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

using namespace zelto;

namespace {

constexpr std::size_t wantedBytes = 1'000'000;
constexpr int rounds = 20;

double seconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

std::string response(bool isEscaped) {
    std::string text = "[";
    for (int number = 0; text.size() < wantedBytes; ++number) {
        text += R"({"gid":")" + std::to_string(1'000'000 + number) + R"(","name":"Task number )" +
                std::to_string(number) + R"(","url":"https://app.example/0/)" + std::to_string(number) +
                (isEscaped ? R"(?a=%20b","notes":"one\ntwo \"three\""},)" : R"(","notes":"one two three"},)");
    }
    return text;
}

void measure(const char* name, const std::string& text) {
    double best = 1e9;
    std::size_t written = 0;
    for (int round = 0; round < rounds; ++round) {
        const auto begin = seconds();
        written += maskSecrets(text).size();
        best = std::min(best, seconds() - begin);
    }
    std::printf("%-28s %8.2f ms %8.0f MB/s (%zu)\n", name, best * 1e3,
                static_cast<double>(text.size()) / best / 1e6, written / rounds);
}

} // namespace

int main() {
    std::vector<SecretRegistry::Registration> secrets;
    for (int number = 0; number < 300; ++number) {
        secrets.push_back(SecretRegistry::shared().add("ya29.secret-token-" + std::to_string(number * 7919)));
    }
    measure("plain JSON, 1 MB", response(false));
    measure("JSON with escapes, 1 MB", response(true));
    measure("a line of 100 bytes", response(false).substr(0, 100));
}
