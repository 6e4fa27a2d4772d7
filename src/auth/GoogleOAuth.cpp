#include "auth/GoogleOAuth.h"
