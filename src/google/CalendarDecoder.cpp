#include "google/CalendarDecoder.h"
