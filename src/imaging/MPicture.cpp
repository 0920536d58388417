#include "imaging/MPicture.h"
