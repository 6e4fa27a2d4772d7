#include "google/AccountRegistry.h"
