#include <ZeltoHost/Process/ProcessRunner.h>

#include <Platform/Operations/ContainedException.h>

namespace zelto {

void ProcessRunner::start(ProcessRequest request, Callback<ProcessResult> completion) {
    // Shared, so that it can still be called if no thread can be created.
    auto pending = std::make_shared<Callback<ProcessResult>>(std::move(completion));
    const auto error = threads_.start([pending, request = std::move(request)](const std::stop_token& stop) {
        ProcessResult result;
        if (!returnsNormally("The run of a program", [&] { result = runProcess(request, stop); })) {
            result.end = ProcessFailedToStart{std::make_error_code(std::errc::not_enough_memory)};
        }
        (*pending)(std::move(result));
    });
    if (error) {
        (*pending)({ProcessFailedToStart{error}, {}, {}});
    }
}

} // namespace zelto
