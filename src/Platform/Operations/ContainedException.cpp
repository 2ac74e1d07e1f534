#include <Platform/Operations/ContainedException.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <typeinfo>

namespace zelto {
namespace {

void writeType(std::string_view where, const std::exception_ptr&) {
    const std::type_info* type = abi::__cxa_current_exception_type();
    const std::unique_ptr<char, void (*)(void*)> name(
        type ? abi::__cxa_demangle(type->name(), nullptr, nullptr, nullptr) : nullptr, std::free);
    std::fprintf(stderr, "%.*s threw %s; it counts as done\n", static_cast<int>(where.size()), where.data(),
                 name ? name.get() : "an exception");
}

std::atomic<ContainedExceptionHandler> handler = writeType;

} // namespace

ContainedExceptionHandler setContainedExceptionHandler(ContainedExceptionHandler next) noexcept {
    return handler.exchange(next ? next : writeType);
}

void reportContainedException(std::string_view where) noexcept {
    handler.load()(where, std::current_exception());
}

} // namespace zelto
