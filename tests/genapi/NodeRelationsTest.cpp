#include "TestMap.h"
