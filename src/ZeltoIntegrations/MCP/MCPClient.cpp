#include <ZeltoIntegrations/MCP/MCPClient.h>

#include <ZeltoIntegrations/MCP/MCPCallDeadlinesInternal.h>
#include <ZeltoIntegrations/MCP/MCPHTTPTransport.h>
#include <ZeltoIntegrations/MCP/MCPResultsInternal.h>
#include <ZeltoIntegrations/MCP/MCPSessionGateInternal.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <functional>
#include <iterator>
#include <utility>

namespace zelto {

namespace {

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

} // namespace

// Shared by the callbacks of running operations, and kept alive by them.
class MCPClient::Operations : public std::enable_shared_from_this<Operations> {
  public:
    using Call = std::shared_ptr<MCPRunningCall>;
    template <class T> using Operation = std::function<void(const Call&, MCPCompletion<T>)>;

    Operations(std::shared_ptr<MCPTransport> transport, MCPCapabilities capabilities,
               MCPImplementationInfo clientInfo)
        : sender_(std::move(transport)),
          gate_(std::make_shared<MCPSessionGate>(
              cancellations_, MCPHandshake(sender_, std::move(capabilities), std::move(clientInfo)))) {}

    MCPSessionGate& gate() { return *gate_; }

    void cancelAll() {
        ++*cancellations_;
        gate_->cancelAll();
        sender_.transport().cancelAll();
    }

    template <class T>
    MCPCall perform(MCPCompletion<T> completion, const MCPCallOptions& options,
                    const Operation<T>& operation) {
        const auto call = std::make_shared<MCPRunningCall>(cancellations_);
        gate_->registerCall(*call);
        auto deadline = options.timeout ? MCPCallDeadlines::shared().add(call, *options.timeout)
                                        : MCPCallDeadlines::Deadline();
        operation(call, [self = shared_from_this(), call, deadline = std::move(deadline),
                         completion = std::move(completion)](MCPResult<T> result) mutable {
            completion(call->finish(std::move(result)));
        });
        return MCPCall(call);
    }

    template <class T>
    MCPCall performWithSessionRetry(MCPCompletion<T> completion, const MCPCallOptions& options,
                                    Operation<T> operation) {
        return perform<T>(std::move(completion), options,
                          [this, operation = std::move(operation)](const Call& call, MCPCompletion<T> done) {
                              attempt(call, operation, false, std::move(done));
                          });
    }

    void connect(const Call& call, MCPCompletion<MCPInitializeResult> completion) {
        gate_->connect(call, std::move(completion));
    }

    void disconnect(const Call& call, MCPCompletion<void> completion) {
        gate_->disconnect(call, [sender = sender_, call,
                                 completion = std::move(completion)](MCPResult<void> reached) mutable {
            if (!reached) {
                return completion(std::move(reached));
            }
            sender.disconnect(call, std::move(completion));
        });
    }

    void ping(const Call& call, MCPCompletion<void> completion) {
        request(call, "ping", std::nullopt,
                [completion = std::move(completion)](MCPResult<JSONValue> result) mutable {
                    completion(result ? MCPResult<void>() : failure(std::move(result.error())));
                });
    }

    void listPage(const Call& call, std::optional<JSONValue> params, std::vector<MCPTool> tools,
                  MCPCompletion<std::vector<MCPTool>> completion) {
        request(call, "tools/list", std::move(params),
                [self = shared_from_this(), call, tools = std::move(tools),
                 completion = std::move(completion)](MCPResult<JSONValue> value) mutable {
                    self->goOnListing(call, std::move(value), std::move(tools), std::move(completion));
                });
    }

    void callTool(const Call& call, const MCPToolCallParams& params,
                  MCPCompletion<MCPToolCallResult> completion) {
        auto value = makeParams(params);
        if (!value) {
            return completion(failure(std::move(value.error())));
        }
        request(call, "tools/call", *std::move(value),
                [completion = std::move(completion)](MCPResult<JSONValue> response) mutable {
                    auto result = decodeResult<MCPToolCallResult>(std::move(response));
                    if (result && result->isError == true) {
                        result = failure(MCPError(MCPClientError::toolCallFailed(*std::move(result))));
                    }
                    completion(std::move(result));
                });
    }

