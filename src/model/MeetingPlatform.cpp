#include "model/MeetingPlatform.h"
