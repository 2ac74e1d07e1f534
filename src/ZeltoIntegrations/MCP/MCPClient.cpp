#include <ZeltoIntegrations/MCP/MCPClient.h>

#include <ZeltoIntegrations/MCP/MCPDecodingInternal.h>
#include <ZeltoIntegrations/MCP/MCPHTTPTransport.h>

#include <Platform/UUID.h>

#include <algorithm>
#include <functional>
#include <utility>

namespace zelto {

namespace {

MCPRequestID freshID() {
    auto text = uuid();
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c & ~0x20) : c; });
    return MCPRequestID::string(std::move(text));
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

} // namespace

// What the callbacks of operations under way keep alive.
class MCPClient::Operations : public std::enable_shared_from_this<Operations> {
  public:
    Operations(std::shared_ptr<MCPTransport> transport, MCPCapabilities capabilities,
               MCPImplementationInfo clientInfo)
        : transport_(std::move(transport)), capabilities_(std::move(capabilities)),
          clientInfo_(std::move(clientInfo)) {}

    MCPTransport& transport() { return *transport_; }

    void initialize(MCPCompletion<MCPInitializeResult> completion) {
        transport_->clearSession();
        transport_->setProtocolVersion(std::nullopt);
        auto params =
            makeParams(MCPInitializeParams{.capabilities = capabilities_, .clientInfo = clientInfo_});
        if (!params) {
            return failInitialization(std::move(params.error()), std::move(completion));
        }
        sendRequest("initialize", *std::move(params),
                    [self = shared_from_this(),
                     completion = std::move(completion)](MCPResult<JSONValue> value) mutable {
                        auto result = decodeResult<MCPInitializeResult>(std::move(value));
                        if (!result) {
                            return self->failInitialization(std::move(result.error()), std::move(completion));
                        }
                        self->confirm(*std::move(result), std::move(completion));
                    });
    }

    void ping(MCPCompletion<void> completion) {
        sendRequest("ping", std::nullopt,
                    [completion = std::move(completion)](MCPResult<JSONValue> result) mutable {
                        completion(result ? MCPResult<void>() : failure(std::move(result.error())));
                    });
    }

    void listTools(MCPCompletion<std::vector<MCPTool>> completion) {
        listPage(std::nullopt, {}, std::move(completion));
    }

    void callTool(const MCPToolCallParams& params, MCPCompletion<MCPToolCallResult> completion) {
        auto value = makeParams(params);
        if (!value) {
            return completion(failure(std::move(value.error())));
        }
        sendRequest("tools/call", *std::move(value),
                    [completion = std::move(completion)](MCPResult<JSONValue> answer) mutable {
                        auto result = decodeResult<MCPToolCallResult>(std::move(answer));
                        if (result && result->isError == true) {
                            result = failure(MCPError(MCPClientError::toolCallFailed(*std::move(result))));
                        }
                        completion(std::move(result));
                    });
    }

    template <class T>
    void performWithSessionRetry(std::function<void(MCPCompletion<T>)> operation,
                                 MCPCompletion<T> completion) {
        operation([self = shared_from_this(), operation,
                   completion = std::move(completion)](MCPResult<T> result) mutable {
            if (result || !result.error().template is<MCPClientError::SessionExpired>()) {
                return completion(std::move(result));
            }
            self->initialize([operation = std::move(operation), completion = std::move(completion)](
                                 MCPResult<MCPInitializeResult> initialized) mutable {
                if (!initialized) {
                    return completion(failure(std::move(initialized.error())));
                }
                operation(std::move(completion));
            });
        });
    }

  private:
    void sendRequest(std::string method, std::optional<JSONValue> params,
                     MCPCompletion<JSONValue> completion) {
        transport_->send(MCPRequest{freshID(), std::move(method), std::move(params)},
                         [self = shared_from_this(),
                          completion = std::move(completion)](MCPResult<MCPResponse> response) mutable {
                             completion(response ? validateSuccess(*std::move(response))
                                                 : failure(std::move(response.error())));
                         });
    }

    void confirm(MCPInitializeResult result, MCPCompletion<MCPInitializeResult> completion) {
        transport_->setProtocolVersion(result.protocolVersion);
        transport_->send(MCPNotification{"notifications/initialized", std::nullopt},
                         [self = shared_from_this(), result = std::move(result),
                          completion = std::move(completion)](MCPResult<void> sent) mutable {
                             if (!sent) {
                                 return self->failInitialization(std::move(sent.error()),
                                                                 std::move(completion));
                             }
                             completion(std::move(result));
                         });
    }

    void failInitialization(MCPError error, MCPCompletion<MCPInitializeResult> completion) {
        transport_->clearSession();
        transport_->setProtocolVersion(std::nullopt);
        completion(failure(std::move(error)));
    }

    void listPage(std::optional<JSONValue> params, std::vector<MCPTool> tools,
                  MCPCompletion<std::vector<MCPTool>> completion) {
        sendRequest("tools/list", std::move(params),
                    [self = shared_from_this(), tools = std::move(tools),
                     completion = std::move(completion)](MCPResult<JSONValue> value) mutable {
                        auto page = decodeResult<MCPToolListResult>(std::move(value));
                        if (!page) {
                            return completion(failure(std::move(page.error())));
                        }
                        std::ranges::move(page->tools, std::back_inserter(tools));
                        if (!page->nextCursor) {
                            return completion(std::move(tools));
                        }
                        auto next = makeParams(MCPToolListParams{std::move(page->nextCursor)});
                        if (!next) {
                            return completion(failure(std::move(next.error())));
                        }
                        self->listPage(*std::move(next), std::move(tools), std::move(completion));
                    });
    }

    std::shared_ptr<MCPTransport> transport_;
    MCPCapabilities capabilities_;
    MCPImplementationInfo clientInfo_;
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
    operations_->initialize(std::move(completion));
}

void MCPClient::ping(MCPCompletion<void> completion) {
    operations_->performWithSessionRetry<void>(
        [operations = operations_](MCPCompletion<void> done) { operations->ping(std::move(done)); },
        std::move(completion));
}

void MCPClient::listTools(MCPCompletion<std::vector<MCPTool>> completion) {
    operations_->performWithSessionRetry<std::vector<MCPTool>>(
        [operations = operations_](MCPCompletion<std::vector<MCPTool>> done) {
            operations->listTools(std::move(done));
        },
        std::move(completion));
}

void MCPClient::callTool(std::string name, std::optional<JSONValue> arguments,
                         MCPCompletion<MCPToolCallResult> completion) {
    const auto params =
        std::make_shared<const MCPToolCallParams>(MCPToolCallParams{std::move(name), std::move(arguments)});
    operations_->performWithSessionRetry<MCPToolCallResult>(
        [operations = operations_, params](MCPCompletion<MCPToolCallResult> done) {
            operations->callTool(*params, std::move(done));
        },
        std::move(completion));
}

void MCPClient::disconnect(MCPCompletion<void> completion) {
    operations_->transport().disconnect(std::move(completion));
}

void MCPClient::cancelAll() {
    operations_->transport().cancelAll();
}

} // namespace zelto
