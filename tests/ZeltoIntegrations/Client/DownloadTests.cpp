#include "ServiceClientFixture.h"

#include <Support/FileSizeLimit.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <set>
#include <string_view>
#include <sys/stat.h>

namespace zelto {

namespace {

namespace fs = std::filesystem;
using E = ServiceClientError;
using Texts = std::vector<std::string>;
using Names = std::set<std::string>;

const std::string okHead = "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n";

Names namesIn(const TemporaryFolder& folder) {
    Names names;
    for (const auto& each : fs::directory_iterator(folder.path())) {
        names.insert(each.path().filename());
    }
    return names;
}

unsigned modeOf(const fs::path& path) {
    struct stat status {};

    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

std::string bytesOf(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 1;
    std::ranges::generate(bytes, [&] {
        state = state * 1664525 + 1013904223;
        return static_cast<char>(state >> 24);
    });
    return bytes;
}

RequestMaker makerOf(const std::string& path = "/items") {
    return RequestSource::of(itemRequest("GET", path)).make;
}

// For tests that are about something else than the service's words.
DownloadResult withoutRefusal(DownloadResult result) {
    if (!result) {
        result.error().refusal = {};
    }
    return result;
}

DownloadResult downloaded(ServiceClient& client, const fs::path& goal) {
    Completed<DownloadResult> end;
    client.download(makerOf(), goal, nullptr, end.callback<DownloadCompletion>());
    return withoutRefusal(end.value());
}

DownloadResult failed(E error) {
    return failure(DownloadError{error});
}

ServiceClient signedIn() {
    return ServiceClient(std::make_shared<FakeAuthoriser>(), {});
}

// Sends a part of each file, and what is left when the gate is open.
class SlowServer {
  public:
    ~SlowServer() { gate_.set(); }

    Event& gate() { return gate_; }

    const TestHTTPServer& http() const { return server_; }

    static std::string fileAt(const std::string& path) { return path + std::string(1000 - path.size(), 'x'); }

  private:
    PlayedResponse respond(const ReceivedRequest& request) {
        const auto file = fileAt(request.target);
        return {.raw = okHead + file.substr(0, 100),
                .stream = [this, left = file.substr(100)](const auto& send) {
                    gate_.wait();
                    send(left);
                }};
    }

    Event gate_;
    TestHTTPServer server_{[this](const ReceivedRequest& request) { return respond(request); }};
};

// One download from a slow server, of which the first bytes have come.
class BegunDownload {
  public:
    BegunDownload(ServiceClient& client, const fs::path& goal, const std::string& path = "/items")
        : operation_(client.download(
              makerOf(path), goal, [event = hasBegun_](const DownloadedBytes&) { event->set(); },
              end_.callback<DownloadCompletion>())) {
        hasBegun_->wait();
    }

    Operation& operation() { return *operation_; }

    DownloadResult result() { return withoutRefusal(end_.value()); }

  private:
    const std::shared_ptr<Event> hasBegun_ = std::make_shared<Event>();
    Completed<DownloadResult> end_;
    const std::shared_ptr<Operation> operation_;
};

} // namespace

TEST(Download, BringsAFileByteForByte) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{5} << 20}) {
        const auto content = bytesOf(size);
        const TestHTTPServer server(Responses{{.body = content}});
        const ServiceRoute route(server);
        const TemporaryFolder folder;
        auto client = signedIn();
        std::vector<std::uint64_t> counts;
        Completed<DownloadResult> end;
        client.download(
            makerOf(), folder / "report.pdf",
            [&](const DownloadedBytes& bytes) {
                counts.push_back(bytes.received);
                EXPECT_EQ(bytes.expected, size);
            },
            end.callback<DownloadCompletion>());
        EXPECT_EQ(end.value(), folder / "report.pdf");
        EXPECT_TRUE(TemporaryFolder::read(folder / "report.pdf") == content) << size;
        EXPECT_EQ(modeOf(folder / "report.pdf"), 0600u);
        EXPECT_EQ(namesIn(folder), Names{"report.pdf"});
        EXPECT_TRUE(std::ranges::is_sorted(counts));
        EXPECT_EQ(counts.front(), 0u);
        EXPECT_EQ(counts.back(), size);
        EXPECT_EQ(server.texts(), Texts{signedRequest("good-token")});
    }
}

