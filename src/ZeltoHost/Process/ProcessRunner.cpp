#include <ZeltoHost/Process/ProcessRunner.h>

namespace zelto {

void ProcessRunner::start(ProcessRequest request, Callback<ProcessResult> completion) {
    // Shared, so that it is still here if no thread can be made.
    auto pending = std::make_shared<Callback<ProcessResult>>(std::move(completion));
    const auto error = threads_.start([pending, request = std::move(request)](const std::stop_token& stop) {
        (*pending)(runProcess(request, stop));
    });
    if (error) {
        (*pending)({ProcessFailedToStart{error}, {}, {}});
    }
}

} // namespace zelto
