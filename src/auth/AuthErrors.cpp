#include "auth/AuthErrors.h"
