#pragma once

// Internal to the transport: one request on one of libcurl's easy handles.

#include <Platform/HTTP/ConnectionsInternal.h>
#include <Platform/HTTP/CurlInternal.h>
#include <Platform/HTTP/HTTPRulesInternal.h>
#include <Platform/HTTP/ResponseHeadInternal.h>
#include <Platform/HTTP/URLTransferInternal.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zelto {

// Serves one transfer after the other, each over as many hops as it has redirects. Used on the I/O thread
// only. The engine adds the handle to its multi handle and removes it.
class HTTPExchange {
  public:
    using Clock = std::chrono::steady_clock;

    // What the engine reads once per round: its clock, when to check next whether all transfers still move,
    // and the connections to check.
    struct Rounds {
        Clock::time_point now;
        Clock::time_point nextCheck;
        Connections connections;
    };

    HTTPExchange(CURLSH* share, Rounds& rounds);
    ~HTTPExchange();
    HTTPExchange(const HTTPExchange&) = delete;
    HTTPExchange& operator=(const HTTPExchange&) = delete;

    static HTTPExchange& of(CURL* handle);

    CURL* handle() const { return easy_; }

    // Null while the rest of a cancelled response is drained.
    const std::shared_ptr<URLTransfer>& transfer() const { return transfer_; }

    // False when the handle cannot be prepared; then there is nothing to add, and the transfer has ended with
    // an error.
    [[nodiscard]] bool begin(std::shared_ptr<URLTransfer> transfer, std::unique_ptr<TransferPlan> plan);

    // Handles the end of a hop. True when another hop is prepared; otherwise the transfer has ended.
    [[nodiscard]] bool goesOnAfter(CURLcode code);

    // Releases the transfer. True if little is left of the response, so that draining it is worthwhile to
    // keep the connection.
    [[nodiscard]] bool detach();

    // The delegate has room again. False if this ended the exchange.
    [[nodiscard]] bool proceed();

    // Schedules the next check, or gives the code to end with because the transfer stands still.
    std::optional<CURLcode> overdue();

    // Whether its connection may be shared with other transfers.
    bool mayBeHTTP2() const { return profile_ && !profile_->isPlain; }

    // Prepares for another transfer.
    void reset();

    std::size_t place = 0; // index among the running ones

  private:
    static constexpr int maximumRedirects = 5;
    // How much of a response that nobody waits for is read to keep its connection.
    static constexpr std::uint64_t maximumDrainedBytes = 64 * 1024;

    // The settings of a handle that outlast one request.
    struct Profile {
        bool isPlain = false;
        bool isLoopback = false;
        std::optional<std::string> acceptedEncodings;
        std::optional<std::string> proxy;
        std::optional<std::filesystem::path> certificateAuthorities;

        bool operator==(const Profile&) const = default;
    };

    bool prepareHop();
    Profile profile() const;
    void setUpFor(Profile profile);
    void setConnection();
    void setEncodings();
    void setSecurity();
    void setProxy();
    void setCallbacks();
    void setMessage();
    void setURL();
    void setHeaderLines();
    void setBody();
    template <class Value> void set(CURLoption option, Value value);

    template <class F> std::size_t takenOr(std::size_t refusal, F&& take);
    bool takeHeadLine(std::string_view line);
    void headIsComplete();
    std::size_t takeBody(std::span<const std::uint8_t> data);
    std::size_t giveBody(std::span<std::uint8_t> buffer);
    bool maySend();
    void beginDraining();
    bool isBodySent() const;
    void scheduleCheck();
    bool isStalled();
    void checkConnection();
    std::optional<URLError> errorAfter(CURLcode code) const;
    std::string host() const;

    static std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* exchange);
    static std::size_t onBody(char* data, std::size_t size, std::size_t count, void* exchange);
    static std::size_t onRead(char* data, std::size_t size, std::size_t count, void* exchange);
    static int onSeek(void* exchange, curl_off_t offset, int origin);
    static int onReady(void* exchange, char* remoteAddress, char* localAddress, int remotePort,
                       int localPort);

    CURL* const easy_;
    CURLU* const url_;
    CURLSH* const share_;
    Rounds& rounds_;
    std::array<char, CURL_ERROR_SIZE> errorText_{};
    bool isPrepared_ = true;
    bool endedWell_ = false;
    std::optional<Profile> profile_;
    std::string encodingsLine_;
    std::string urlText_; // the text that url_ was parsed from

    // Per transfer.
    std::shared_ptr<URLTransfer> transfer_;
    std::unique_ptr<TransferPlan> plan_; // its URL is that of the current hop
    std::optional<URL> redirect_;
    std::vector<curl_slist> headerList_;
    std::optional<HTTPBody::Reader> reader_;
    std::string smallBody_;
    std::uint64_t bodySize_ = 0;
    int redirects_ = 0;
    Clock::duration timeout_{};
    Clock::time_point giveUpAt_;

    // Per hop.
    ResponseHead head_;
    std::optional<std::uint64_t> contentLength_;
    std::optional<URLErrorCode> failure_; // why a callback ended the hop
    Clock::time_point movedAt_;
    std::uint64_t headSize_ = 0;
    std::uint64_t received_ = 0;
    std::uint64_t sent_ = 0;
    std::uint64_t acknowledgedAtCheck_ = 0;
    int attempts_ = 0;
    Connections::Ports ports_;
    bool isHeldBack_ = false;
    bool isCutOff_ = false; // an error body that was long enough
    bool isDraining_ = false;
    std::uint64_t drained_ = 0;
    Clock::time_point drainUntil_;
};

} // namespace zelto
