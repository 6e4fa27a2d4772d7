#include "model/Meeting.h"
