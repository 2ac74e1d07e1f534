#include <Platform/HTTP/URLSessionConfiguration.h>

#include <mutex>
#include <utility>

namespace zelto {
namespace {

struct Defaults {
    std::mutex lock;
    URLSessionConfiguration configuration;
};

Defaults& defaults() {
    static auto* all = new Defaults; // never destroyed: sessions may be created until the process has ended
    return *all;
}

} // namespace

URLSessionConfiguration URLSessionConfiguration::ephemeral() {
    const std::lock_guard guard(defaults().lock);
    return defaults().configuration;
}

void URLSessionConfiguration::setDefaults(URLSessionConfiguration configuration) {
    const std::lock_guard guard(defaults().lock);
    defaults().configuration = std::move(configuration);
}

} // namespace zelto
