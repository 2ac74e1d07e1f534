#pragma once

// For the transport alone: one request on one of libcurl's easy handles.

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

// Serves one transfer after the other, each over as many hops as redirects lead through. The I/O thread's
// alone. The engine adds the handle to its multi handle and takes it out.
class HTTPExchange {
  public:
    using Clock = std::chrono::steady_clock;

    // The engine's clock, read once a round, when it is to look whether all still move, and what there is
    // to see.
    struct Rounds {
        Clock::time_point now;
        Clock::time_point nextLook;
        Connections connections;
    };

    HTTPExchange(CURLSH* share, Rounds& rounds);
    ~HTTPExchange();
    HTTPExchange(const HTTPExchange&) = delete;
    HTTPExchange& operator=(const HTTPExchange&) = delete;

    static HTTPExchange& of(CURL* handle);

    CURL* handle() const { return easy_; }

    // Nothing while the rest of an answer is read that nobody waits for.
    const std::shared_ptr<URLTransfer>& transfer() const { return transfer_; }

    // False when the handle cannot be prepared; then there is nothing to add, and the transfer has its error.
    [[nodiscard]] bool begin(std::shared_ptr<URLTransfer> transfer, std::unique_ptr<TransferPlan> plan);

    // What libcurl's end of a hop means. True when another hop is prepared; else the transfer has its end.
    [[nodiscard]] bool goesOnAfter(CURLcode code);

    // Lets the transfer go. Whether the little that is left of the answer is worth reading, which keeps the
    // connection.
    [[nodiscard]] bool detach();

    // The delegate has room again. False when that ended the exchange.
    [[nodiscard]] bool proceed();

    // Says when to look at it again, or gives how it ends because it no longer moves.
    std::optional<CURLcode> overdue();

    // Whether what it runs on may be shared with others.
    bool mayBeHTTP2() const { return profile_ && !profile_->isPlain; }

    // Ready for another one.
    void reset();

    std::size_t place = 0; // among those under way

  private:
    static constexpr int mostRedirects = 5;
    // What is read of an answer that nobody waits for, to keep its connection.
    static constexpr std::uint64_t mostDrained = 64 * 1024;

    // What a handle is set up for beyond one request.
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
    void scheduleLook();
    bool standsStill();
    void lookAtConnection();
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
    std::string urlText_; // of url_

    // Of the transfer.
    std::shared_ptr<URLTransfer> transfer_;
    std::unique_ptr<TransferPlan> plan_; // its URL is that of the hop
    std::optional<URL> redirect_;
    std::vector<curl_slist> headerList_;
    std::optional<HTTPBody::Reader> reader_;
    std::string smallBody_;
    std::uint64_t bodySize_ = 0;
    int redirects_ = 0;
    Clock::duration patience_{};
    Clock::time_point giveUpAt_;

    // Of the hop.
    ResponseHead head_;
    std::optional<std::uint64_t> contentLength_;
    std::optional<URLErrorCode> failure_; // why a callback ended it
    Clock::time_point movedAt_;
    std::uint64_t headSize_ = 0;
    std::uint64_t received_ = 0;
    std::uint64_t sent_ = 0;
    std::uint64_t acknowledgedAtLook_ = 0;
    int attempts_ = 0;
    Connections::Ports ports_;
    bool isHeldBack_ = false;
    bool isDraining_ = false;
    std::uint64_t drained_ = 0;
    Clock::time_point drainUntil_;
};

} // namespace zelto
