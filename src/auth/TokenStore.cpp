#include "auth/TokenStore.h"
