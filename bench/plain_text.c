// SPDX-License-Identifier: GPL-2.0-or-later
#include "plain_internal.h"

#include <stdlib.h>
#include <string.h>

static const uint64_t not_ascii = UINT64_C(0x8080808080808080);

static size_t ascii_prefix(const unsigned char* from, size_t bytes, uint16_t* to) {
  size_t at = 0;
  for (; at + 8 <= bytes; at += 8) {
    uint64_t eight;
    memcpy(&eight, from + at, 8);
    if (eight & not_ascii) break;
    for (size_t i = 0; i != 8; ++i) to[at + i] = from[at + i];
  }
  for (; at != bytes && from[at] < 0x80; ++at) to[at] = from[at];
  return at;
}

static unsigned continuation(const unsigned char* from, const unsigned char* end) {
  if (from >= end || (*from & 0xC0) != 0x80) fail("malformed UTF-8");
  return *from & 0x3F;
}

static size_t sequence_length(unsigned char first) {
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  if (first >= 0xF0 && first <= 0xF4) return 4;
  fail("malformed UTF-8");
  return 0;
}

static const unsigned char* decode_one(const unsigned char* from, const unsigned char* end,
                                       uint16_t** to) {
  if (*from < 0x80) {
    *(*to)++ = *from;
    return from + 1;
  }
  const size_t length = sequence_length(*from);
  unsigned code = *from & (0x7Fu >> length);
  for (size_t i = 1; i != length; ++i) code = code << 6 | continuation(from + i, end);
  if (code >= 0x10000) {
    *(*to)++ = (uint16_t)(0xD7C0 + (code >> 10));
    code = 0xDC00 | (code & 0x3FF);
  }
  *(*to)++ = (uint16_t)code;
  return from + length;
}

plain_text plain_decode(const char* utf8, size_t bytes) {
  if (bytes == 0) return NULL;
  uint16_t* text = malloc((bytes + 1) * sizeof *text);
  if (text == NULL) fail("no memory");

  const unsigned char* from = (const unsigned char*)utf8;
  const unsigned char* end = from + bytes;
  const size_t ascii = ascii_prefix(from, bytes, text);
  uint16_t* to = text + ascii;
  for (from += ascii; from != end;) from = decode_one(from, end, &to);
  *to = 0;
  return text;
}

plain_text plain_utf16(const char* utf8) { return plain_decode(utf8, strlen(utf8)); }

size_t plain_length(const uint16_t* text) {
  size_t length = 0;
  if (text == NULL) return 0;
  while (text[length] != 0) ++length;
  return length;
}

size_t plain_encode(const uint16_t* text, char* utf8) {
  char* to = utf8;
  if (text == NULL) return 0;
  for (; *text != 0; ++text) {
    unsigned code = *text;
    if (code < 0x80) {
      *to++ = (char)code;
      continue;
    }
    if (code < 0x800) {
      *to++ = (char)(0xC0 | code >> 6);
      *to++ = (char)(0x80 | (code & 0x3F));
      continue;
    }
    if (code >= 0xD800 && code < 0xDC00) {
      code = 0x10000 + ((code & 0x3FF) << 10 | (*++text & 0x3FF));
      *to++ = (char)(0xF0 | code >> 18);
      *to++ = (char)(0x80 | (code >> 12 & 0x3F));
    } else {
      *to++ = (char)(0xE0 | code >> 12);
    }
    *to++ = (char)(0x80 | (code >> 6 & 0x3F));
    *to++ = (char)(0x80 | (code & 0x3F));
  }
  return (size_t)(to - utf8);
}
