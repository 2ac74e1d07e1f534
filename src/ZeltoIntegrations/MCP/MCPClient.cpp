#include <ZeltoIntegrations/MCP/MCPClient.h>

#include <ZeltoIntegrations/MCP/MCPDecodingInternal.h>
#include <ZeltoIntegrations/MCP/MCPHTTPTransport.h>

#include <Platform/ASCII.h>
#include <Platform/UUID.h>

#include <TrovenhalCommon/OnceGate.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <functional>
#include <iterator>
#include <utility>

namespace zelto {

namespace {

MCPRequestID freshID() {
    return MCPRequestID::string(toASCIIUpper(uuid()));
}

template <class T> MCPResult<JSONValue> makeParams(const T& params) {
    auto value = JSONValue::of(params);
    if (!value) {
        return failure(MCPError(std::move(value.error())));
    }
    return *std::move(value);
}

MCPResult<JSONValue> validateSuccess(MCPResponse response) {
    if (response.error) {
        return failure(MCPError(MCPClientError::jsonRPCFailure(*std::move(response.error))));
    }
    if (!response.result) {
        return failure(MCPError(MCPClientError::missingJSONRPCResult()));
    }
    return *std::move(response.result);
}

// Takes the value, so that its memory is free when the caller goes on with the record.
template <class T> MCPResult<T> decodeResult(MCPResult<JSONValue> result) {
    if (!result) {
        return failure(std::move(result.error()));
    }
    return decodedBy([&] { return result->template as<T>(); });
}

// Adds a page to the tools and gives the cursor of the next one.
MCPResult<std::optional<std::string>> takePage(MCPResult<JSONValue> value, std::vector<MCPTool>& tools) {
    if (!value) {
        return failure(std::move(value.error()));
    }
    return decodedBy([&]() -> Result<std::optional<std::string>, DecodingError> {
        auto page = value->as<MCPToolListResult>();
        if (!page) {
            return failure(std::move(page.error()));
        }
        std::ranges::move(page->tools, std::back_inserter(tools));
        return std::move(page->nextCursor);
    });
}

MCPError cancelled() {
    return URLError{URLErrorCode::cancelled, "The operation was cancelled."};
}

// A completion that may be ended from two sides; the first one counts.
template <class T> class FirstEnd {
  public:
    explicit FirstEnd(MCPCompletion<T> completion) : completion_(std::move(completion)) {}

    void operator()(MCPResult<T> result) {
        gate_.once([&] { completion_(std::move(result)); });
    }

  private:
    OnceGate gate_;
    MCPCompletion<T> completion_;
};

} // namespace

// Shared by the callbacks of running operations, and kept alive by them.
class MCPClient::Operations : public std::enable_shared_from_this<Operations> {
  public:
    Operations(std::shared_ptr<MCPTransport> transport, MCPCapabilities capabilities,
               MCPImplementationInfo clientInfo)
        : transport_(std::move(transport)), capabilities_(std::move(capabilities)),
          clientInfo_(std::move(clientInfo)) {}

    // The number of cancellations so far. An operation keeps the number of its beginning, and sends no
    // message once there was another cancellation.
    using Generation = std::uint64_t;

    MCPTransport& transport() { return *transport_; }

    Generation generation() const { return cancellations_; }

    void cancelAll() {
        ++cancellations_;
        transport_->cancelAll();
    }

    void initialize(Generation generation, MCPCompletion<MCPInitializeResult> completion) {
        transport_->clearSession();
        transport_->setProtocolVersion(std::nullopt);
        auto params =
            makeParams(MCPInitializeParams{.capabilities = capabilities_, .clientInfo = clientInfo_});
        if (!params) {
            return failInitialization(std::move(params.error()), std::move(completion));
        }
        sendRequest(generation, "initialize", *std::move(params),
                    [self = shared_from_this(), generation,
                     completion = std::move(completion)](MCPResult<JSONValue> value) mutable {
                        auto result = decodeResult<MCPInitializeResult>(std::move(value));
                        if (!result) {
                            return self->failInitialization(std::move(result.error()), std::move(completion));
                        }
                        self->confirm(generation, *std::move(result), std::move(completion));
                    });
    }

    void ping(Generation generation, MCPCompletion<void> completion) {
        sendRequest(generation, "ping", std::nullopt,
                    [completion = std::move(completion)](MCPResult<JSONValue> result) mutable {
                        completion(result ? MCPResult<void>() : failure(std::move(result.error())));
                    });
    }

    void listTools(Generation generation, MCPCompletion<std::vector<MCPTool>> completion) {
        listPage(generation, std::nullopt, {}, std::move(completion));
    }

    void callTool(Generation generation, const MCPToolCallParams& params,
                  MCPCompletion<MCPToolCallResult> completion) {
        auto value = makeParams(params);
        if (!value) {
            return completion(failure(std::move(value.error())));
        }
        sendRequest(generation, "tools/call", *std::move(value),
                    [completion = std::move(completion)](MCPResult<JSONValue> response) mutable {
                        auto result = decodeResult<MCPToolCallResult>(std::move(response));
                        if (result && result->isError == true) {
                            result = failure(MCPError(MCPClientError::toolCallFailed(*std::move(result))));
                        }
                        completion(std::move(result));
                    });
    }

