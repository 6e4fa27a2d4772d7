#include "app/AppEnvironment.h"
