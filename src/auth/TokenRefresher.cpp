#include "auth/TokenRefresher.h"