    template <class T>
    void performWithSessionRetry(std::function<void(Generation, MCPCompletion<T>)> operation,
                                 MCPCompletion<T> completion) {
        const auto begun = generation();
        operation(begun, [self = shared_from_this(), begun, operation,
                          completion = std::move(completion)](MCPResult<T> result) mutable {
            if (result || !result.error().template is<MCPClientError::SessionExpired>()) {
                return completion(std::move(result));
            }
            self->initialize(begun,
                             [begun, operation = std::move(operation), completion = std::move(completion)](
                                 MCPResult<MCPInitializeResult> initialized) mutable {
                                 if (!initialized) {
                                     return completion(failure(std::move(initialized.error())));
                                 }
                                 operation(begun, std::move(completion));
                             });
        });
    }

  private:
    // Between a response and the next message, the transport has nothing of the operation that it could
    // cancel. A message that is sent at the very moment of a cancellation may escape it; its response is then
    // ignored.
    template <class T, class Message>
    void send(Generation generation, Message message, MCPCompletion<T> completion) {
        if (generation != cancellations_) {
            return completion(failure(cancelled()));
        }
        const auto end = std::make_shared<FirstEnd<T>>(std::move(completion));
        transport_->send(std::move(message), [end](MCPResult<T> result) { (*end)(std::move(result)); });
        if (generation != cancellations_) {
            (*end)(failure(cancelled()));
        }
    }

    void sendRequest(Generation generation, std::string method, std::optional<JSONValue> params,
                     MCPCompletion<JSONValue> completion) {
        send<MCPResponse>(generation, MCPRequest{freshID(), std::move(method), std::move(params)},
                          [self = shared_from_this(),
                           completion = std::move(completion)](MCPResult<MCPResponse> response) mutable {
                              completion(response ? validateSuccess(*std::move(response))
                                                  : failure(std::move(response.error())));
                          });
    }

    void confirm(Generation generation, MCPInitializeResult result,
                 MCPCompletion<MCPInitializeResult> completion) {
        transport_->setProtocolVersion(result.protocolVersion);
        send<void>(generation, MCPNotification{"notifications/initialized", std::nullopt},
                   [self = shared_from_this(), result = std::move(result),
                    completion = std::move(completion)](MCPResult<void> sent) mutable {
                       if (!sent) {
                           return self->failInitialization(std::move(sent.error()), std::move(completion));
                       }
                       completion(std::move(result));
                   });
    }

    void failInitialization(MCPError error, MCPCompletion<MCPInitializeResult> completion) {
        transport_->clearSession();
        transport_->setProtocolVersion(std::nullopt);
        completion(failure(std::move(error)));
    }

    void listPage(Generation generation, std::optional<JSONValue> params, std::vector<MCPTool> tools,
                  MCPCompletion<std::vector<MCPTool>> completion) {
        sendRequest(generation, "tools/list", std::move(params),
                    [self = shared_from_this(), generation, tools = std::move(tools),
                     completion = std::move(completion)](MCPResult<JSONValue> value) mutable {
                        auto cursor = takePage(std::move(value), tools);
                        if (!cursor) {
                            return completion(failure(std::move(cursor.error())));
                        }
                        if (!*cursor) {
                            return completion(std::move(tools));
                        }
                        auto next = makeParams(MCPToolListParams{*std::move(cursor)});
                        if (!next) {
                            return completion(failure(std::move(next.error())));
                        }
                        self->listPage(generation, *std::move(next), std::move(tools), std::move(completion));
                    });
    }

    std::shared_ptr<MCPTransport> transport_;
    MCPCapabilities capabilities_;
    MCPImplementationInfo clientInfo_;
    std::atomic<std::uint64_t> cancellations_ = 0;
};

MCPClient::MCPClient(URL endpointURL, std::shared_ptr<MCPAuthorizationProvider> authorizationProvider,
                     URLSessionConfiguration sessionConfiguration, MCPCapabilities capabilities,
                     MCPImplementationInfo clientInfo)
    : MCPClient(std::make_shared<MCPHTTPTransport>(std::move(endpointURL), std::move(authorizationProvider),
                                                   std::nullopt, std::move(sessionConfiguration)),
                std::move(capabilities), std::move(clientInfo)) {}

MCPClient::MCPClient(std::shared_ptr<MCPTransport> transport, MCPCapabilities capabilities,
                     MCPImplementationInfo clientInfo)
    : operations_(std::make_shared<Operations>(std::move(transport), std::move(capabilities),
                                               std::move(clientInfo))) {}

void MCPClient::connect(MCPCompletion<MCPInitializeResult> completion) {
    operations_->initialize(operations_->generation(), std::move(completion));
}

void MCPClient::ping(MCPCompletion<void> completion) {
    operations_->performWithSessionRetry<void>(
        [operations = operations_](auto generation, MCPCompletion<void> done) {
            operations->ping(generation, std::move(done));
        },
        std::move(completion));
}

void MCPClient::listTools(MCPCompletion<std::vector<MCPTool>> completion) {
    operations_->performWithSessionRetry<std::vector<MCPTool>>(
        [operations = operations_](auto generation, MCPCompletion<std::vector<MCPTool>> done) {
            operations->listTools(generation, std::move(done));
        },
        std::move(completion));
}

void MCPClient::callTool(std::string name, std::optional<JSONValue> arguments,
                         MCPCompletion<MCPToolCallResult> completion) {
    const auto params =
        std::make_shared<const MCPToolCallParams>(MCPToolCallParams{std::move(name), std::move(arguments)});
    operations_->performWithSessionRetry<MCPToolCallResult>(
        [operations = operations_, params](auto generation, MCPCompletion<MCPToolCallResult> done) {
            operations->callTool(generation, *params, std::move(done));
        },
        std::move(completion));
}

void MCPClient::disconnect(MCPCompletion<void> completion) {
    operations_->transport().disconnect(std::move(completion));
}

void MCPClient::cancelAll() {
    operations_->cancelAll();
}

} // namespace zelto
