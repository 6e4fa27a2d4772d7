#include "model/MeetingLinkDetector.h"
