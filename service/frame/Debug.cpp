#include "service/frame/Debug.h"

// On until the custom library has been asked: what goes wrong before that is worth a line.
uint8_t u8TvFactoryDebug = 1;
