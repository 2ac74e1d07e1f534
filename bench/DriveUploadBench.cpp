#include "UploadCost.h"

#include <Platform/Base64.h>
#include <Platform/HTTP/URLSessionConfiguration.h>
#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>
#include <TrovenhalCommon/KeyChain/MemoryKeyChainStore.h>
#include <ZeltoIntegrations/Dropbox/DropboxAuthoriser.h>
#include <ZeltoIntegrations/Dropbox/DropboxClient.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveAuthoriser.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveClient.h>

#include <curl/curl.h>

#include <fcntl.h>

#include <cstring>
#include <future>
#include <span>

// Uploads one large file by the clients of the drives, compared with programs that stream the same body to
// the same local server: one that does nothing but read the file, encode it where the service takes Base64,
// and hand it to libcurl, and `curl -T`. Time, CPU time and peak memory of the sending process. Arguments:
// the size in MiB (1024), the rounds (5).

namespace {

using namespace zelto;

template <class Client, class Authoriser> std::shared_ptr<Client> makeClient(const std::string& server) {
    URLSessionConfiguration::setDefaults({.route = URL::parse(server)});
    LVXKeyChainStoreFactory::setStore(std::make_shared<MemoryKeyChainStore>());
    ServiceAccountCredentials credentials;
    credentials.accessToken = "token";
    credentials.expirationDate = Date::distantFuture();
    return std::make_shared<Client>(std::make_shared<Authoriser>(credentials), JSONDecoder());
}

void reportIdle() {
    std::printf("%f\n", mebibytesOf("VmRSS", "self"));
    std::fflush(stdout);
}

int uploadToDropbox(const std::string& server, const std::string& file) {
    const auto client = makeClient<DropboxClient, DropboxAuthoriser>(server);
    reportIdle();
    std::promise<ServiceResult<void>> uploaded;
    client->uploadFile("file.bin", file, "", false, [&](auto result) { uploaded.set_value(result); });
    return uploaded.get_future().get() ? 0 : 1;
}

int uploadToGoogleDrive(const std::string& server, const std::string& file) {
    const auto client = makeClient<GoogleDriveClient, GoogleDriveAuthoriser>(server);
    reportIdle();
    std::promise<ServiceResult<void>> uploaded;
    client->uploadFile("file.bin", file, std::optional<std::string>("f1"),
                       [&](auto result) { uploaded.set_value(result); });
    return uploaded.get_future().get() ? 0 : 1;
}

// Reads the file piece by piece, encoded if that is wanted, between a beginning and an end.
class StreamedBody {
  public:
    StreamedBody(const std::string& file, bool isEncoded)
        : file_(::open(file.c_str(), O_RDONLY | O_CLOEXEC)), isEncoded_(isEncoded) {
        if (isEncoded_) {
            pending_ = "\r\n--B\r\nContent-Type: application/json; charset=UTF-8\r\n\r\n"
                       R"({"name":"file.bin","mimeType":"application/octet-stream","parents":["f1"]})"
                       "\r\n--B\r\nContent-Type: application/octet-stream\r\n"
                       "Content-Transfer-Encoding: base64\r\n\r\n";
        }
        const auto bytes = std::filesystem::file_size(file);
        size = isEncoded_ ? pending_.size() + base64Length(bytes) + end.size() : bytes;
    }

    ~StreamedBody() { ::close(file_); }

    StreamedBody(const StreamedBody&) = delete;
    StreamedBody& operator=(const StreamedBody&) = delete;

    static std::size_t read(char* to, std::size_t, std::size_t count, void* self) {
        return static_cast<StreamedBody*>(self)->next(to, count);
    }

    std::uint64_t size = 0;

  private:
    static constexpr std::string_view end = "\r\n--B--";

    std::size_t next(char* to, std::size_t count) {
        if (!isEncoded_) {
            const auto got = ::read(file_, to, count);
            return got < 0 ? CURL_READFUNC_ABORT : static_cast<std::size_t>(got);
        }
        if (offset_ == pending_.size() && !hasEnded_) {
            encodeMore();
        }
        const auto given = std::min(count, pending_.size() - offset_);
        std::memcpy(to, pending_.data() + offset_, given);
        offset_ += given;
        return given;
    }

    void encodeMore() {
        const auto got = ::read(file_, bytes_.data(), bytes_.size());
        offset_ = 0;
        if (got <= 0) {
            hasEnded_ = true;
            pending_ = end;
            return;
        }
        const auto count = static_cast<std::size_t>(got);
        pending_.resize(base64Length(count));
        writeBase64(std::span(bytes_.data(), count), reinterpret_cast<std::uint8_t*>(pending_.data()));
    }

    const int file_;
    const bool isEncoded_;
    std::string pending_;
    std::size_t offset_ = 0;
    bool hasEnded_ = false;
    std::array<std::uint8_t, 48 << 10> bytes_{};
};

std::size_t discard(char*, std::size_t size, std::size_t count, void*) {
    return size * count;
}

int stream(const std::string& url, const std::string& file, bool isEncoded) {
    StreamedBody body(file, isEncoded);
    CURL* curl = ::curl_easy_init();
    auto* headers = ::curl_slist_append(nullptr, "Expect:");
    headers = ::curl_slist_append(headers, isEncoded ? "Content-Type: multipart/related; boundary=B"
                                                     : "Content-Type: application/octet-stream");
    ::curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    ::curl_easy_setopt(curl, CURLOPT_POST, 1L);
    ::curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
    ::curl_easy_setopt(curl, CURLOPT_READFUNCTION, StreamedBody::read);
    ::curl_easy_setopt(curl, CURLOPT_READDATA, &body);
    ::curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size));
    ::curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, discard);
    reportIdle();
    const auto code = ::curl_easy_perform(curl);
    ::curl_slist_free_all(headers);
    ::curl_easy_cleanup(curl);
    return code == CURLE_OK ? 0 : 1;
}

void compare(const Cost& ours, const Cost& other) {
    std::printf("  %.2f times the time, %.2f times the CPU, %.2f times the memory\n", ours.wall / other.wall,
                ours.milliseconds / other.milliseconds, ours.peak / other.peak);
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() == 3) {
        const auto& [mode, url, file] = std::tie(arguments[0], arguments[1], arguments[2]);
        return mode == "--dropbox"        ? uploadToDropbox(url, file)
               : mode == "--google-drive" ? uploadToGoogleDrive(url, file)
                                          : stream(url, file, mode == "--stream-base64");
    }
    const auto size = arguments.empty() ? 1024 : std::stoll(arguments[0]);
    const auto rounds = arguments.size() < 2 ? 5 : std::stoi(arguments[1]);
    const SparseFile file(size);
    const ServerProcess server;
    const auto cost = [&](const std::string& mode) {
        return leastOf(rounds, {"/proc/self/exe", mode, server.url(), file.path});
    };
    std::printf("A file of %lld MiB, the least of %d rounds:\n", static_cast<long long>(size), rounds);
    const auto dropbox = cost("--dropbox");
    const auto bytes = cost("--stream");
    const auto curl = leastOf(rounds, {"curl", "-sS", "-o", "/dev/null", "-X", "POST", "-H", "Expect:", "-T",
                                       file.path, server.url() + "/upload"});
    print("upload to Dropbox", dropbox);
    print("streaming the bytes", bytes);
    compare(dropbox, bytes);
    print("curl -T", curl);
    compare(dropbox, curl);
    const auto drive = cost("--google-drive");
    const auto encoded = cost("--stream-base64");
    print("upload to Google Drive", drive);
    print("streaming in Base64", encoded);
    compare(drive, encoded);
}
