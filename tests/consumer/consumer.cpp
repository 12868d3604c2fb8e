#define LANGUAGE "C++"
#include "consumer.c"