  private:
    void request(const Call& call, std::string method, std::optional<JSONValue> params,
                 MCPCompletion<JSONValue> completion) {
        gate_->send(
            call, [sender = sender_, call, method = std::move(method), params = std::move(params),
                   completion = std::move(completion)](MCPResult<MCPMessageSender::Place> place) mutable {
                if (!place) {
                    return completion(failure(std::move(place.error())));
                }
                sender.request(call, *place, std::move(method), std::move(params), std::move(completion));
            });
    }

    void goOnListing(const Call& call, MCPResult<JSONValue> value, std::vector<MCPTool> tools,
                     MCPCompletion<std::vector<MCPTool>> completion) {
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
        listPage(call, *std::move(next), std::move(tools), std::move(completion));
    }

    template <class T> static bool isExpired(const MCPResult<T>& result) {
        return !result && result.error().template is<MCPClientError::SessionExpired>();
    }

    // A call that finds its session expired is repeated in a new one, once; a try of which nothing was sent
    // does not count.
    template <class T>
    void attempt(const Call& call, Operation<T> operation, bool isLast, MCPCompletion<T> completion) {
        call->sessionRecord.hasSent = false;
        operation(call, [self = shared_from_this(), call, operation, isLast,
                         completion = std::move(completion)](MCPResult<T> result) mutable {
            if (!isExpired(result)) {
                return completion(std::move(result));
            }
            self->repeat(call, std::move(operation), isLast, std::move(completion));
        });
    }

    template <class T>
    void repeat(const Call& call, Operation<T> operation, bool isLast, MCPCompletion<T> completion) {
        const bool hasSent = call->sessionRecord.hasSent;
        if (auto reason = call->reasonToEnd()) {
            return completion(failure(*std::move(reason)));
        }
        if (isLast && hasSent) {
            return completion(failure(gate_->giveUpSession(*call)));
        }
        gate_->renew(call, [self = shared_from_this(), call, operation = std::move(operation),
                            isLast = isLast || hasSent,
                            completion = std::move(completion)](MCPResult<void> renewed) mutable {
            if (!renewed) {
                return completion(failure(std::move(renewed.error())));
            }
            self->attempt(call, std::move(operation), isLast, std::move(completion));
        });
    }

    const std::shared_ptr<std::atomic<std::uint64_t>> cancellations_ =
        std::make_shared<std::atomic<std::uint64_t>>(0);
    const MCPMessageSender sender_;
    const std::shared_ptr<MCPSessionGate> gate_;
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

void MCPClient::setSessionObserver(std::function<void(const MCPInitializeResult&)> observer) {
    operations_->gate().setObserver(std::move(observer));
}

MCPCall MCPClient::connect(MCPCompletion<MCPInitializeResult> completion, const MCPCallOptions& options) {
    return operations_->perform<MCPInitializeResult>(
        std::move(completion), options, [&](const auto& call, MCPCompletion<MCPInitializeResult> done) {
            operations_->connect(call, std::move(done));
        });
}

MCPCall MCPClient::ping(MCPCompletion<void> completion, const MCPCallOptions& options) {
    return operations_->performWithSessionRetry<void>(
        std::move(completion), options,
        [operations = operations_](const auto& call, MCPCompletion<void> done) {
            operations->ping(call, std::move(done));
        });
}

MCPCall MCPClient::listTools(MCPCompletion<std::vector<MCPTool>> completion, const MCPCallOptions& options) {
    return operations_->performWithSessionRetry<std::vector<MCPTool>>(
        std::move(completion), options,
        [operations = operations_](const auto& call, MCPCompletion<std::vector<MCPTool>> done) {
            operations->listPage(call, std::nullopt, {}, std::move(done));
        });
}

MCPCall MCPClient::callTool(std::string name, std::optional<JSONValue> arguments,
                            MCPCompletion<MCPToolCallResult> completion, const MCPCallOptions& options) {
    const auto params =
        std::make_shared<const MCPToolCallParams>(MCPToolCallParams{std::move(name), std::move(arguments)});
    return operations_->performWithSessionRetry<MCPToolCallResult>(
        std::move(completion), options,
        [operations = operations_, params](const auto& call, MCPCompletion<MCPToolCallResult> done) {
            operations->callTool(call, *params, std::move(done));
        });
}

MCPCall MCPClient::disconnect(MCPCompletion<void> completion, const MCPCallOptions& options) {
    return operations_->perform<void>(
        std::move(completion), options,
        [&](const auto& call, MCPCompletion<void> done) { operations_->disconnect(call, std::move(done)); });
}

void MCPClient::cancelAll() {
    operations_->cancelAll();
}

} // namespace zelto
