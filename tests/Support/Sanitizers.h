#pragma once

// ZELTO_ADDRESS_SANITIZER and ZELTO_THREAD_SANITIZER, with either compiler.

#if defined(__SANITIZE_ADDRESS__)
#define ZELTO_ADDRESS_SANITIZER
#elif defined(__SANITIZE_THREAD__)
#define ZELTO_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZELTO_ADDRESS_SANITIZER
#elif __has_feature(thread_sanitizer)
#define ZELTO_THREAD_SANITIZER
#endif
#endif
