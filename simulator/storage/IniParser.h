#pragma once

// CSimpleIniCaseA, the parser of INI files. Bytes are kept as they are, and its templates are compiled here
// rather than loaded as one more library.

#define SI_NO_CONVERSION
#define SI_IMPLEMENTATION
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wundef"
#pragma GCC diagnostic ignored "-Wcast-qual"
#pragma GCC diagnostic ignored "-Wshadow"
#include <SimpleIni.h>
#pragma GCC diagnostic pop
