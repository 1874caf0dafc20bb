// The diagnostic hooks. They are empty and exported: a program that defines DEBUG_PRINT itself receives the texts that
// the library hands to it.

#include "foundation/PublicApi.h"

void DEBUG_PRINT(const char *, ...) {}
void DEBUG_PRINT_MSG(const char *, ...) {}
void DEBUG_PRINT_TO_FILE(const char *, ...) {}
void DEBUG_PRINT_TO_FILE_DATE(const char *, ...) {}
