#include "auth/GoogleConfiguration.h"
