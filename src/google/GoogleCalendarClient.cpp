#include "google/GoogleCalendarClient.h"
