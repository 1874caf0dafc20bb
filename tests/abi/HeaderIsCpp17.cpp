// Compiling is the test.
#include "tests/abi/PublicRecords.h"
