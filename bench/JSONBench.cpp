// Decodes and encodes a list of records of 10 MB, compared with Boost.JSON's own document. Prints the best of
// several rounds in processor time, which does not depend on other processes.

#include <Platform/JSON/JSONRecordDescription.h>
#include <Platform/JSON/JSONValue.h>

#include <boost/json.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

struct BenchItem {
    std::int64_t id = 0;
    std::string text;
    std::optional<std::string> note;
    bool done = false;

    bool operator==(const BenchItem&) const = default;
};

struct BenchRecord {
    std::int64_t id = 0;
    std::string name;
    std::optional<std::string> description;
    std::string ownerIdentifier;
    bool closed = false;
    std::optional<std::int64_t> position;
    double updated = 0;
    std::vector<BenchItem> items;
    std::vector<std::string> tags;

    bool operator==(const BenchRecord&) const = default;
};

ZELTO_JSON_CODED(BenchItem);
ZELTO_JSON_CODED(BenchRecord);
ZELTO_JSON_RECORD(BenchItem, id, text, note, done);
ZELTO_JSON_RECORD(BenchRecord, id, name, description, ownerIdentifier, closed, position, updated, items,
                  tags);

namespace {

constexpr std::size_t wantedBytes = 10'000'000;
constexpr int rounds = 15;

BenchRecord makeRecord(std::int64_t number) {
    BenchRecord record;
    record.id = 1'000'000 + number;
    record.name = "Board number " + std::to_string(number);
    if (number % 3 == 0) {
        record.description =
            "What the team has to do before the release: \"plan\", build, test.\nThen ship — naturally.";
    }
    record.ownerIdentifier = "5f3a9c0e7d21b4" + std::to_string(100'000 + number % 900'000);
    record.closed = number % 7 == 0;
    if (number % 2 == 0) {
        record.position = number * 65536;
    }
    record.updated = 725'846'400.0 + static_cast<double>(number) * 61.25;
    for (std::int64_t item = 0; item < number % 5; ++item) {
        record.items.push_back({.id = number * 100 + item,
                                .text = "Item with a text of ordinary length, " + std::to_string(item),
                                .note = item % 2 ? std::optional<std::string>("later") : std::nullopt,
                                .done = item % 3 == 0});
    }
    record.tags = {"blue", "sales", "q" + std::to_string(number % 4 + 1)};
    return record;
}

template <class Work> double bestMegabytesPerSecond(std::size_t bytes, Work work) {
    double best = 1e9;
    for (int round = 0; round < rounds; ++round) {
        // The result is destroyed outside the measured time.
        const auto begin = std::clock();
        const auto kept = work();
        best = std::min(best, static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
    }
    return static_cast<double>(bytes) / best / 1e6;
}

void print(const char* what, double speed) {
    std::printf("%-44s %7.0f MB/s\n", what, speed);
}

int run() {
    std::vector<BenchRecord> records;
    std::string text;
    for (std::int64_t number = 0; text.size() < wantedBytes; number += 1000) {
        for (std::int64_t more = 0; more < 1000; ++more) {
            records.push_back(makeRecord(number + more));
        }
        text = JSONEncoder().encode(records).value();
    }
    const auto decoded = JSONDecoder().decode<std::vector<BenchRecord>>(text);
    if (!decoded || *decoded != records) {
        std::fputs("the records do not read back as they were\n", stderr);
        return EXIT_FAILURE;
    }
    const auto value = JSONValue::parse(text).value();
    const auto document = boost::json::parse(text);
    std::printf("%zu records, %zu bytes\n", records.size(), text.size());

    print("decode into records", bestMegabytesPerSecond(text.size(), [&] {
              return JSONDecoder().decode<std::vector<BenchRecord>>(text);
          }));
    print("decode into JSONValue",
          bestMegabytesPerSecond(text.size(), [&] { return JSONValue::parse(text); }));
    print("decode, the flat form alone",
          bestMegabytesPerSecond(text.size(), [&] { return JSONTape::parse(text); }));
    print("Boost.JSON, parse", bestMegabytesPerSecond(text.size(), [&] { return boost::json::parse(text); }));
    print("Boost.JSON, parse into a monotonic resource", bestMegabytesPerSecond(text.size(), [&] {
              auto storage = boost::json::make_shared_resource<boost::json::monotonic_resource>();
              return boost::json::parse(text, storage);
          }));
    print("encode records",
          bestMegabytesPerSecond(text.size(), [&] { return JSONEncoder().encode(records); }));
    print("encode JSONValue", bestMegabytesPerSecond(text.size(), [&] { return value.text(); }));
    print("Boost.JSON, serialize",
          bestMegabytesPerSecond(text.size(), [&] { return boost::json::serialize(document); }));
    return EXIT_SUCCESS;
}

} // namespace
} // namespace zelto

int main() {
    return zelto::run();
}
