// A foreign answer becomes a value or one typed error, by its status and its body; nothing else happens.

#include <ZeltoIntegrations/Client/ServiceOutcome.h>

#include <Platform/JSON/JSONRecordDescription.h>
#include <Platform/UTF8.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

struct FuzzList {
    std::string id;
    std::string name;
    bool closed = false;

    bool operator==(const FuzzList&) const = default;
};

struct FuzzBoard {
    std::string id;
    std::optional<std::string> name;
    std::vector<FuzzList> lists;
    std::optional<Date> dateLastActivity;

    bool operator==(const FuzzBoard&) const = default;
};

ZELTO_JSON_CODED(FuzzList);
ZELTO_JSON_CODED(FuzzBoard);
ZELTO_JSON_RECORD(FuzzList, id, name, (closed, defaulted));
ZELTO_JSON_RECORD(FuzzBoard, id, name, (lists, defaulted), dateLastActivity);

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

template <class T> void checkRecord(const ServiceResponse& answer, const JSONDecoder& decoder) {
    const auto value = serviceValue<T>(answer, decoder);
    if (!value) {
        require(value.error() == ServiceClientError::dataParseError);
        return;
    }
    const JSONEncoder encoder{.dateStrategy = decoder.dateStrategy};
    const auto text = encoder.encode(*value);
    require(text.has_value());
    // What has no body (204) is no JSON; all else is.
    require(decoder.decode<T>(*text).has_value());
}

void checkValues(const ServiceResponse& answer) {
    require(serviceValue<Data>(answer, {}) == answer.body);
    const auto text = serviceValue<std::string>(answer, {});
    require(text.has_value() == isValidUTF8(viewOf(answer.body)));
    for (const auto strategy : {DateStrategy::default_, DateStrategy::iso8601}) {
        checkRecord<OAuthToken>(answer, {strategy});
        checkRecord<OAuthErrorBody>(answer, {strategy});
        checkRecord<Empty>(answer, {strategy});
        checkRecord<std::vector<FuzzBoard>>(answer, {strategy});
        checkRecord<FuzzBoard>(answer, {strategy});
    }
}

void checkError(int status, std::string_view body, ServiceClientError error) {
    using E = ServiceClientError;
    require(error != E::connectionError && error != E::dataParseError && error != E::internalError);
    require((error == E::forbidden) == (status == 403) && (error == E::itemNotFound) == (status == 404));
    require((error == E::toManyRequests) == (status == 429));
    require((error == E::serviceInternalError || error == E::invalidAccount) == (status >= 500));
    if (error == E::authorizationError && status != 401) {
        const auto decoded = JSONDecoder().decode<OAuthErrorBody>(body);
        require(decoded && decoded->error == "invalid_grant");
    }
}

} // namespace

} // namespace zelto

// Two bytes of status, then the body.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace zelto;
    if (size < 2) {
        return 0;
    }
    static const auto url = *URL::parse("https://api.example/1/boards");
    const int status = (bytes[0] | bytes[1] << 8) % 1000;
    const std::string_view body(reinterpret_cast<const char*>(bytes) + 2, size - 2);
    const auto response = std::make_shared<HTTPURLResponse>(url, status, HTTPHeaders());
    const auto outcome = serviceOutcome(url, dataOf(body), response, std::nullopt);
    require(outcome.has_value() == (status >= 200 && status <= 299));
    if (outcome) {
        require(outcome->status == status && viewOf(outcome->body) == body);
        checkValues(*outcome);
    } else {
        checkError(status, body, outcome.error());
    }
    return 0;
}
