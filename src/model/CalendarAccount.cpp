#include "model/CalendarAccount.h"
