// Which sanitizers the code is compiled for: each macro is 0 or 1.
#pragma once

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TESSARIN_ADDRESS_SANITIZER 1
#endif
#if __has_feature(thread_sanitizer)
#define TESSARIN_THREAD_SANITIZER 1
#endif
#endif

#if !defined(TESSARIN_ADDRESS_SANITIZER)
#if defined(__SANITIZE_ADDRESS__)
#define TESSARIN_ADDRESS_SANITIZER 1
#else
#define TESSARIN_ADDRESS_SANITIZER 0
#endif
#endif

#if !defined(TESSARIN_THREAD_SANITIZER)
#if defined(__SANITIZE_THREAD__)
#define TESSARIN_THREAD_SANITIZER 1
#else
#define TESSARIN_THREAD_SANITIZER 0
#endif
#endif