TEST(Download, HasNoLimitButTheDisk) {
    const auto content = bytesOf(300'000);
    const TestHTTPServer server(Responses{{.body = content}, {.body = content}});
    const auto before = URLSessionConfiguration::ephemeral();
    auto small = before;
    small.maximumResponseSize = 100'000;
    URLSessionConfiguration::setDefaults(small);
    {
        const ServiceRoute route(server);
        const TemporaryFolder folder;
        auto client = signedIn();
        EXPECT_EQ(performed<Data>(client, itemRequest()), failure(E::connectionError));
        EXPECT_EQ(downloaded(client, folder / "report.pdf"), folder / "report.pdf");
        EXPECT_TRUE(TemporaryFolder::read(folder / "report.pdf") == content);
    }
    URLSessionConfiguration::setDefaults(before);
}

TEST(Download, LeavesFilesThatAreThereAndTakesANumberedName) {
    const TestHTTPServer server(Responses{{.body = "new"}});
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    folder.write("report.pdf", "old");
    folder.write("report (1).pdf", "older");
    auto client = signedIn();
    EXPECT_EQ(downloaded(client, folder / "report.pdf"), folder / "report (2).pdf");
    EXPECT_EQ(TemporaryFolder::read(folder / "report.pdf"), "old");
    EXPECT_EQ(TemporaryFolder::read(folder / "report (1).pdf"), "older");
    EXPECT_EQ(TemporaryFolder::read(folder / "report (2).pdf"), "new");
    EXPECT_EQ(namesIn(folder), (Names{"report.pdf", "report (1).pdf", "report (2).pdf"}));
}

TEST(Download, TakesAGoalWhoseNameIsAsLongAsFileSystemsAllow) {
    const TestHTTPServer server(Responses{{.body = "one"}, {.body = "two"}});
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    auto client = signedIn();
    const auto name = std::string(251, 'x') + ".txt";
    const auto numbered = std::string(247, 'x') + " (1).txt";
    EXPECT_EQ(downloaded(client, folder / name), folder / name);
    EXPECT_EQ(downloaded(client, folder / name), folder / numbered);
    EXPECT_EQ(namesIn(folder), (Names{name, numbered}));
    EXPECT_EQ(TemporaryFolder::read(folder / numbered), "two");
}

TEST(Download, TakesItsGoalBesideAPartThatAnotherProcessHasLeft) {
    const TestHTTPServer server(Responses{{.body = "new"}});
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    folder.write("report.pdf.part", "cut");
    auto client = signedIn();
    EXPECT_EQ(downloaded(client, folder / "report.pdf"), folder / "report.pdf");
    EXPECT_EQ(TemporaryFolder::read(folder / "report.pdf.part"), "cut");
    EXPECT_EQ(namesIn(folder), (Names{"report.pdf", "report.pdf.part"}));
}

TEST(Download, TwoFilesOfOneNameBothArrive) {
    SlowServer server;
    const ServiceRoute route(server.http());
    const TemporaryFolder folder;
    auto client = signedIn();
    BegunDownload one(client, folder / "report.pdf", "/1");
    BegunDownload other(client, folder / "report.pdf", "/2");
    EXPECT_EQ(namesIn(folder), (Names{"report.pdf.part", "report.pdf (1).part"}));
    server.gate().set();
    const auto first = one.result();
    const auto second = other.result();
    ASSERT_TRUE(first && second);
    EXPECT_EQ((Names{first->filename(), second->filename()}), (Names{"report.pdf", "report (1).pdf"}));
    EXPECT_EQ(namesIn(folder), (Names{"report.pdf", "report (1).pdf"}));
    EXPECT_EQ(TemporaryFolder::read(*first), SlowServer::fileAt("/1"));
    EXPECT_EQ(TemporaryFolder::read(*second), SlowServer::fileAt("/2"));
}

TEST(Download, FollowsNoSymbolicLinkThatWasPlanted) {
    const TestHTTPServer server(Responses{{.body = "new"}});
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    const TemporaryFolder outside;
    const auto precious = outside.write("precious", "old");
    fs::create_symlink(precious, folder / "report.pdf");
    fs::create_symlink(outside / "planted", folder / "report.pdf.part");
    auto client = signedIn();
    EXPECT_EQ(downloaded(client, folder / "report.pdf"), folder / "report (1).pdf");
    EXPECT_EQ(TemporaryFolder::read(folder / "report (1).pdf"), "new");
    EXPECT_EQ(TemporaryFolder::read(precious), "old");
    EXPECT_EQ(namesIn(outside), Names{"precious"});
    EXPECT_EQ(namesIn(folder), (Names{"report.pdf", "report.pdf.part", "report (1).pdf"}));
}

TEST(Download, ThatBreaksOffIsAConnectionErrorAndLeavesNothing) {
    const auto cut = [](std::size_t bytes, bool resets) {
        return PlayedResponse{.closes = true, .raw = okHead + std::string(bytes, 'x'), .resets = resets};
    };
    const PlayedResponse rows[] = {
        cut(0, false),
        cut(1, false),
        cut(999, false),
        cut(0, true),
        cut(500, true),
        PlayedResponse::reset(),
        PlayedResponse::bytes("garbage"),
        PlayedResponse::bytes("HTTP/1.1 200 OK\r\nContent-Length: 9300000000000000000\r\n\r\nabc"),
        PlayedResponse::bytes("HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999\r\n\r\nabc"),
        PlayedResponse::bytes("HTTP/1.1 200 OK\r\nContent-Length: 9\r\nContent-Length: 3\r\n\r\nabc"),
        PlayedResponse::bytes("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n"),
        PlayedResponse::bytes("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n9\r\nabc"),
        {.body = "no gzip", .fields = {{"Content-Encoding", "gzip"}}},
    };
    for (const auto& row : rows) {
        // A GET whose connection was reset may be sent again.
        const TestHTTPServer server([&](const ReceivedRequest&) { return row; });
        const ServiceRoute route(server);
        const TemporaryFolder folder;
        auto client = signedIn();
        EXPECT_EQ(downloaded(client, folder / "report.pdf"), failed(E::connectionError))
            << row.raw.value_or(row.body);
        EXPECT_EQ(namesIn(folder), Names{});
    }
}

TEST(Download, IsRepeatedBehindARefreshOfTheToken) {
    const TestHTTPServer server(Responses{
        {.status = 401, .body = std::string(3 << 20, 'x'), .closes = true}, freshToken(), {.body = "ok"}});
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    ServiceClient client(std::make_shared<FakeAuthoriser>("old-token"), {});
    EXPECT_EQ(downloaded(client, folder / "report.pdf"), folder / "report.pdf");
    EXPECT_EQ(TemporaryFolder::read(folder / "report.pdf"), "ok");
    EXPECT_EQ(namesIn(folder), Names{"report.pdf"});
    ASSERT_EQ(server.texts().size(), 3u);
    EXPECT_EQ(server.texts().front(), signedRequest("old-token"));
    EXPECT_EQ(server.texts().back(), signedRequest("new-token"));
}

TEST(Download, HasNoThirdTry) {
    const TestHTTPServer server(Responses{{.status = 401}, freshToken(), {.status = 401}});
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    ServiceClient client(std::make_shared<FakeAuthoriser>("old-token"), {});
    EXPECT_EQ(downloaded(client, folder / "report.pdf"), failed(E::authorizationError));
    EXPECT_EQ(namesIn(folder), Names{});
}

TEST(Download, ThatIsRefusedEndsWithTheErrorAndTheWordsOfTheService) {
    const TestHTTPServer server(Responses{PlayedResponse::json(R"({"message":"No such file."})", 404),
                                          {.status = 403, .body = std::string(3 << 20, 'x')}});
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    auto client = signedIn();
    std::vector<ServiceRefusal> refusals;
    client.setRefusalObserver([&](const ServiceRefusal& refusal) { refusals.push_back(refusal); });
    EXPECT_EQ(downloaded(client, folder / "report.pdf"), failed(E::itemNotFound));
    EXPECT_EQ(downloaded(client, folder / "report.pdf"), failed(E::forbidden));
    EXPECT_EQ(refusals, (std::vector<ServiceRefusal>{{"No such file.", false}, {"", false}}));
    EXPECT_EQ(namesIn(folder), Names{});
}

TEST(Download, HandsOnTheWordsOfItsOwnRefusal) {
    const TestHTTPServer server([](const ReceivedRequest& request) {
        return PlayedResponse::json(R"({"message":"No file )" + request.target.substr(1) + R"(."})", 404);
    });
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    auto client = signedIn();
    std::vector<Completed<DownloadResult>> ends(20);
    for (std::size_t index = 0; index < ends.size(); ++index) {
        client.download(makerOf("/" + std::to_string(index)), folder / "report.pdf", nullptr,
                        ends[index].callback<DownloadCompletion>());
    }
    for (std::size_t index = 0; index < ends.size(); ++index) {
        EXPECT_EQ(ends[index].value(),
                  failure(DownloadError{E::itemNotFound, std::nullopt,
                                        ServiceRefusal{"No file " + std::to_string(index) + "."}}));
    }
}

TEST(Download, TellsNoSizeOfACompressedFile) {
    const TestHTTPServer server(Responses{{.body = "no gzip", .fields = {{"Content-Encoding", "gzip"}}}});
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    auto client = signedIn();
    std::vector<DownloadedBytes> told;
    Completed<DownloadResult> end;
    client.download(
        makerOf(), folder / "report.pdf", [&](const DownloadedBytes& bytes) { told.push_back(bytes); },
        end.callback<DownloadCompletion>());
    EXPECT_FALSE(end.value());
    EXPECT_EQ(told, std::vector{DownloadedBytes{}});
}

TEST(Download, TellsNoSizeOfAFileThatComesInChunks) {
    const TestHTTPServer server(Responses{PlayedResponse::bytes(
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nContent-Length: 2\r\n\r\n3\r\nabc\r\n0\r\n\r\n")});
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    auto client = signedIn();
    std::vector<DownloadedBytes> told;
    Completed<DownloadResult> end;
    client.download(
        makerOf(), folder / "report.pdf", [&](const DownloadedBytes& bytes) { told.push_back(bytes); },
        end.callback<DownloadCompletion>());
    EXPECT_EQ(end.value(), folder / "report.pdf");
    EXPECT_EQ(TemporaryFolder::read(folder / "report.pdf"), "abc");
    EXPECT_EQ(told.back(), DownloadedBytes{.received = 3});
}

TEST(Download, OfASuccessThatBringsNoWholeFileLeavesNothing) {
    const PlayedResponse rows[] = {
        PlayedResponse::bytes("HTTP/1.1 204 No Content\r\n\r\n"),
        PlayedResponse::bytes(
            "HTTP/1.1 206 Partial Content\r\nContent-Range: bytes 0-2/9\r\nContent-Length: 3\r\n\r\nabc"),
    };
    for (const auto& row : rows) {
        const TestHTTPServer server(Responses{row});
        const ServiceRoute route(server);
        const TemporaryFolder folder;
        auto client = signedIn();
        EXPECT_EQ(downloaded(client, folder / "report.pdf"), failed(E::dataParseError)) << *row.raw;
        EXPECT_EQ(namesIn(folder), Names{});
    }
}

TEST(Download, IsDecodedAsItsEncodingSays) {
    const std::string_view packed(
        "\037\213\010\000\000\000\000\000\002\003\053\311\110\125\050\111\255\050\121\050"
        "\311\110\054\121\050\117\054\126\050\110\114\316\116\115\051\031\025\037\026\342"
        "\000\045\355\130\175\340\001\000\000",
        49);
    const TestHTTPServer server(
        Responses{{.body = std::string(packed), .fields = {{"Content-Encoding", "gzip"}}}});
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    auto client = signedIn();
    EXPECT_EQ(downloaded(client, folder / "report.txt"), folder / "report.txt");
    std::string expected;
    for (int count = 0; count < 20; ++count) {
        expected += "the text that was packed";
    }
    EXPECT_EQ(TemporaryFolder::read(folder / "report.txt"), expected);
}

TEST(Download, ThatIsCancelledAmidEndsOnceAndLeavesNothing) {
    const std::function<void(ServiceClient&, Operation&)> ways[] = {
        [](ServiceClient&, Operation& operation) { operation.cancel(); },
        [](ServiceClient& client, Operation&) { client.cancelAllOperations(); },
        [](ServiceClient& client, Operation&) { client.close(); },
    };
    for (const auto& cancel : ways) {
        SlowServer server;
        const ServiceRoute route(server.http());
        const TemporaryFolder folder;
        auto client = signedIn();
        BegunDownload download(client, folder / "report.pdf");
        EXPECT_EQ(namesIn(folder), Names{"report.pdf.part"});
        EXPECT_EQ(modeOf(folder / "report.pdf.part"), 0600u);
        cancel(client, download.operation());
        EXPECT_EQ(download.result(), failed(E::connectionError));
        EXPECT_EQ(namesIn(folder), Names{});
    }
}

TEST(Download, OfAClosedClientIsNotSent) {
    const TestHTTPServer server(Responses{});
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    auto client = signedIn();
    client.close();
    EXPECT_EQ(downloaded(client, folder / "report.pdf"), failed(E::connectionError));
    EXPECT_EQ(namesIn(folder), Names{});
}

TEST(Download, GoesOnWhenItsClientIsReleased) {
    SlowServer server;
    const ServiceRoute route(server.http());
    const TemporaryFolder folder;
    auto client = std::make_unique<ServiceClient>(std::make_shared<FakeAuthoriser>(), JSONDecoder());
    BegunDownload download(*client, folder / "report.pdf");
    client = nullptr;
    server.gate().set();
    EXPECT_EQ(download.result(), folder / "report.pdf");
    EXPECT_EQ(TemporaryFolder::read(folder / "report.pdf"), SlowServer::fileAt("/items"));
}

TEST(Download, ThatCannotBeWrittenNamesTheFileAndLeavesNothing) {
    const TestHTTPServer server(Responses{{.body = std::string(1'000'000, 'x'), .closes = true}});
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    auto client = signedIn();
    std::atomic<int> refusals = 0;
    client.setRefusalObserver([&](const ServiceRefusal&) { ++refusals; });
    DownloadResult result;
    {
        const FileSizeLimit limit(100'000);
        result = downloaded(client, folder / "report.pdf");
    }
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().service, E::internalError);
    ASSERT_TRUE(result.error().file);
    EXPECT_EQ(result.error().file->code, FileErrorCode::tooLarge);
    EXPECT_EQ(result.error().file->path, folder / "report.pdf");
    EXPECT_EQ(refusals, 0);
    EXPECT_EQ(namesIn(folder), Names{});
}

TEST(Download, IntoAFolderThatIsNotThereSaysSo) {
    const TestHTTPServer server(Responses{{.body = "ok"}});
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    auto client = signedIn();
    const auto result = downloaded(client, folder / "gone" / "report.pdf");
    ASSERT_FALSE(result);
    ASSERT_TRUE(result.error().file);
    EXPECT_EQ(result.error().file->code, FileErrorCode::notFound);
    EXPECT_EQ(namesIn(folder), Names{});
}

TEST(Download, IntoAFolderThatIsRemovedMeanwhileSaysSo) {
    SlowServer server;
    const ServiceRoute route(server.http());
    const TemporaryFolder folder;
    fs::create_directory(folder / "gone");
    auto client = signedIn();
    BegunDownload download(client, folder / "gone" / "report.pdf");
    fs::remove_all(folder / "gone");
    server.gate().set();
    const auto result = download.result();
    ASSERT_FALSE(result);
    ASSERT_TRUE(result.error().file);
    EXPECT_EQ(result.error().file->code, FileErrorCode::notFound);
    EXPECT_EQ(namesIn(folder), Names{});
}

TEST(Download, WithoutARequestIsAnInternalError) {
    const TemporaryFolder folder;
    auto client = signedIn();
    Completed<DownloadResult> end;
    client.download([] { return std::optional<URLRequest>(); }, folder / "report.pdf", nullptr,
                    end.callback<DownloadCompletion>());
    EXPECT_EQ(withoutRefusal(end.value()), failed(E::internalError));
    EXPECT_EQ(namesIn(folder), Names{});
}

TEST(Download, WithoutANameIsRefusedBeforeAnythingIsWritten) {
    const TestHTTPServer server(Responses{{.body = "ok"}});
    const ServiceRoute route(server);
    const TemporaryFolder folder;
    auto client = signedIn();
    const auto result = downloaded(client, folder / "");
    ASSERT_FALSE(result);
    ASSERT_TRUE(result.error().file);
    EXPECT_EQ(result.error().file->code, FileErrorCode::isDirectory);
    EXPECT_EQ(namesIn(folder), Names{});
}

} // namespace zelto
