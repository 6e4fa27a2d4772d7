#include "auth/UserInfo.h"
