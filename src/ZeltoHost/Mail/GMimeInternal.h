#pragma once

// For sources only: brings in GMime.

#include <gmime/gmime.h>

#include <memory>
#include <string>

namespace zelto {

// Sets GMime up on the first call; gives the options for all headers.
GMimeParserOptions* gmimeOptions();

struct GLibDeleter {
    void operator()(char* text) const { g_free(text); }

    void operator()(GDateTime* date) const { g_date_time_unref(date); }

    template <class T> void operator()(T* object) const { g_object_unref(object); }
};

template <class T> using GLibPointer = std::unique_ptr<T, GLibDeleter>;

inline std::string textOf(const char* text) {
    return text == nullptr ? std::string() : std::string(text);
}

} // namespace zelto
