/* Included before every source of a library that opens files by C's names: names are UTF-8 and as long as they need to be. */
#ifndef KELVARA_WIDE_FILES_H
#define KELVARA_WIDE_FILES_H

#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>

FILE *wide_fopen(const char *name, const char *mode);
int wide_open(const char *name, int flags, int mode);
/* Sets st_mode alone. */
int wide_stat(const char *name, struct stat *result);

#ifndef KELVARA_WIDE_FILES_C
#define fopen wide_fopen
#define fopen64 wide_fopen
#define _open wide_open
#define stat(name, result) wide_stat(name, result)
#endif

#endif
