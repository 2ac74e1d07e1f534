#pragma once

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

namespace zelto {

// As long as this lives, no file can grow beyond the size.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t size) {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before_), 0);
        auto limited = before_;
        limited.rlim_cur = size;
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limited), 0);
    }

    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    void (*const handler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before_{};
};

} // namespace zelto
