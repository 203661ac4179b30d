// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_SANITIZED_HPP
#define VELDRA_TESTS_SUPPORT_SANITIZED_HPP

/// Defined where the sanitizer for addresses keeps memory that was freed, and takes its time. Each
/// compiler says so in its own way.
#if defined(__SANITIZE_ADDRESS__)
#define VELDRA_KEEPS_FREED_MEMORY
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VELDRA_KEEPS_FREED_MEMORY
#endif
#endif

#endif
