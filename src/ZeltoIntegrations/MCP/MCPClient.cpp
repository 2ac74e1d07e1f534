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

// Takes the value, so that it is gone when the record goes on.
template <class T> MCPResult<T> decodeResult(MCPResult<JSONValue> result) {
    if (!result) {
        return failure(std::move(result.error()));
    }
    return decodedBy([&] { return result->template as<T>(); });
}

// Adds a page to the tools; gives the cursor of the next one.
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

// A completion of which two ends are possible; the first counts.
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

// What the callbacks of operations under way keep alive.
class MCPClient::Operations : public std::enable_shared_from_this<Operations> {
  public:
    Operations(std::shared_ptr<MCPTransport> transport, MCPCapabilities capabilities,
               MCPImplementationInfo clientInfo)
        : transport_(std::move(transport)), capabilities_(std::move(capabilities)),
          clientInfo_(std::move(clientInfo)) {}

    // How many cancellations an operation finds when it begins; none of its messages is sent after another.
    using Turn = std::uint64_t;

    MCPTransport& transport() { return *transport_; }

    Turn turn() const { return cancellations_; }

    void cancelAll() {
        ++cancellations_;
        transport_->cancelAll();
    }

    void initialize(Turn turn, MCPCompletion<MCPInitializeResult> completion) {
        transport_->clearSession();
        transport_->setProtocolVersion(std::nullopt);
        auto params =
            makeParams(MCPInitializeParams{.capabilities = capabilities_, .clientInfo = clientInfo_});
        if (!params) {
            return failInitialization(std::move(params.error()), std::move(completion));
        }
        sendRequest(turn, "initialize", *std::move(params),
                    [self = shared_from_this(), turn,
                     completion = std::move(completion)](MCPResult<JSONValue> value) mutable {
                        auto result = decodeResult<MCPInitializeResult>(std::move(value));
                        if (!result) {
                            return self->failInitialization(std::move(result.error()), std::move(completion));
                        }
                        self->confirm(turn, *std::move(result), std::move(completion));
                    });
    }

    void ping(Turn turn, MCPCompletion<void> completion) {
        sendRequest(turn, "ping", std::nullopt,
                    [completion = std::move(completion)](MCPResult<JSONValue> result) mutable {
                        completion(result ? MCPResult<void>() : failure(std::move(result.error())));
                    });
    }

    void listTools(Turn turn, MCPCompletion<std::vector<MCPTool>> completion) {
        listPage(turn, std::nullopt, {}, std::move(completion));
    }

    void callTool(Turn turn, const MCPToolCallParams& params, MCPCompletion<MCPToolCallResult> completion) {
        auto value = makeParams(params);
        if (!value) {
            return completion(failure(std::move(value.error())));
        }
        sendRequest(turn, "tools/call", *std::move(value),
                    [completion = std::move(completion)](MCPResult<JSONValue> answer) mutable {
                        auto result = decodeResult<MCPToolCallResult>(std::move(answer));
                        if (result && result->isError == true) {
                            result = failure(MCPError(MCPClientError::toolCallFailed(*std::move(result))));
                        }
                        completion(std::move(result));
                    });
    }

    template <class T>
    void performWithSessionRetry(std::function<void(Turn, MCPCompletion<T>)> operation,
                                 MCPCompletion<T> completion) {
        const auto begun = turn();
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
    // While the answer before is being taken, the transport has nothing of the operation that it could
    // cancel. A message that goes out in the very moment of a cancellation may escape it, and then goes
    // unheard.
    template <class T, class Message> void send(Turn turn, Message message, MCPCompletion<T> completion) {
        if (turn != cancellations_) {
            return completion(failure(cancelled()));
        }
        const auto end = std::make_shared<FirstEnd<T>>(std::move(completion));
        transport_->send(std::move(message), [end](MCPResult<T> answer) { (*end)(std::move(answer)); });
        if (turn != cancellations_) {
            (*end)(failure(cancelled()));
        }
    }

    void sendRequest(Turn turn, std::string method, std::optional<JSONValue> params,
                     MCPCompletion<JSONValue> completion) {
        send<MCPResponse>(turn, MCPRequest{freshID(), std::move(method), std::move(params)},
                          [self = shared_from_this(),
                           completion = std::move(completion)](MCPResult<MCPResponse> response) mutable {
                              completion(response ? validateSuccess(*std::move(response))
                                                  : failure(std::move(response.error())));
                          });
    }

    void confirm(Turn turn, MCPInitializeResult result, MCPCompletion<MCPInitializeResult> completion) {
        transport_->setProtocolVersion(result.protocolVersion);
        send<void>(turn, MCPNotification{"notifications/initialized", std::nullopt},
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

    void listPage(Turn turn, std::optional<JSONValue> params, std::vector<MCPTool> tools,
                  MCPCompletion<std::vector<MCPTool>> completion) {
        sendRequest(turn, "tools/list", std::move(params),
                    [self = shared_from_this(), turn, tools = std::move(tools),
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
                        self->listPage(turn, *std::move(next), std::move(tools), std::move(completion));
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
    operations_->initialize(operations_->turn(), std::move(completion));
}

void MCPClient::ping(MCPCompletion<void> completion) {
    operations_->performWithSessionRetry<void>(
        [operations = operations_](auto turn, MCPCompletion<void> done) {
            operations->ping(turn, std::move(done));
        },
        std::move(completion));
}

void MCPClient::listTools(MCPCompletion<std::vector<MCPTool>> completion) {
    operations_->performWithSessionRetry<std::vector<MCPTool>>(
        [operations = operations_](auto turn, MCPCompletion<std::vector<MCPTool>> done) {
            operations->listTools(turn, std::move(done));
        },
        std::move(completion));
}

void MCPClient::callTool(std::string name, std::optional<JSONValue> arguments,
                         MCPCompletion<MCPToolCallResult> completion) {
    const auto params =
        std::make_shared<const MCPToolCallParams>(MCPToolCallParams{std::move(name), std::move(arguments)});
    operations_->performWithSessionRetry<MCPToolCallResult>(
        [operations = operations_, params](auto turn, MCPCompletion<MCPToolCallResult> done) {
            operations->callTool(turn, *params, std::move(done));
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
