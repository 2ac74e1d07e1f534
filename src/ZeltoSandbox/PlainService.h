#pragma once

#include <ZeltoSandbox/BearerAccess.h>
#include <ZeltoSandbox/SandboxService.h>

#include <string>

namespace zelto::sandbox {

// A service whose sign-in the sandbox has, but not its API: it checks the bearer token and refuses everything
// with 501.
class PlainService final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxContext& context, const SandboxServiceRow& row) {
        return std::make_unique<PlainService>(context, std::string(row.name));
    }

    PlainService(SandboxContext& context, std::string name) : context_(context), name_(std::move(name)) {}

    SandboxResponse respond(const SandboxRequest& request) override {
        if (const auto grant = bearerGrant(request, context_.tokens, name_); !grant) {
            return failure(401).because(grant.error());
        }
        return SandboxResponse::text(
                   "The sandbox has no " + request.method + " " + request.path + " of " + name_ + ".\n", 501)
            .because("the sandbox does not have it");
    }

    SandboxResponse failure(int status) const override {
        return SandboxResponse::json(
            JSONObject{{"error", status == 401 ? "invalid_token" : std::string(reasonPhrase(status))}},
            status);
    }

    JSONObject state() const override { return {}; }

    void reset() override {}

  private:
    SandboxContext& context_;
    std::string name_;
};

} // namespace zelto::sandbox
