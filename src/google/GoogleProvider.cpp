#include "google/GoogleProvider.h"
