#include "preferences/Preferences.h"
