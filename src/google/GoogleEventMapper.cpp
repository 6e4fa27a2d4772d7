#include "google/GoogleEventMapper.h"
