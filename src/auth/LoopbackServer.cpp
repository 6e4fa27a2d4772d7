#include "auth/LoopbackServer.h"
