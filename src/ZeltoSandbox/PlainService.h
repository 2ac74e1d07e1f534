#pragma once

#include <ZeltoSandbox/SandboxService.h>

#include <string>

namespace zelto::sandbox {

// A service of which the sandbox has the sign-in alone: it checks the bearer token, and says of everything
// else that it is not there.
class PlainService final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxWorld& world, const SandboxServiceRow& row) {
        return std::make_unique<PlainService>(world, std::string(row.name));
    }

    PlainService(SandboxWorld& world, std::string name) : world_(world), name_(std::move(name)) {}

    SandboxAnswer answer(const SandboxRequest& request) override {
        if (const auto problem = bearerProblem(request, world_.tokens, name_); !problem.empty()) {
            return failure(401).because(std::string(problem));
        }
        return SandboxAnswer::text(
                   "The sandbox has no " + request.method + " " + request.path + " of " + name_ + ".\n", 501)
            .because("the sandbox does not have it");
    }

    SandboxAnswer failure(int status) const override {
        return SandboxAnswer::json(
            JSONObject{{"error", status == 401 ? "invalid_token" : std::string(reasonPhrase(status))}},
            status);
    }

    JSONObject state() const override { return {}; }

    void reset() override {}

  private:
    SandboxWorld& world_;
    std::string name_;
};

} // namespace zelto::sandbox
