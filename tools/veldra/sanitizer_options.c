// SPDX-License-Identifier: GPL-2.0-or-later
/* What the sanitizers end the program with: none of its own exit statuses, so that nobody who waits
   for an error takes one for the other. The sanitizers ask for it by these names. */
const char* __asan_default_options(void);
const char* __lsan_default_options(void);
const char* __ubsan_default_options(void);
const char* __lsan_default_suppressions(void);

static const char* const options = "exitcode=99";

const char* __asan_default_options(void) { return options; }
const char* __lsan_default_options(void) { return options; }
const char* __ubsan_default_options(void) { return options; }

/* The one keeps what it has read of the fonts until the process ends, and forgets where; the other
   forgets one text for each drop-down of a workbook. */
const char* __lsan_default_suppressions(void) {
  return "leak:libfontconfig.so\nleak:libxlsxwriter.so";
}
