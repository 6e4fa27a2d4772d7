#include "auth/Keychain.h"
